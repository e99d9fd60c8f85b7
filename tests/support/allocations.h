// Counts heap requests and makes chosen ones fail: the global allocation operators of the test
// program go through here.
#pragma once

#include <cstdint>
#include <functional>

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

/// While one lives, nothrow requests are refused from the moment `refuse` says so: the first one,
/// with `persistent` all later ones too, whatever it says then. In this library only pools make
/// such requests, for their blocks.
class RefusedBlocks {
 public:
  explicit RefusedBlocks(std::function<bool()> refuse, bool persistent = false);
  RefusedBlocks(const RefusedBlocks&) = delete;
  RefusedBlocks& operator=(const RefusedBlocks&) = delete;
  ~RefusedBlocks();

  /// Whether a request has been refused yet.
  bool hasFailed() const { return failed; }

  /// For the allocation operators: whether the request that is being made is to be refused.
  bool _refusesNow();

 private:
  const std::function<bool()> mustRefuse;
  const bool forEver;
  bool failed = false;
};

}  // namespace KelpTest
