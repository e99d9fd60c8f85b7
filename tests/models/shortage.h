// Shortage of memory in the middle of a run of many operations.
#pragma once

#include <cstdint>
#include <new>

#include "kelp/utils/exceptions.h"
#include "tests/models/choices.h"
#include "tests/support/allocations.h"

namespace KelpTest {

/// Makes one heap request of the operations that it runs fail, or all from one on. Requests made
/// elsewhere, as by a model, do not count.
class Shortage {
 public:
  /// Never strikes.
  Shortage() = default;

  /// Strikes where the next two bytes say: 15 bits of the request's number, from 1 (0: never), and
  /// whether all later ones fail, too.
  explicit Shortage(ByteChoices& choices) {
    left = choices.byte();
    const uint8_t high = choices.byte();
    left += (high & 0x7FU) << 8U;
    persistent = (high & 0x80U) != 0;
  }

  /// Does something. True when it came to its end, false when it gave up because of the shortage.
  /// Other exceptions pass through.
  template <class Act>
  bool run(Act act) {
    if (left == 0) {
      act();
      return true;
    }
    const int64_t before = allocationCount();
    const FailingAllocation failing(left, persistent);
    const Aftermath aftermath{*this, failing, before};
    try {
      act();
      return true;
    } catch (const std::bad_alloc&) {
      if (!failing.hasFailed()) throw;
    } catch (const Kelp::ExceptionMsg&) {
      if (!failing.hasFailed()) throw;
      ++poolRequests;
    }
    return false;
  }

  /// Whether a request has failed yet.
  bool hasStruck() const { return struck; }

  /// Failed requests for a block of a pool; each may leave a live count one too high.
  int failedPoolRequests() const { return poolRequests; }

 private:
  struct Aftermath {
    Shortage& shortage;
    const FailingAllocation& failing;
    const int64_t requestsBefore;

    ~Aftermath() {
      if (failing.hasFailed()) {
        shortage.struck = true;
        shortage.left = shortage.persistent ? 1 : 0;
      } else {
        shortage.left -= allocationCount() - requestsBefore;
      }
    }
  };

  int64_t left = 0;  // the request that is to fail, counted from the next one as 1; 0: none
  bool persistent = false;
  bool struck = false;
  int poolRequests = 0;
};

}  // namespace KelpTest
