#include "kelp/queries/hexvalues.h"

#include <gtest/gtest.h>

#include <array>
#include <bit>
#include <cctype>
#include <cmath>
#include <cstring>
#include <limits>
#include <random>
#include <vector>

#include "tests/support/allocations.h"
#include "tests/support/figures.h"
#include "tests/support/trees.h"

using namespace Kelp;
using namespace KelpTest;

namespace {

// Lengths around those of the blocks that are decoded at once, in numbers.
constexpr std::array<size_t, 14> kLengths = {0, 1, 2, 3, 7, 15, 31, 32, 33, 63, 64, 65, 200, 1000};

std::string drawnDigits(std::mt19937& random, size_t count) {
  std::string digits(count, '0');
  for (char& digit : digits) digit = "0123456789abcdefABCDEF"[random() % 22];
  return digits;
}

// What eight digits stand for, one digit after the other.
uint32_t numberOf(const std::string& digits) {
  uint32_t number = 0;
  for (unsigned i = 0; i < 4; ++i) {
    number |= static_cast<uint32_t>(std::stoul(digits.substr(2 * i, 2), nullptr, 16)) << (8 * i);
  }
  return number;
}

std::string lowered(std::string text) {
  for (char& c : text) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
  return text;
}

std::string problemOf(const HexError& error, HexError::Kind kind, size_t position) {
  if (error.kind != kind) return "another kind of error: " + error.describe();
  if (error.position != position) return "at " + std::to_string(error.position);
  return "";
}

template <class T>
std::vector<T> decoded(const std::string& text) {
  const HexList<T> list = decodeHexList<T>(text);
  EXPECT_TRUE(list) << list.error.describe();
  return {list.elements.data, list.elements.data + list.elements.count};
}

}  // namespace

// ---- what digits stand for ---------------------------------------------------------------------

TEST(HexValues, NumbersHaveTheirLowestByteFirst) {
  EXPECT_EQ(decoded<int>("01000000ffffffff00000080FFFFFF7f"),
            (std::vector<int>{1, -1, std::numeric_limits<int>::min(), 0x7fffffff}));
  EXPECT_EQ(decoded<float>("0000803f000000c0cdcccc3d0000807f"),
            (std::vector<float>{1, -2, 0.1F, std::numeric_limits<float>::infinity()}));
  EXPECT_TRUE(decoded<int>("").empty());
}

TEST(HexValues, PartsStandBehindEachOther) {
  const std::string one = "0000803f0000004000004040";
  const auto vectors = decoded<Vector>(one + one);
  ASSERT_EQ(vectors.size(), 2U);
  EXPECT_EQ(vectors[1].x, 1);
  EXPECT_EQ(vectors[1].y, 2);
  EXPECT_EQ(vectors[1].z, 3);
  const auto colours = decoded<Color>(one);
  ASSERT_EQ(colours.size(), 1U);
  EXPECT_EQ(colours[0].r, 1);
  EXPECT_EQ(colours[0].g, 2);
  EXPECT_EQ(colours[0].b, 3);
}

TEST(HexValues, TransformIsItsMatrixThenItsOffset) {
  std::array<float, 12> numbers{};
  for (size_t i = 0; i < numbers.size(); ++i) numbers[i] = static_cast<float>(i) + 0.5F;
  const HexTransform transform = decodeHexTransform(encodeHexList(numbers.data(), numbers.size()));
  ASSERT_TRUE(transform) << transform.error.describe();
  for (size_t i = 0; i < 9; ++i) EXPECT_EQ(transform.matrix[i], numbers[i]);
  for (size_t i = 0; i < 3; ++i) EXPECT_EQ(transform.offset[i], numbers[9 + i]);
}

TEST(HexValues, EveryPairOfDigitsAtEveryPlaceOfABlock) {
  for (unsigned byte = 0; byte < 256; ++byte) {
    for (size_t place = 0; place < 160; ++place) {
      std::string text(320, '0');
      text[2 * place] = "0123456789abcdef"[byte >> 4U];
      text[2 * place + 1] = "0123456789ABCDEF"[byte & 15U];
      std::array<unsigned char, 160> bytes{};
      ASSERT_EQ(decodeHexNumbers(text, bytes.data()).kind, HexError::Kind::kNone);
      const bool isLittle = std::endian::native == std::endian::little;
      ASSERT_EQ(bytes[isLittle ? place : place ^ 3U], byte);
    }
  }
}

