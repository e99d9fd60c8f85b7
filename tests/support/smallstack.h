// Running something on a thread with a small stack.
#pragma once

#include <cstddef>
#include <functional>

namespace KelpTest {

inline constexpr size_t kSmallStack = size_t{256} << 10U;
inline constexpr size_t kHugeStack = size_t{512} << 20U;

/// Runs `act` on a new thread with a stack of that many bytes and waits for it. Too deep a
/// recursion ends the test program.
void runOnStackOf(size_t bytes, const std::function<void()>& act);

}  // namespace KelpTest
