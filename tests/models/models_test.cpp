// Long runs of random operations against the models. Seeds are fixed: a run that fails fails again.
#include <gtest/gtest.h>

#include <string>

#include "tests/models/checkedmaps.h"
#include "tests/models/checkedpools.h"
#include "tests/models/checkedprograms.h"
#include "tests/models/checkedstrings.h"
#include "tests/models/checkedtable.h"
#include "tests/support/figures.h"
#include "tests/support/parsing.h"

using namespace Kelp;
using namespace KelpTest;

namespace {

constexpr int64_t kEverydayShare = 50;  // an everyday run does one in so many operations

int64_t wanted(int64_t operations) {
  return hasTimeForAll() ? operations : operations / kEverydayShare;
}

void report(int64_t operations, const std::string& on) {
  reportFigure("models", grouped(operations) + " operations on " + on);
}

// Keys are mostly inserted for a while, then mostly erased, so that the map grows and shrinks.
template <class CheckedMap>
void runMap(int64_t operations, const std::string& on) {
  constexpr uint32_t kKeys = 5000;
  constexpr int64_t kPhase = 12000;
  RandomChoices choices(1);
  Shortage none;
  CheckedMap map(choices, none, kKeys);
  for (int64_t i = 0; i < operations; ++i) {
    if (i % kPhase == 0) map.inserting = i / kPhase % 2 == 0 ? 14 : 3;
    ASSERT_NO_THROW(map.step()) << i;
  }
  map.compareAll();
  report(operations, on);
}

template <class Checked>
void runPlain(int64_t operations, const std::string& on) {
  RandomChoices choices(2);
  Shortage none;
  Checked checked(choices, none);
  for (int64_t i = 0; i < operations; ++i) ASSERT_NO_THROW(checked.step()) << i;
  report(operations, on);
}

template <class Checked>
void runPool(int64_t operations, const std::string& on) {
  constexpr int64_t kPhase = 500;
  RandomChoices choices(3);
  Checked pool(choices);
  for (int64_t i = 0; i < operations; ++i) {
    ASSERT_NO_THROW(pool.step(i / kPhase % 2 == 0 ? 11 : 5)) << i;
  }
  report(operations, on);
}

struct Piece {
  void* link = nullptr;  // a free element's first word is overwritten in a map's pool
  int64_t number = 0;
};

constexpr int kBlock = 100;

TEST(MapModel, BorrowedKeysGiveTheSameChainsAndBucketCounts) {
  runMap<CheckedBorrowingMap>(wanted(2500000), "a map that borrows keys");
}

TEST(MapModel, OwnedKeysGiveTheSameChainsAndBucketCounts) {
  runMap<CheckedOwningMap>(wanted(1500000), "a map that owns keys");
}

TEST(TableModel, CapacitiesFollowTheStep) { runPlain<CheckedTable>(wanted(2000000), "a table"); }

TEST(StringModel, TextsAndSharingAreTheSame) {
  runPlain<CheckedStrings>(wanted(1000000), "strings");
}

TEST(PoolModel, NodesAreHandedOutLastInFirstOutAndUnchanged) {
  runPool<CheckedPool<Pool<Piece, kBlock>, PoolElement<Piece>, kBlock>>(wanted(1000000),
                                                                        "a pool of nodes");
}

TEST(PoolModel, EntriesAreHandedOutLastInFirstOut) {
  runPool<CheckedPool<SimplePool<Piece, kBlock>, SimplePoolElement<Piece>, kBlock>>(
      wanted(1000000), "a pool of entries");
}

TEST(ProgramModel, NamesLeadToTheSameObjectsUnderRenaming) {
  constexpr int64_t kBetweenComparisons = 128;
  const int64_t operations = wanted(1000000);
  const int before = livePoolElements();
  {
    RandomChoices choices(4);
    Shortage none;
    CheckedPrograms programs(choices, none);
    for (int64_t i = 0; i < operations; ++i) {
      ASSERT_NO_THROW(programs.step()) << i;
      if (i % kBetweenComparisons != 0) continue;
      ASSERT_NO_THROW(programs.compareAll()) << i;
    }
  }
  EXPECT_EQ(livePoolElements(), before);
  report(operations, "programs and their names");
}

}  // namespace
