// Running something on a thread with a stack of a chosen size.
#pragma once

#include <cstddef>
#include <functional>

namespace KelpTest {

/// Runs `task` to its end on a thread of its own. The task must not throw.
void runOnStack(size_t bytes, const std::function<void()>& task);

}  // namespace KelpTest
