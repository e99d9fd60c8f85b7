// The guard against running out of stack on deeply nested text and trees.
#pragma once

namespace Kelp {

/// True when the calling thread has less stack left than a failing parse needs to get out: 128 KiB
/// (256 KiB under a sanitizer), or a quarter of a smaller stack. Always false on a stack that is
/// not the thread's own, such as a coroutine's.
bool isStackNearlyUsedUp();

}  // namespace Kelp