TEST(HexValues, DrawnTextsAreWhatTheirDigitsSay) {
  std::mt19937 random(1);
  const int rounds = hasTimeForAll() ? 10000 : 100;
  int64_t numbers = 0;
  for (int round = 0; round < rounds; ++round) {
    for (const size_t length : kLengths) {
      const std::string text = drawnDigits(random, 8 * length);
      const auto list = decoded<int>(text);
      ASSERT_EQ(list.size(), length);
      for (size_t i = 0; i < length; ++i) {
        ASSERT_EQ(static_cast<uint32_t>(list[i]), numberOf(text.substr(8 * i, 8)));
      }
      ASSERT_EQ(encodeHexList(list.data(), list.size()), lowered(text));
      numbers += static_cast<int64_t>(length);
    }
  }
  reportFigure("hexadecimal values", grouped(numbers) + " drawn numbers decoded and encoded back");
}

TEST(HexValues, FloatsOfAllKindsKeepTheirBits) {
  std::vector<uint32_t> patterns = {0,           0x80000000U, 1,           0x007fffffU, 0x00800000U,
                                    0x7f7fffffU, 0x7f800000U, 0xff800000U, 0x7fc00000U, 0xffc00000U,
                                    0x7f800001U, 0xffbfffffU, 0x7fffffffU};
  std::mt19937 random(2);
  const int drawn = hasTimeForAll() ? 10000000 : 100000;
  for (int i = 0; i < drawn; ++i) patterns.push_back(static_cast<uint32_t>(random()));
  std::vector<float> floats(patterns.size());
  std::memcpy(floats.data(), patterns.data(), floats.size() * sizeof(float));
  const auto list = decoded<float>(encodeHexList(floats.data(), floats.size()));
  ASSERT_EQ(list.size(), floats.size());
  EXPECT_EQ(std::memcmp(list.data(), patterns.data(), patterns.size() * sizeof(uint32_t)), 0);
  reportFigure("hexadecimal values", grouped(drawn) + " floats of all kinds with the same bits");
}

// ---- what is refused ---------------------------------------------------------------------------

TEST(HexValues, CharactersThatAreNoDigitsAreRefusedWhereverTheyStand) {
  std::mt19937 random(3);
  const std::string good = drawnDigits(random, 600);
  std::array<uint32_t, 75> room{};
  for (int code = 0; code < 256; ++code) {
    if (std::isxdigit(code) != 0) continue;
    for (size_t place = 0; place < good.size(); ++place) {
      std::string text = good;
      text[place] = static_cast<char>(code);
      const HexError error = decodeHexNumbers(text, room.data());
      ASSERT_EQ(problemOf(error, HexError::Kind::kDigit, place), "") << code << " at " << place;
      ASSERT_EQ(error.character, static_cast<char>(code));
    }
  }
}

TEST(HexValues, FirstOfSeveralBadCharactersIsTold) {
  std::string text(2400, 'a');
  for (size_t place = text.size(); place-- > 0;) {
    text[place] = 'x';
    if (place % 7 != 0 && place > 300) continue;
    ASSERT_EQ(problemOf(decodeHexList<Vector>(text).error, HexError::Kind::kDigit, place), "");
  }
}

TEST(HexValues, LengthsThatAreNoElementsAreRefused) {
  for (size_t length = 0; length < 900; ++length) {
    const std::string text(length, '7');
    const auto kindFor = [length](size_t digits) {
      return length % digits == 0 ? HexError::Kind::kNone : HexError::Kind::kTooShort;
    };
    const size_t ofNumbers = length % 8 == 0 ? 0 : length;
    const size_t ofTriples = length % 24 == 0 ? 0 : length;
    ASSERT_EQ(problemOf(decodeHexList<int>(text).error, kindFor(8), ofNumbers), "");
    ASSERT_EQ(problemOf(decodeHexList<float>(text).error, kindFor(8), ofNumbers), "");
    ASSERT_EQ(problemOf(decodeHexList<Vector>(text).error, kindFor(24), ofTriples), "");
    ASSERT_EQ(problemOf(decodeHexList<Color>(text).error, kindFor(24), ofTriples), "");
    ASSERT_EQ(decodeHexList<Color>(text).elements.count,
              length % 24 == 0 ? static_cast<int>(length / 24) : 0);
  }
}

TEST(HexValues, BadCharacterInARestIsTheProblemNotTheLength) {
  for (const size_t length : {1U, 13U, 255U, 261U, 300U}) {
    for (size_t place = 0; place < length; ++place) {
      std::string text(length, '7');
      text[place] = ' ';
      ASSERT_EQ(problemOf(decodeHexList<int>(text).error, HexError::Kind::kDigit, place), "");
      ASSERT_EQ(problemOf(decodeHexList<Vector>(text).error, HexError::Kind::kDigit, place), "");
    }
  }
}

