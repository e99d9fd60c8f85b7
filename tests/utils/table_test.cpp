#include "kelp/utils/table.h"

#include <gtest/gtest.h>

#include <climits>
#include <type_traits>

#include "tests/support/allocations.h"
#include "tests/support/failures.h"
#include "tests/support/placement.h"

using Kelp::Table;
using KelpTest::allocationCount;
using KelpTest::liveAllocations;
using KelpTest::Placed;
using KelpTest::runsOutOfMemory;

namespace {

static_assert(!std::is_copy_constructible_v<Table<int, 100>>);
static_assert(!std::is_copy_assignable_v<Table<int, 100>>);

// The growth rule in the plainest words.
int modelCapacity(int newCount, int step, int capacity) {
  if (newCount <= capacity) return capacity;
  if (step >= 1) {
    int multiple = step;
    while (multiple <= newCount) multiple += step;
    return multiple;
  }
  if (capacity < 1) return newCount;
  while (capacity < newCount) capacity *= 2;
  return capacity;
}

TEST(Table, StartsEmpty) {
  const Table<int, 7> table;
  EXPECT_EQ(table.count, 0);
  EXPECT_EQ(table.step, 7);
  EXPECT_EQ(table.capacity, 0);
  EXPECT_EQ(table.data, nullptr);
}

TEST(Table, FirstAppendWithStep100GivesCapacity100) {
  Table<int, 100> table;
  table += 1;
  EXPECT_EQ(table.capacity, 100);
  EXPECT_EQ(table.count, 1);
}

TEST(Table, Append101WithStep100GivesCapacity200) {
  Table<int, 100> table;
  for (int i = 0; i < 100; ++i) table += i;
  EXPECT_EQ(table.capacity, 100);
  table += 100;
  EXPECT_EQ(table.capacity, 200);
}

TEST(Table, NewCountThatIsAMultipleOfTheStepGivesTheNextMultiple) {
  Table<int, 100> table;
  table.data = new int[99];
  table.capacity = 99;
  table.count = 99;
  table += 1;
  EXPECT_EQ(table.capacity, 200);
}

TEST(Table, StepZeroDoublesCapacity13To26) {
  Table<int, 100> table;
  table.step = 0;
  table.data = new int[13]();
  table.capacity = 13;
  table.count = 13;
  table += 1;
  EXPECT_EQ(table.capacity, 26);
}

TEST(Table, StepZeroFromNothingGives124) {
  Table<int, 0> table;
  const int capacities[] = {1, 2, 4, 4, 8};
  for (const int capacity : capacities) {
    table += 1;
    EXPECT_EQ(table.capacity, capacity);
  }
}

TEST(Table, CapacityFollowsTheRuleAtEveryAppend) {
  for (const int step : {100, 1000, 1, 0, -1}) {
    Table<int, 100> table;
    table.step = step;
    int capacity = 0;
    for (int count = 1; count <= 5000; ++count) {
      capacity = modelCapacity(count, step, capacity);
      table += count;
      ASSERT_EQ(table.count, count) << step;
      ASSERT_EQ(table.capacity, capacity) << step << ' ' << count;
    }
    for (int i = 0; i < 5000; ++i) ASSERT_EQ(table.data[i], i + 1) << step;
  }
}

TEST(Table, ManyAppendsCopyTheArrayAFewTimes) {
  Table<char, 100> table;
  const int64_t before = allocationCount();
  for (int i = 0; i < 1'000'000; ++i) table += 'x';
  EXPECT_LE(allocationCount() - before, 15);
}

TEST(Table, ResetCountReusesTheArray) {
  Table<int, 100> table;
  for (int i = 0; i < 150; ++i) table += i;
  const int* data = table.data;
  table.count = 0;
  for (int i = 0; i < 150; ++i) table += i;
  EXPECT_EQ(table.data, data);
  EXPECT_EQ(table.capacity, 200);
}

TEST(Table, RoomIsMadeAsTheNextAppendWould) {
  Table<int, 3> table;
  Table<int, 3> roomy;
  for (int i = 0; i < 10; ++i) {
    roomy.makeRoom();
    const int* data = roomy.data;
    EXPECT_EQ(roomy.count, i);
    table += i;
    roomy += i;
    EXPECT_EQ(roomy.data, data);
    EXPECT_EQ(roomy.capacity, table.capacity);
  }
}

TEST(Table, OwnersArrayIsNotTakenForLargerThanItSays) {
  Table<int, 100> table;
  for (int i = 0; i < 301; ++i) table += i;
  int* mine = new int[10];
  delete[] table.data;
  table.data = mine;
  table.capacity = 10;
  table.count = 10;
  for (int i = 0; i < 10; ++i) mine[i] = -i;
  table += 77;
  EXPECT_NE(table.data, mine);
  EXPECT_EQ(table.capacity, 100);
  EXPECT_EQ(table.data[9], -9);
  EXPECT_EQ(table.data[10], 77);
}

// A new array of the owner's may lie where the table's own lay before.
TEST(Table, OwnersArrayAtTheOldAddressIsNotTakenForTheOldOne) {
  Table<int, 10> table;
  for (int i = 0; i < 25; ++i) table += i;
  const int* before = table.data;
  table.capacity = table.count;
  table += 25;
  EXPECT_NE(table.data, before);
  EXPECT_EQ(table.capacity, 30);
  for (int i = 0; i < 26; ++i) EXPECT_EQ(table.data[i], i);
}

TEST(Table, ArrayTakenAwayByTheOwnerIsNotUsedAgain) {
  Table<int, 100> table;
  for (int i = 0; i < 250; ++i) table += i;
  const int* taken = table.data;
  table.data = nullptr;
  table.capacity = 0;
  table.count = 0;
  table += 5;
  EXPECT_NE(table.data, taken);
  EXPECT_EQ(taken[0], 0);
  EXPECT_EQ(table.data[0], 5);
  delete[] taken;
}

TEST(Table, OwnElementIsAppendedAlsoWhenTheArrayMoves) {
  Table<int, 1> table;
  table += 42;
  for (int i = 0; i < 1000; ++i) table += table.data[table.count - 1];
  for (int i = 0; i <= 1000; ++i) ASSERT_EQ(table.data[i], 42);
}

TEST(Table, AppendOfManyGrowsOnceByTheRule) {
  Table<char, 100> table;
  const char text[] = "0123456789";
  table.append(text, 0);
  EXPECT_EQ(table.data, nullptr);
  table.append(text, 10);
  EXPECT_EQ(table.capacity, 100);
  for (int i = 0; i < 9; ++i) table.append(text, 10);
  EXPECT_EQ(table.count, 100);
  EXPECT_EQ(table.capacity, 100);
  table.append(text, 1);
  EXPECT_EQ(table.capacity, 200);
  EXPECT_EQ(table.data[99], '9');
  EXPECT_EQ(table.data[100], '0');
}

TEST(Table, FailedAppendChangesNothing) {
  for (const int filled : {0, 99, 100, 200, 300}) {
    Table<int, 100> table;
    for (int i = 0; i < filled; ++i) table += i;
    const int64_t live = liveAllocations();
    for (;;) {
      const int count = table.count;
      const int capacity = table.capacity;
      const int* data = table.data;
      if (!runsOutOfMemory(1, [&] { table += 7; })) continue;
      EXPECT_EQ(table.count, count);
      EXPECT_EQ(table.step, 100);
      EXPECT_EQ(table.capacity, capacity);
      EXPECT_EQ(table.data, data);
      for (int i = 0; i < filled; ++i) ASSERT_EQ(table.data[i], i);
      EXPECT_EQ(liveAllocations(), live);
      break;
    }
  }
}

TEST(Table, CountsThatNoIntHoldsAreRefusedAsOutOfMemory) {
  struct Row {
    int count;
    int step;
  };
  // The owner claims full arrays of these counts; nothing of them is read before the refusal.
  const Row rows[] = {{INT_MAX, 100}, {INT_MAX, 0}, {INT_MAX - 1, 100}, {INT_MAX - 1, -1}};
  for (const Row& row : rows) {
    Table<int, 100> table;
    int* only = new int[1];
    table.step = row.step;
    table.count = row.count;
    table.capacity = row.count;
    table.data = only;
    EXPECT_THROW(table += 1, std::bad_alloc) << row.count << ' ' << row.step;
    EXPECT_EQ(table.count, row.count);
    EXPECT_EQ(table.capacity, row.count);
    EXPECT_EQ(table.data, only);
  }
}

TEST(Table, DestructorFreesAndLeavesNothing) {
  const int64_t before = liveAllocations();
  Placed<Table<int, 100>> table(0x5A);
  for (int i = 0; i < 150; ++i) *table += i;
  table.destroy();
  EXPECT_EQ(liveAllocations(), before);
  EXPECT_EQ(table.fieldAt<int>(0), 0) << "count";
  EXPECT_EQ(table.fieldAt<int>(8), 0) << "capacity";
  EXPECT_EQ(table.fieldAt<int*>(16), nullptr) << "data";
}

}  // namespace
