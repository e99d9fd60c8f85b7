#include "kelp/ast/mathvalues.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <cstring>

#include "tests/support/placement.h"

using namespace Kelp;

namespace {

static_assert(sizeof(Matrix) == 9 * sizeof(float));
static_assert(sizeof(Vector) == 12 && sizeof(Color) == 12);
static_assert(sizeof(_mm_lookupmask_ps) == 256 && alignof(decltype(_mm_lookupmask_ps)) >= 4);

bool isIdentity(const Matrix& matrix) {
  for (int i = 0; i < 9; ++i) {
    const float expected = i == 0 || i == 4 || i == 8 ? 1.0F : 0.0F;
    if (matrix.elements[i] != expected || std::signbit(matrix.elements[i])) return false;
  }
  return true;
}

bool isPositiveZero(const Matrix& matrix) {
  for (const float element : matrix.elements) {
    if (element != 0.0F || std::signbit(element)) return false;
  }
  return true;
}

TEST(Matrix, Kind1IsTheIdentity) {
  EXPECT_TRUE(isIdentity(Matrix(1)));
  EXPECT_TRUE(isIdentity(ID_mat));
}

TEST(Matrix, Kind0IsPositiveZero) {
  EXPECT_TRUE(isPositiveZero(Matrix(0)));
  EXPECT_TRUE(isPositiveZero(ZERO_mat));
}

TEST(Matrix, OtherKindsWriteNothing) {
  for (const int kind : {2, -1, 1000}) {
    const KelpTest::Placed<Matrix> matrix(0x5A, kind);
    for (size_t i = 0; i < 9; ++i) EXPECT_EQ(matrix.fieldAt<uint32_t>(4 * i), 0x5A5A5A5AU);
  }
}

TEST(LookupMasks, BitJOfTheIndexSelectsLaneJ) {
  for (unsigned k = 0; k < 16; ++k) {
    for (unsigned lane = 0; lane < 4; ++lane) {
      EXPECT_EQ(_mm_lookupmask_ps[k][lane], (k >> lane & 1U) != 0 ? 0xFFFFFFFFU : 0U) << k;
    }
  }
}

TEST(LookupMasks, Entry5SelectsLanes0And2AndEntry10Lanes1And3) {
  const uint32_t all = 0xFFFFFFFF;
  const uint32_t five[4] = {all, 0, all, 0};
  const uint32_t ten[4] = {0, all, 0, all};
  EXPECT_EQ(std::memcmp(_mm_lookupmask_ps[5], five, 16), 0);
  EXPECT_EQ(std::memcmp(_mm_lookupmask_ps[10], ten, 16), 0);
}

TEST(LookupMasks, EntriesAreAlignedForVectorCode) {
  for (const auto& entry : _mm_lookupmask_ps) {
    EXPECT_EQ(reinterpret_cast<uintptr_t>(&entry) % 16, 0U);
  }
}

}  // namespace