TEST(HexValues, TransformTakesNinetySixDigits) {
  for (size_t length = 0; length < 200; ++length) {
    if (length == 96) continue;
    const bool isShort = length < 96;
    const HexError error = decodeHexTransform(std::string(length, '1')).error;
    ASSERT_EQ(problemOf(error, isShort ? HexError::Kind::kTooShort : HexError::Kind::kTooLong,
                        isShort ? length : 96),
              "");
  }
  EXPECT_EQ(
      problemOf(decodeHexTransform(std::string(50, '1') + "g").error, HexError::Kind::kDigit, 50),
      "");
  EXPECT_EQ(
      problemOf(decodeHexTransform("g" + std::string(150, '1')).error, HexError::Kind::kDigit, 0),
      "");
}

// The characters are not looked at: so long a text is only claimed.
TEST(HexValues, MoreElementsThanAnArrayHoldsAreRefused) {
  const char text[] = "0";
  constexpr size_t kMost = std::numeric_limits<int>::max();
  const std::string_view ints(text, (kMost + 1) * 8);
  EXPECT_EQ(problemOf(decodeHexList<int>(ints).error, HexError::Kind::kTooLong, kMost * 8), "");
  const std::string_view vectors(text, (kMost + 1) * 24);
  EXPECT_EQ(problemOf(decodeHexList<Vector>(vectors).error, HexError::Kind::kTooLong, kMost * 24),
            "");
}

TEST(HexValues, ErrorsAreDescribed) {
  EXPECT_EQ(decodeHexList<int>("00").error.describe(),
            "the text ends within an element, behind character 2");
  EXPECT_EQ(decodeHexList<int>("0000000g").error.describe(),
            "character 8 is no hexadecimal digit: \"g\"");
  EXPECT_EQ(decodeHexList<int>("0\n000000").error.describe(),
            "character 2 is no hexadecimal digit: byte 0x0a");
  EXPECT_EQ(decodeHexList<int>("\xFF").error.describe(),
            "character 1 is no hexadecimal digit: byte 0xff");
  EXPECT_EQ(decodeHexTransform(std::string(97, '0')).error.describe(),
            "the text goes on behind its last element, which ends with character 96");
  EXPECT_EQ(decodeHexList<int>("").error.describe(), "");
}

// ---- nodes -------------------------------------------------------------------------------------

TEST(HexValues, ElementsOfANodeComeFromEitherForm) {
  const ParsedExpression hex("ListFloatHex(\"0000803f00000040\")");
  const auto fromText = elementsOf(as<ListTypeExpressionAST<float>>(hex.tree.get()));
  ASSERT_TRUE(fromText) << fromText.error.describe();
  ASSERT_EQ(fromText.elements.count, 2);
  EXPECT_EQ(fromText.elements[1], 2);

  const ParsedExpression plain("ListFloat(1, 2)");
  auto& node = as<ListTypeExpressionAST<float>>(plain.tree.get());
  EXPECT_EQ(elementsOf(node).elements.data, node.elements.data);

  const ParsedExpression empty("ListVectorHex(\"\")");
  const auto none = elementsOf(as<ListTypeExpressionAST<Vector>>(empty.tree.get()));
  EXPECT_TRUE(none) << none.error.describe();
  EXPECT_EQ(none.elements.count, 0);
}

TEST(HexValues, NodeWithoutATextIsRefused) {
  const ParsedExpression list("ListColorHex(red)");
  const HexList<Color> colours = elementsOf(as<ListTypeExpressionAST<Color>>(list.tree.get()));
  EXPECT_EQ(colours.error.describe(), "there is no text to decode");
  const ParsedExpression transform("TransformHex(5)");
  EXPECT_EQ(elementsOf(as<TransformHexExpressionAST>(transform.tree.get())).error.kind,
            HexError::Kind::kNoText);
}

TEST(HexValues, TransformOfANode) {
  const ParsedExpression parsed("TransformHex(\"" + std::string(88, '0') + "0000803f\")");
  const HexTransform transform = elementsOf(as<TransformHexExpressionAST>(parsed.tree.get()));
  ASSERT_TRUE(transform) << transform.error.describe();
  EXPECT_EQ(transform.offset[2], 1);
}

// ---- memory ------------------------------------------------------------------------------------

TEST(HexValues, DecodingTakesTheResultOnly) {
  const std::string text(80000, '4');
  const int64_t before = allocationCount();
  const HexList<float> list = decodeHexList<float>(text);
  EXPECT_EQ(allocationCount() - before, 1);
  EXPECT_EQ(list.elements.count, 10000);
}
