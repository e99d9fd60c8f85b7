#include "kelp/writers/numberliteral.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstdint>
#include <limits>
#include <random>
#include <string>

#include "kelp/parser/treeparser.h"
#include "tests/support/allocations.h"
#include "tests/support/figures.h"
#include "tests/support/goldenbits.h"
#include "tests/support/placement.h"

using Kelp::NumberLiteral;
using Kelp::TreeParser;

namespace {

constexpr double kInfinity = std::numeric_limits<double>::infinity();

template <class Value>
std::string textOf(Value value) {
  return std::string(NumberLiteral(value).view());
}

// What a typed list makes of the literal.
template <class Value>
Value readBack(const NumberLiteral& literal) {
  const bool negative = literal.view().front() == '-';
  const double magnitude = TreeParser::parseNum(literal.view().data() + (negative ? 1 : 0));
  return static_cast<Value>(negative ? -magnitude : magnitude);
}

uint64_t bits(double value) { return std::bit_cast<uint64_t>(value); }
uint32_t bits(float value) { return std::bit_cast<uint32_t>(value); }

// Bits of all exponents, a quarter of them next to a power of two.
uint64_t drawnBits(std::mt19937_64& random) {
  const uint64_t drawn = random();
  const uint64_t fraction = (uint64_t{1} << 52U) - 1;
  switch (random() % 8) {
    case 0:
      return (drawn & ~fraction) + random() % 4;
    case 1:
      return (drawn | fraction) - random() % 4;
    default:
      return drawn;
  }
}

void expectDrawnValuesReadBack(int64_t cases) {
  std::mt19937_64 random(20240229);
  int64_t tried = 0;
  while (tried < cases) {
    const auto value = std::bit_cast<double>(drawnBits(random));
    if (std::isnan(value)) continue;
    ++tried;
    const NumberLiteral literal(value);
    const bool same = bits(readBack<double>(literal)) == bits(value);
    if (same && literal.isExact()) continue;
    ADD_FAILURE() << literal.view() << " for the bits " << bits(value);
    break;
  }
}

// With time for all, every float there is; the sign is written apart.
int64_t expectFloatsReadBack() {
  const uint32_t step = KelpTest::hasTimeForAll() ? 1 : 14143;
  const uint32_t infinity = bits(std::numeric_limits<float>::infinity());
  int64_t floats = 0;
  for (uint32_t pattern = 1; pattern < infinity; pattern += step, ++floats) {
    const NumberLiteral literal(std::bit_cast<float>(pattern));
    if (literal.isExact() && bits(readBack<float>(literal)) == pattern) continue;
    ADD_FAILURE() << literal.view();
    break;
  }
  return floats;
}

}  // namespace

TEST(NumberLiteral, DoublesHaveTheFewestDigitsThatAreReadAsThem) {
  const struct {
    double value;
    const char* text;
  } rows[] = {
      {0.0, "0"},
      {-0.0, "-0"},
      {7.0, "7"},
      {-1.5, "-1.5"},
      {0.1, "0.1"},
      {1000000.0, "1000000"},
      {999999999999999.0, "999999999999999"},
      {1e16, "1e16"},
      {1e22, "1e22"},
      {123456.789, "123456.789"},
      {1e-6, "1e-6"},
      {kInfinity, "1e309"},
      {-kInfinity, "-1e309"},
      // The reader rounds on its way: 0.3 is the number above this one, 0.015625 not this one.
      {0.3, "0.2999999999999999"},
      {0.015625, "1.5625e-2"},
      // 1e-324 is read as 0, but half of 1e-323 is not.
      {5e-324, "0.5e-323"},
  };
  for (const auto& row : rows) EXPECT_EQ(textOf(row.value), row.text);
}

TEST(NumberLiteral, WhatWasReadFromFewDigitsIsWrittenWithThem) {
  const char* literals[] = {
      "0.3",   "0.7",   "123.456", "1e-7",    "0.00012345", "3.14159265358979",
      "1e22",  "1.1e9", "6.02e23", "1.6e-19", "99999.5",    "2.5e-320",
      "5.5e8", "1e100", "0.1",     "12",      "0"};
  for (const char* literal : literals) {
    const std::string written = textOf(TreeParser::parseNum(literal));
    EXPECT_LE(written.size(), std::max(std::string(literal).size(), size_t{10})) << written;
    EXPECT_EQ(bits(TreeParser::parseNum(written.c_str())), bits(TreeParser::parseNum(literal)));
  }
  EXPECT_EQ(textOf(TreeParser::parseNum("0.3")), "0.3");
  EXPECT_EQ(textOf(TreeParser::parseNum("1.16e9")), "1.16e9");
}

