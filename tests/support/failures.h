// Running something with one of its heap requests failing.
#pragma once

#include <cstdint>
#include <new>

#include "kelp/utils/exceptions.h"
#include "tests/support/allocations.h"

namespace KelpTest {

/// Runs `act` with its n-th heap request failing (counting from 1; with `persistent` all later ones
/// too). True when a request failed, false when `act` came through with fewer requests.
template <class Act>
bool runsOutOfMemory(int64_t n, Act act, bool persistent = false) {
  const FailingAllocation failing(n, persistent);
  try {
    act();
  } catch (const std::bad_alloc&) {
  } catch (const Kelp::ExceptionMsg&) {
  }
  return failing.hasFailed();
}

}  // namespace KelpTest
