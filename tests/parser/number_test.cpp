#include <gtest/gtest.h>
#include <xmmintrin.h>

#include <cfenv>
#include <climits>
#include <cmath>
#include <string>

#include "tests/support/numberreference.h"
#include "tests/support/parsing.h"

using namespace Kelp;
using KelpTest::bitsOf;
using KelpTest::TextParser;

namespace {

constexpr double kSpecialInfinity = 0x1.bc16d6p59;  // bits 0x43ABC16D60000000

struct Row {
  std::string text;
  double value;
};

template <size_t n>
void expectValues(const Row (&rows)[n]) {
  for (const Row& row : rows) {
    EXPECT_EQ(bitsOf(TreeParser::parseNum(row.text.c_str())), bitsOf(row.value)) << row.text;
  }
}

// What parseSimpleNumber makes of the start of a text, and the token that it leaves.
struct Simple {
  explicit Simple(const std::string& text) {
    TextParser source(text);
    try {
      value = source.started().parseSimpleNumber();
    } catch (const InvalidSyntaxException& failure) {
      error = failure.message.chars();
    }
    rest = source.parser._currentToken().getSpelling();
  }

  double value = 0.0;
  std::string error;
  std::string rest;
};

// The first element of ListInt(text).
int firstInt(const std::string& text) {
  TextParser source("ListInt(" + text + ")");
  const auto_ast<ExpressionAST> list(source.started().parseExpression());
  return static_cast<ListTypeExpressionAST<int>*>(list.get())->elements[0];
}

}  // namespace

TEST(ParseNum, IntegersAndFractions) {
  expectValues({{"12.5", 12.5},
                {".5", 0.5},
                {"5.", 5.0},
                {"0", 0.0},
                {"0042", 42.0},
                {"123456789", 123456789.0},
                {"0.25", 0.2 + 5 * (0.1 * 0.1)},
                {".", 0.0}});
}

TEST(ParseNum, Exponents) {
  expectValues({{"1e3", 1000.0},
                {"1E+3", 1000.0},
                {"1e-2", 0.01},
                {"1e+-2", 0.01},
                {"2.5e1", 25.0},
                {"5.e2", 500.0},
                {".5e1", 5.0},
                {"1e0", 1.0},
                {"1e00003", 1000.0}});
}

TEST(ParseNum, MalformedExponentGivesTheMantissa) {
  expectValues({{"1e", 1.0},
                {"1ex", 1.0},
                {"1e+", 1.0},
                {"1e-", 1.0},
                {"1e+-", 1.0},
                {"1e-+2", 1.0},
                {"1e++2", 1.0},
                {"1e--2", 1.0},
                {"2.5E", 2.5}});
}

TEST(ParseNum, TrailingCharactersAreIgnored) {
  expectValues({{"12abc", 12.0},
                {"1.5.2", 1.5},
                {"1e3.5", 1000.0},
                {"1e3e3", 1000.0},
                {"7 8", 7.0},
                {"5;", 5.0}});
}

TEST(ParseNum, TextsThatAreNoNumbersGiveZero) {
  expectValues({{"", 0.0},
                {"nan", 0.0},
                {"NaN", 0.0},
                {"nano", 0.0},
                {"-5", 0.0},
                {"+5", 0.0},
                {" 5", 0.0},
                {"e5", 0.0},
                {"inf", 0.0},
                {"#INF", 0.0},
                {"\xFF", 0.0}});
}

TEST(ParseNum, HexadecimalIsNotRead) { expectValues({{"0x10", 0.0}, {"10x", 10.0}}); }

TEST(ParseNum, SpecialValues) {
  EXPECT_EQ(bitsOf(kSpecialInfinity), 0x43ABC16D60000000U);
  expectValues({{"1.#INF", kSpecialInfinity},
                {"1.#inf", kSpecialInfinity},
                {"1.#iXf", kSpecialInfinity},
                {"1.#INFINITY", kSpecialInfinity},
                {"5.#INF", kSpecialInfinity},
                {"1.5#INF", kSpecialInfinity},
                {".#INF", kSpecialInfinity},
                {"1.#IND", 0.0},
                {"1.#ixd", 0.0},
                {"1.#QNAN", 0.0},
                {"1.#q", 0.0},
                {"1#INF", 1.0},
                {"1#QNAN", 1.0},
                {"1.#", 1.0},
                {"1.#I", 1.0},
                {"1.#IN", 1.0},
                {"1.#INX", 1.0},
                {"1.5#X", 1.5},
                {"1.##QNAN", 1.0},
                {"1.5e1#INF", 15.0},
                {"1.e#INF", 1.0}});
}

TEST(ParseNum, OverflowIsWhatTheArithmeticGives) {
  EXPECT_EQ(bitsOf(TreeParser::parseNum(std::string(400, '9').c_str())), 0x7FF0000000000000U);
  EXPECT_EQ(bitsOf(TreeParser::parseNum("1e400")), 0x7FF0000000000000U);
  EXPECT_EQ(bitsOf(TreeParser::parseNum(("1e" + std::string(400, '9')).c_str())),
            0x7FF0000000000000U);
  EXPECT_EQ(bitsOf(TreeParser::parseNum("1e-400")), 0U);
  EXPECT_EQ(bitsOf(TreeParser::parseNum(("1e-" + std::string(400, '9')).c_str())), 0U);
  EXPECT_TRUE(std::isnan(TreeParser::parseNum("0e400")));
}

