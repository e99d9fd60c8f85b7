// Counts what a benchmark takes from the heap: its malloc and its kin stand before the system's.
#pragma once

#include <cstdint>

namespace KelpBench {

/// Calls that gave memory since the process began, on all of its threads together (which must not
/// run at the same time).
int64_t allocationCount();

}  // namespace KelpBench
