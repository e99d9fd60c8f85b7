#include "kelp/writers/numbertext.h"

#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <cstdint>
#include <limits>
#include <random>
#include <string>

#include "tests/support/placement.h"

using Kelp::NumberText;

namespace {

std::string textOf(double value) { return std::string(NumberText(value).view()); }
std::string textOf(float value) { return std::string(NumberText(value).view()); }

constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr double kNoNumber = std::numeric_limits<double>::quiet_NaN();

}  // namespace

TEST(NumberText, DoublesHaveTheFewestDigits) {
  const struct {
    double value;
    const char* text;
  } rows[] = {
      {0.0, "0"},
      {-0.0, "-0.0"},
      {1.0, "1"},
      {-1.5, "-1.5"},
      {0.1, "0.1"},
      {100000.0, "100000"},
      {1e15, "1000000000000000"},
      {1e16, "1e+16"},
      {0.00001, "0.00001"},
      {0.000001, "1e-06"},
      {0.1 + 0.2, "0.30000000000000004"},
      {5e-324, "5e-324"},
      {1.7976931348623157e308, "1.7976931348623157e+308"},
      {kInfinity, "Infinity"},
      {-kInfinity, "-Infinity"},
      {kNoNumber, "NaN"},
  };
  for (const auto& row : rows) EXPECT_EQ(textOf(row.value), row.text);
}

TEST(NumberText, FloatsHaveTheFewestDigitsOfAFloat) {
  const struct {
    float value;
    const char* text;
  } rows[] = {
      {0.0F, "0"},
      {-0.0F, "-0.0"},
      {0.1F, "0.1"},
      {16777216.0F, "16777216"},
      {1e8F, "1e+08"},
      {1e-45F, "1e-45"},
      {3.4028235e38F, "3.4028235e+38"},
      {static_cast<float>(kInfinity), "Infinity"},
      {static_cast<float>(kNoNumber), "NaN"},
  };
  for (const auto& row : rows) EXPECT_EQ(textOf(row.value), row.text);
}

TEST(NumberText, FloatWhoseShortestDigitsRoundTwiceGetsMoreDigits) {
  const float value = 7.038531e-26F;
  ASSERT_NE(static_cast<float>(7.038531e-26), value);
  const std::string text = textOf(value);
  EXPECT_EQ(std::bit_cast<uint32_t>(static_cast<float>(std::strtod(text.c_str(), nullptr))),
            std::bit_cast<uint32_t>(value));
  EXPECT_EQ(std::bit_cast<uint32_t>(std::strtof(text.c_str(), nullptr)),
            std::bit_cast<uint32_t>(value));
}

TEST(NumberText, WhatStoodInTheMemoryBeforeIsNotRead) {
  KelpTest::Placed<NumberText> text('9', 0.1F);
  EXPECT_EQ(text->view(), "0.1");
}

TEST(NumberText, AnyBitsReadBackToThemselves) {
  std::mt19937_64 random(4711);
  for (int i = 0; i < 200000; ++i) {
    const auto value = std::bit_cast<double>(random());
    if (!std::isfinite(value)) continue;
    const double read = std::strtod(textOf(value).c_str(), nullptr);
    ASSERT_EQ(std::bit_cast<uint64_t>(read), std::bit_cast<uint64_t>(value)) << textOf(value);
  }
  for (int i = 0; i < 200000; ++i) {
    const auto value = std::bit_cast<float>(static_cast<uint32_t>(random()));
    if (!std::isfinite(value)) continue;
    const auto read = static_cast<float>(std::strtod(textOf(value).c_str(), nullptr));
    ASSERT_EQ(std::bit_cast<uint32_t>(read), std::bit_cast<uint32_t>(value)) << textOf(value);
  }
}