// The digits are summed up in double, which is not what a correctly rounding reader does.
TEST(ParseNum, LastBitsAreThoseOfTheSum) {
  EXPECT_EQ(bitsOf(TreeParser::parseNum("0.3")), bitsOf(3 * 0.1));
  EXPECT_NE(bitsOf(TreeParser::parseNum("0.3")), bitsOf(0.3));
}

TEST(ParseNum, NeedsNoParser) {
  double (*const convert)(const char*) = &TreeParser::parseNum;
  EXPECT_EQ(convert("1.5"), 1.5);
}

TEST(SimpleNumber, SignsThatAreAccepted) {
  const std::pair<const char*, double> rows[] = {{"5 ;", 5.0},       {"-5 ;", -5.0},  {"+5 ;", 5.0},
                                                 {"-+5 ;", -5.0},    {"- 5 ;", -5.0}, {"nan;", 0.0},
                                                 {"- + .5e1;", -5.0}};
  for (const auto& [text, value] : rows) {
    const Simple number(text);
    EXPECT_EQ(number.error, "") << text;
    EXPECT_EQ(bitsOf(number.value), bitsOf(value)) << text;
    EXPECT_EQ(number.rest, ";") << text;
  }
}

TEST(SimpleNumber, OtherTokensAreRefusedBehindTheSignsConsumed) {
  const std::pair<const char*, const char*> rows[] = {
      {"+-5", "-"}, {"--5", "-"},   {"++5", "+"},   {"-++5", "+"}, {"-a", "a"},
      {"a", "a"},   {"\"5\"", "5"}, {"-;", ";"},    {"+(", "("},   {"", ""},
      {"-", ""},    {"#INF", "#"},  {"-NaN", "NaN"}};
  for (const auto& [text, rest] : rows) {
    const Simple number(text);
    EXPECT_EQ(number.error, "Expected a number literal") << text;
    EXPECT_EQ(number.rest, rest) << text;
  }
}

TEST(SimpleNumber, MinusFlipsTheSignBit) {
  EXPECT_EQ(bitsOf(Simple("-0").value), 0x8000000000000000U);
  EXPECT_EQ(bitsOf(Simple("0").value), 0U);
  EXPECT_EQ(bitsOf(Simple("-nan").value), 0x8000000000000000U);
  EXPECT_EQ(bitsOf(Simple("-1.#INF").value), 0xC3ABC16D60000000U);
  EXPECT_EQ(bitsOf(Simple("-" + std::string(400, '9')).value), 0xFFF0000000000000U);
  const uint64_t notANumber = bitsOf(Simple("0e400").value);
  EXPECT_TRUE(std::isnan(Simple("0e400").value));
  EXPECT_EQ(bitsOf(Simple("-0e400").value), notANumber ^ 0x8000000000000000U);
}

TEST(SimpleNumber, SpellingIsTerminatedOnce) {
  TextParser source("12 34");
  TreeParser& parser = source.started();
  const Token& literal = parser._currentToken();
  parser.scanner = nullptr;  // nothing may be scanned before the literal is converted
  parser.tokens[parser.lookahead].type = TOKEN_END;
  EXPECT_EQ(parser.parseSimpleNumber(), 12.0);
  EXPECT_EQ(literal.text.count, 3);
  EXPECT_EQ(literal.text.data[2], '\0');
}

TEST(SimpleNumber, IntListTakesWhatDoesNotFitAsTheSmallest) {
  const std::pair<const char*, int> rows[] = {{"3000000000", INT_MIN},
                                              {"-3000000000", INT_MIN},
                                              {"1e20", INT_MIN},
                                              {"1e400", INT_MIN},
                                              {"0e400", INT_MIN},
                                              {"-1e400", INT_MIN},
                                              {"2147483647", INT_MAX},
                                              {"2147483647.5", INT_MAX},
                                              {"2147483648", INT_MIN},
                                              {"-2147483648", INT_MIN},
                                              {"-2147483647", -INT_MAX},
                                              {"-2147483649", INT_MIN},
                                              {"1.9", 1},
                                              {"-1.9", -1},
                                              {"-0", 0},
                                              {"1.#INF", INT_MIN},
                                              {"nan", 0}};
  for (const auto& [text, value] : rows) EXPECT_EQ(firstInt(text), value) << text;
}

TEST(SimpleNumber, ParseLeavesTheProcessorsSettingsAlone) {
  constexpr unsigned kFlagsOfPastOperations = 0x3F;
  const unsigned before = _mm_getcsr() & ~kFlagsOfPastOperations;
  const int rounding = std::fegetround();
  TextParser source(
      "A a { x = 1e400 * 0e400 + 1.5e-320 - sin(1.#INF); y = ListInt(1e20, -3e-5); }");
  ProgramAST* program = source.parser.parseProgram();
  ASSERT_NE(program, nullptr);
  program->deleteThis();
  EXPECT_EQ(_mm_getcsr() & ~kFlagsOfPastOperations, before);
  EXPECT_EQ(std::fegetround(), rounding);
}
