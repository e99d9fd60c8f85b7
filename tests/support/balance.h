// Checks that something leaves pools and heap as it found them.
#pragma once

#include <gtest/gtest.h>

#include <cstdint>

#include "tests/support/allocations.h"
#include "tests/support/parsing.h"

namespace KelpTest {

/// Fails the test unless `run` gives all pool elements and heap blocks back. Nodes in a pool keep
/// their texts until they are taken again, and pools keep their blocks, so the heap is compared
/// once repeated runs have settled.
template <class Run>
void expectBalanced(const Run& run) {
  constexpr int kRunsToSettle = 5;
  const int liveBefore = livePoolElements();
  run();
  int64_t gained = 0;
  for (int i = 0; i < kRunsToSettle; ++i) {
    ASSERT_EQ(livePoolElements(), liveBefore);
    const int64_t blocksBefore = liveAllocations();
    run();
    gained = liveAllocations() - blocksBefore;
    if (gained == 0) break;
  }
  EXPECT_EQ(gained, 0) << "heap blocks are left by every run";
  EXPECT_EQ(livePoolElements(), liveBefore);
}

}  // namespace KelpTest
