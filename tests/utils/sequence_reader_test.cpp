// The position that a sequence keeps for readers of its elements.
#include <gtest/gtest.h>

#include "kelp/utils/pool.h"
#include "tests/support/placement.h"

using namespace Kelp;

namespace {

struct Number {
  int value = 0;
};

constexpr size_t kFirst = 0;
constexpr size_t kReadBlock = 2 * sizeof(void*);
constexpr size_t kReadIndex = 3 * sizeof(void*);

}  // namespace

TEST(SequenceReader, StandsAtTheFirstBlockAfterARestart) {
  KelpTest::Placed<_Sequence<Number, 2>> sequence(0xAA);
  EXPECT_EQ(sequence.fieldAt<void*>(kReadBlock), nullptr);
  EXPECT_EQ(sequence.fieldAt<int>(kReadIndex), 0);
  for (int i = 0; i < 5; ++i) sequence->newElement();
  sequence->restart();
  EXPECT_NE(sequence.fieldAt<void*>(kFirst), nullptr);
  EXPECT_EQ(sequence.fieldAt<void*>(kReadBlock), sequence.fieldAt<void*>(kFirst));
  EXPECT_EQ(sequence.fieldAt<int>(kReadIndex), 0);
  sequence->freeBlocks();
  EXPECT_EQ(sequence.fieldAt<void*>(kFirst), nullptr);
  EXPECT_EQ(sequence.fieldAt<void*>(kReadBlock), nullptr);
  sequence.destroy();
}
