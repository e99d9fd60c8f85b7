// Handles that hold nothing yet, or a buffer that was never given room.
#include <gtest/gtest.h>

#include "kelp/utils/charstring.h"
#include "kelp/utils/ptrarray.h"
#include "tests/support/allocations.h"

using namespace Kelp;

TEST(EmptyHandles, CopyOfAnEmptyArrayIsEmpty) {
  const PtrArray<int> none;
  const PtrArray<int> copy(none);
  EXPECT_EQ(copy.data, nullptr);
  EXPECT_EQ(copy.count, 0);
}

TEST(EmptyHandles, AssignedEmptyArrayEmptiesTheOther) {
  const PtrArray<int> none;
  PtrArray<int> some;
  some.allocArray(3);
  some = none;
  EXPECT_EQ(some.data, nullptr);
  EXPECT_EQ(some.count, 0);
}

TEST(EmptyHandles, NewArrayGivesTheOldOneBack) {
  const int64_t before = KelpTest::liveAllocations();
  {
    PtrArray<int> array;
    array.allocArray(3);
    array.allocArray(4);
    EXPECT_EQ(KelpTest::liveAllocations(), before + 1);
  }
  EXPECT_EQ(KelpTest::liveAllocations(), before);
}

TEST(EmptyHandles, BufferWithoutRoomTakesAText) {
  CharString text;
  text.buffer = new CharStringBuf;
  EXPECT_EQ(text.length(), 0);
  EXPECT_TRUE(text.isEmpty());
  text = "abc";
  EXPECT_STREQ(text.chars(), "abc");
}

TEST(EmptyHandles, BufferWithoutRoomTakesAJoinedText) {
  CharString text;
  text.buffer = new CharStringBuf;
  text.set("ab", "cd");
  EXPECT_STREQ(text.chars(), "abcd");
}
