// Checks that something leaves pools and heap as it found them.
#pragma once

#include <gtest/gtest.h>

#include <cstdint>

#include "tests/support/allocations.h"
#include "tests/support/parsing.h"

namespace KelpTest {

/// Fails the test unless `run` gives all pool elements and heap blocks back. Nodes in a pool keep
/// their texts until they are taken again, and pools keep their blocks, so the heap is compared
/// once repeated runs have settled. They may settle at two levels in turn: a run that fails half
/// through turns the order of the free nodes round.
template <class Run>
void expectBalanced(const Run& run) {
  constexpr int kRunsToSettle = 7;
  const int liveBefore = livePoolElements();
  run();
  int64_t levels[2] = {-1, liveAllocations()};  // behind the run before the last, and the last
  bool settled = false;
  for (int i = 0; i < kRunsToSettle && !settled; ++i) {
    ASSERT_EQ(livePoolElements(), liveBefore);
    run();
    const int64_t level = liveAllocations();
    settled = level == levels[0] || level == levels[1];
    levels[0] = levels[1];
    levels[1] = level;
  }
  EXPECT_EQ(livePoolElements(), liveBefore);
  EXPECT_TRUE(settled) << "every run leaves heap blocks, now " << levels[1] << " after "
                       << levels[0];
}

}  // namespace KelpTest
