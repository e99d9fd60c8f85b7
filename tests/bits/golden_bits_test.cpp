// The bits of literals and seeds in this build; scripts/bits compares those of other builds.
#include <gtest/gtest.h>

#include <cmath>

#include "kelp/parser/treeparser.h"
#include "tests/support/goldenbits.h"
#include "tests/support/numberreference.h"

using namespace Kelp;
using namespace KelpTest;

namespace {

const std::string kFolder = KELP_SOURCE_DIR "/tests/bits/";

double (*const volatile power)(double, double) = std::pow;

}  // namespace

TEST(GoldenBits, LiteralsAreThoseOfTheFile) {
  const std::vector<GoldenLiteral> literals = goldenLiterals(kFolder + "literals.txt");
  const std::vector<LiteralBits> parsed = parsedLiterals(literals);
  ASSERT_EQ(literals.size(), 10000U);
  for (size_t i = 0; i < literals.size(); ++i) {
    EXPECT_EQ(parsed[i].asDouble, literals[i].bits.asDouble) << literals[i].text;
    EXPECT_EQ(parsed[i].asFloat, literals[i].bits.asFloat) << literals[i].text;
    EXPECT_EQ(parsed[i].asInt, literals[i].bits.asInt) << literals[i].text;
  }
}

TEST(GoldenBits, SeedsAreThoseOfTheFile) {
  const GoldenSeeds golden = goldenSeeds(kFolder + "seeds.txt");
  const GoldenSeeds drawn = drawnSeeds(golden);
  ASSERT_EQ(golden.draws.size(), 100U);
  ASSERT_EQ(golden.draws.back().number, 1000000);
  for (size_t i = 0; i < golden.draws.size(); ++i) {
    EXPECT_EQ(drawn.draws[i].state, golden.draws[i].state) << golden.draws[i].number;
    EXPECT_EQ(drawn.draws[i].seed, golden.draws[i].seed) << golden.draws[i].number;
  }
  EXPECT_EQ(drawn.digest, golden.digest);
}

// Processors with and without fused multiply-add get different values of this power from libm, so
// no file can say which.
TEST(GoldenBits, TenToThe126IsThatOfThisMachine) {
  for (const std::string mantissa : {"1", "3", "12.5", "0.1", "123456789.987654321"}) {
    const double expected = TreeParser::parseNum(mantissa.c_str()) * power(10.0, 126.0);
    EXPECT_EQ(bitsOf(TreeParser::parseNum((mantissa + "e126").c_str())), bitsOf(expected));
    EXPECT_EQ(bitsOf(TreeParser::parseNum((mantissa + "E+0126").c_str())), bitsOf(expected));
  }
}
