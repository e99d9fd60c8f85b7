#include "kelp/utils/ptrarray.h"

#include <gtest/gtest.h>

#include <type_traits>

#include "kelp/utils/charstring.h"
#include "tests/support/allocations.h"
#include "tests/support/failures.h"

using Kelp::CharString;
using Kelp::PtrArray;
using KelpTest::allocationCount;
using KelpTest::liveAllocations;

namespace {

static_assert(std::is_nothrow_copy_constructible_v<PtrArray<CharString>>);
static_assert(std::is_nothrow_copy_assignable_v<PtrArray<CharString>>);

TEST(PtrArray, StartsEmpty) {
  const PtrArray<int> array;
  EXPECT_EQ(array.count, 0);
  EXPECT_EQ(array.data, nullptr);
}

TEST(PtrArray, HasExactlyTheRequestedCountInOneRequest) {
  const int64_t live = liveAllocations();
  {
    PtrArray<int> array;
    const int64_t before = allocationCount();
    array.allocArray(1001);
    EXPECT_EQ(allocationCount() - before, 1);
    EXPECT_EQ(array.count, 1001);
    for (int i = 0; i < 1001; ++i) array[i] = i;
    const PtrArray<int>& read = array;
    EXPECT_EQ(read[1000], 1000);
    EXPECT_EQ(array.data[500], 500);
  }
  EXPECT_EQ(liveAllocations(), live);
}

TEST(PtrArray, NothingRequestedGivesTheEmptyArray) {
  for (const int size : {0, -1}) {
    PtrArray<int> array;
    array.allocArray(3);
    array.allocArray(size);
    EXPECT_EQ(array.count, 0);
    EXPECT_EQ(array.data, nullptr);
  }
}

TEST(PtrArray, CopiesShareUntilTheLastOneGoes) {
  const int64_t live = liveAllocations();
  PtrArray<CharString> first;
  first.allocArray(2);
  first[1] = "text";
  {
    const PtrArray<CharString> second(first);
    PtrArray<CharString> third;
    third.allocArray(5);
    third = second;
    third = *&third;
    EXPECT_EQ(third.data, first.data);
    EXPECT_EQ(third.count, 2);
    first.free();
    EXPECT_EQ(first.data, nullptr);
    EXPECT_EQ(first.count, 0);
    EXPECT_STREQ(second[1].chars(), "text");
    EXPECT_TRUE(second[0].isNull());
  }
  EXPECT_EQ(liveAllocations(), live);
}

TEST(PtrArray, NewArrayLeavesTheOldOneToItsOtherHolders) {
  PtrArray<int> first;
  first.allocArray(1);
  first[0] = 7;
  PtrArray<int> second(first);
  second.allocArray(2);
  EXPECT_EQ(first.count, 1);
  EXPECT_EQ(first[0], 7);
  second = PtrArray<int>();
  EXPECT_EQ(second.data, nullptr);
}

TEST(PtrArray, LastShareDestroysItsElements) {
  const CharString text("text");
  {
    PtrArray<CharString> array;
    array.allocArray(3);
    for (int i = 0; i < 3; ++i) array[i] = text;
    EXPECT_EQ(text.buffer->referenceCount, 4);
  }
  EXPECT_EQ(text.buffer->referenceCount, 1);
}

TEST(PtrArray, FailedRequestChangesNothing) {
  PtrArray<int> array;
  array.allocArray(2);
  array[1] = 5;
  const int* data = array.data;
  EXPECT_TRUE(KelpTest::runsOutOfMemory(1, [&] { array.allocArray(100); }));
  EXPECT_EQ(array.data, data);
  EXPECT_EQ(array.count, 2);
  EXPECT_EQ(array[1], 5);
}

}  // namespace
