// Counts heap requests and makes chosen ones fail: the global allocation operators of the test
// program go through here.
#pragma once

#include <cstdint>

namespace KelpTest {

/// Requests to any form of operator new since the program started.
int64_t allocationCount();

/// Blocks taken from operator new and not given back.
int64_t liveAllocations();

/// While one lives, the n-th request from its construction on (counting from 1) fails: throwing
/// forms throw std::bad_alloc, nothrow forms give null. With `persistent` all later ones fail too.
class FailingAllocation {
 public:
  explicit FailingAllocation(int64_t n, bool persistent = false);
  FailingAllocation(const FailingAllocation&) = delete;
  FailingAllocation& operator=(const FailingAllocation&) = delete;
  ~FailingAllocation();

  /// Whether a request has failed yet.
  bool hasFailed() const;
};

}  // namespace KelpTest
