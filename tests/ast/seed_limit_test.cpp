// The largest seed that a random call can draw.
#include <gtest/gtest.h>

#include <cmath>
#include <cstring>

#include "kelp/ast/builtinfunctions.h"

using Kelp::RandomGenerator;

namespace {

constexpr uint64_t kMultiplier = 0x5DEECE66DU;
constexpr int64_t kEnd = int64_t{1} << 48;            // states lie below
constexpr int64_t kTop = kEnd - (int64_t{32} << 18);  // from here on seeds round to 1

// The number that multiplied with the generator's gives 1 in 64 bits.
constexpr uint64_t inverse() {
  uint64_t result = kMultiplier;
  for (int i = 0; i < 6; ++i) result *= 2 - kMultiplier * result;
  return result;
}
static_assert(inverse() * kMultiplier == 1);

// The state that a draw leaves when the linear step comes to `stepped`.
int64_t leftBy(int64_t stepped) {
  const double sine = std::sin(static_cast<double>(stepped >> 16));
  uint64_t bits;
  std::memcpy(&bits, &sine, sizeof bits);
  return (stepped + static_cast<int64_t>(bits >> 32)) & (kEnd - 1);
}

// A state whose draw ends among the largest, found by trying; -1 if there is none.
int64_t stateBeforeTheTop() {
  for (int64_t stepped = kEnd - 0x40000000; stepped < kEnd; stepped += int64_t{1} << 16) {
    if (leftBy(stepped) >= kTop) {
      return static_cast<int64_t>((static_cast<uint64_t>(stepped) - 0xB) * inverse());
    }
  }
  return -1;
}

TEST(SeedLimit, LargestStatesRoundToOneAndNoFurther) {
  RandomGenerator generator;
  generator.state = stateBeforeTheTop();
  ASSERT_NE(generator.state, -1);
  EXPECT_EQ(generator.drawSeed(), 1.0F);
  EXPECT_GE(generator.state, kTop);
  EXPECT_LT(generator.state, kEnd);
}

}  // namespace
