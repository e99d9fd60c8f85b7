// The bits that number literals and seeds have, and those that files say they must have. Without
// GoogleTest, so that programs of any build can compare.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace KelpTest {

/// What a literal, with the signs before it, becomes in each place that takes one.
struct LiteralBits {
  uint64_t asDouble;  ///< a not-a-number is ~0: its own bits are the processor's
  uint32_t asFloat;   ///< likewise
  int asInt;

  bool operator==(const LiteralBits& other) const = default;
};

struct GoldenLiteral {
  std::string text;
  LiteralBits bits;
};

/// The rows of a file of literals. Throws std::runtime_error when it cannot be read.
std::vector<GoldenLiteral> goldenLiterals(const std::string& path);

/// What the parser makes of literals as single numbers and as elements of typed lists, in order.
std::vector<LiteralBits> parsedLiterals(const std::vector<GoldenLiteral>& literals);

struct GoldenDraw {
  int64_t number;  ///< from 1
  int64_t state;   ///< of the generator after the draw
  uint32_t seed;   ///< bits of the float

  bool operator==(const GoldenDraw& other) const = default;
};

/// Draws from a fresh generator: some in full, and a digest of all.
struct GoldenSeeds {
  std::vector<GoldenDraw> draws;
  uint64_t digest = 0xCBF29CE484222325U;

  bool operator==(const GoldenSeeds& other) const = default;
};

/// What a file of draws says. Throws std::runtime_error when it cannot be read.
GoldenSeeds goldenSeeds(const std::string& path);

/// The same draws drawn: the last number in `golden` says how many.
GoldenSeeds drawnSeeds(const GoldenSeeds& golden);

}  // namespace KelpTest
