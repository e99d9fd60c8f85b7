// Pools side by side with a model of their free lists.
#pragma once

#include <cstdint>
#include <vector>

#include "kelp/utils/pool.h"
#include "tests/models/choices.h"
#include "tests/models/mismatch.h"

namespace KelpTest {

/// `TestedPool` hands out elements with a field `number`, `kBlock` a block; `Slot` is what lies in
/// a block. What was in an element is found in it again.
template <class TestedPool, class Slot, int kBlock>
class CheckedPool {
 public:
  explicit CheckedPool(Choices& source) : choices(source) {}

  /// Takes an element or gives one back. Throws Mismatch.
  void step(uint32_t taking) {
    if (taken.empty() || choices.below(16) < taking) {
      take();
    } else {
      giveBack();
    }
    expectSame("live elements", taken.size(), static_cast<size_t>(pool.liveCount()));
    expectSame("blocks", (handedOut + kBlock - 1) / kBlock, pool.blockCount());
  }

 private:
  struct Held {
    Slot* element;
    int64_t number;  // what was written into it
  };

  void take() {
    auto* element = static_cast<Slot*>(pool.newElement());
    if (!returned.empty()) {
      expectSame("the element handed out again", returned.back().element, element);
      expectSame("its field", returned.back().number, element->number);
      returned.pop_back();
    } else {
      if (handedOut % kBlock != 0) expectSame("the next of the block", fresh + 1, element);
      expectSame("a fresh field", int64_t{0}, element->number);
      fresh = element;
      ++handedOut;
    }
    element->number = ++numbers;
    taken.push_back({element, numbers});
  }

  void giveBack() {
    const size_t i = choices.below(static_cast<uint32_t>(taken.size()));
    expectSame("the field of a held element", taken[i].number, taken[i].element->number);
    pool.freeElement(taken[i].element);
    returned.push_back(taken[i]);
    taken[i] = taken.back();
    taken.pop_back();
  }

  Choices& choices;
  TestedPool pool;
  std::vector<Held> taken;
  std::vector<Held> returned;
  Slot* fresh = nullptr;  // the last one taken from a block
  int handedOut = 0;      // ones taken from blocks
  int64_t numbers = 0;
};

}  // namespace KelpTest