TEST(NumberLiteral, FloatsHaveTheFewestDigitsOfAFloat) {
  const struct {
    float value;
    const char* text;
  } rows[] = {
      {0.0F, "0"},
      {-0.0F, "-0"},
      {0.1F, "0.1"},
      {0.3F, "0.3"},
      {-16777216.0F, "-16777216"},
      {1e-45F, "1e-45"},
      {3.4028235e38F, "3.4028235e38"},
      {1.17549435e-38F, "1.1754944e-38"},
      {-static_cast<float>(kInfinity), "-1e309"},
  };
  for (const auto& row : rows) EXPECT_EQ(textOf(row.value), row.text);
}

TEST(NumberLiteral, FloatWhoseShortestDigitsRoundTwiceGetsMoreDigits) {
  const struct {
    float value;
    const char* shortest;
    const char* text;
  } rows[] = {
      {7.038531e-26F, "7.038531e-26", "7.03853069e-26"},
      {1.57286405e16F, "1.572864e16", "1.57286405e16"},
      {1.25829124e17F, "1.2582912e17", "1.25829124e17"},
  };
  for (const auto& row : rows) {
    ASSERT_NE(static_cast<float>(TreeParser::parseNum(row.shortest)), row.value);
    const NumberLiteral literal(row.value);
    EXPECT_TRUE(literal.isExact());
    EXPECT_EQ(literal.view(), row.text);
    EXPECT_EQ(bits(readBack<float>(literal)), bits(row.value));
  }
}

TEST(NumberLiteral, NotANumberIsTheOneThatTheReaderKnows) {
  const double known = TreeParser::parseNum("0e309");
  for (const double value : {known, -known}) {
    const NumberLiteral literal(value);
    EXPECT_TRUE(literal.isExact());
    EXPECT_EQ(bits(readBack<double>(literal)), bits(value)) << literal.view();
  }
  for (const float value : {static_cast<float>(known), -static_cast<float>(known)}) {
    const NumberLiteral literal(value);
    EXPECT_TRUE(literal.isExact());
    EXPECT_EQ(bits(readBack<float>(literal)), bits(value)) << literal.view();
  }
}

TEST(NumberLiteral, NotANumberWithAPayloadIsToldToBeAnother) {
  const NumberLiteral literal(std::bit_cast<double>(uint64_t{0x7FF8000000000001}));
  EXPECT_FALSE(literal.isExact());
  EXPECT_TRUE(std::isnan(readBack<double>(literal)));
}

TEST(NumberLiteral, WhatStoodInTheMemoryBeforeIsNotRead) {
  KelpTest::Placed<NumberLiteral> text('9', 0.1F);
  EXPECT_EQ(text->view(), "0.1");
  EXPECT_EQ(text->view().data()[3], '\0');
}

TEST(NumberLiteral, NeedsNoAllocation) {
  const int64_t before = KelpTest::allocationCount();
  size_t length = 0;
  for (const double value : {0.1, 0.3, 1.0 / 3, 5e-324, 1e300}) {
    length += NumberLiteral(value).view().size();
  }
  EXPECT_EQ(KelpTest::allocationCount(), before);
  EXPECT_GT(length, 0U);
}

TEST(NumberLiteral, EveryGoldenLiteralIsReachedAgain) {
  const auto literals = KelpTest::goldenLiterals(KELP_SOURCE_DIR "/tests/bits/literals.txt");
  for (const auto& golden : literals) {
    const auto number = std::bit_cast<double>(golden.bits.asDouble);
    if (std::isnan(number)) continue;
    const NumberLiteral literal(number);
    EXPECT_TRUE(literal.isExact()) << golden.text;
    EXPECT_EQ(bits(readBack<double>(literal)), golden.bits.asDouble) << literal.view();
    const auto single = std::bit_cast<float>(golden.bits.asFloat);
    EXPECT_EQ(bits(readBack<float>(NumberLiteral(single))), golden.bits.asFloat) << golden.text;
  }
}

TEST(NumberLiteral, BitsOfAllExponentsReadBackToThemselves) {
  const int64_t doubles = KelpTest::hasTimeForAll() ? 10000000 : 50000;
  expectDrawnValuesReadBack(doubles);
  const int64_t floats = expectFloatsReadBack();
  KelpTest::reportFigure("number literals", KelpTest::grouped(doubles) + " doubles and " +
                                                KelpTest::grouped(floats) +
                                                " positive floats read back to the same bits");
}
