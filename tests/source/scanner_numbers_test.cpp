#include <gtest/gtest.h>

#include <string>

#include "tests/support/tokenlist.h"

using KelpTest::tokensOf;

namespace {

struct Row {
  const char* text;
  const char* tokens;
};

template <size_t n>
void expectTokens(const Row (&rows)[n]) {
  for (const Row& row : rows) EXPECT_EQ(tokensOf(row.text), row.tokens) << row.text;
}

}  // namespace

TEST(ScannerNumbers, DigitsAndPoints) {
  expectTokens({
      {"5", "num:5"},
      {"007", "num:007"},
      {"12.5", "num:12.5"},
      {"5.", "num:5."},
      {"5. x", "num:5. id:x"},
      {".5", "num:.5"},
      {".", "."},
      {". 5", ". num:5"},
      {"..5", ". num:.5"},
      {"...", ". . ."},
      {"1..2", "num:1. num:.2"},
      {"1...2", "num:1. . num:.2"},
      {"1.5.2", "num:1.5 num:.2"},
      {"a.5", "id:a num:.5"},
      {"5.a", "num:5. id:a"},
      {"12abc", "num:12 id:abc"},
      {"0x1F", "num:0 id:x1F"},
      {"1_000", "num:1 id:_000"},
  });
}

TEST(ScannerNumbers, Exponents) {
  expectTokens({
      {"1e3", "num:1e3"},
      {"1E3", "num:1E3"},
      {"1e+3", "num:1e+3"},
      {"1e-3", "num:1e-3"},
      {"1e+-2", "num:1e+-2"},
      {"1e-+2", "num:1 id:e - + num:2"},
      {"1e++2", "num:1 id:e + + num:2"},
      {"1e--2", "num:1 id:e - - num:2"},
      {"1e", "num:1 id:e"},
      {"1e+", "num:1 id:e +"},
      {"1e-", "num:1 id:e -"},
      {"1e+-", "num:1 id:e + -"},
      {"1ex", "num:1 id:ex"},
      {"1e5.3", "num:1e5 num:.3"},
      {"1e5e5", "num:1e5 id:e5"},
      {"5.e2", "num:5.e2"},
      {".5e2", "num:.5e2"},
      {"1.5E-12;", "num:1.5E-12 ;"},
      {"e5", "id:e5"},
      {".e5", ". id:e5"},
  });
}

TEST(ScannerNumbers, SpecialValues) {
  expectTokens({
      {"1.#INF", "num:1.#INF"},
      {"1.#IND", "num:1.#IND"},
      {"1.#QNAN", "num:1.#QNAN"},
      {"1.#inf", "num:1.#inf"},
      {"5.#INF", "num:5.#INF"},
      {"1.5#INF", "num:1.5#INF"},
      {".5#INF", "num:.5#INF"},
      {"1.#Zz", "num:1.#Zz"},
      {"1.#INF0", "num:1.#INF num:0"},
      {"1.#INF_", "num:1.#INF id:_"},
      {"1.#", "num:1. ?:#"},
      {"1.#0", "num:1. ?:# num:0"},
      {"1.#_", "num:1. ?:# id:_"},
      {"1.##INF", "num:1. ?:# ?:# id:INF"},
      {"1#", "num:1 ?:#"},
      {"1#INF", "num:1 ?:# id:INF"},
      {"1.5e3#INF", "num:1.5e3 ?:# id:INF"},
      {"1.e#INF", "num:1. id:e ?:# id:INF"},
      {"1.# INF", "num:1. ?:# id:INF"},
      {"#INF", "?:# id:INF"},
  });
}

TEST(ScannerNumbers, SignsAreTokensOfTheirOwn) {
  expectTokens({
      {"-5", "- num:5"},
      {"+5", "+ num:5"},
      {"-+.5", "- + num:.5"},
      {"1-2", "num:1 - num:2"},
      {"1+2", "num:1 + num:2"},
      {"-1.#INF", "- num:1.#INF"},
  });
}

TEST(ScannerNumbers, EndAtTheEndOfTheText) {
  expectTokens(
      {{"1.", "num:1."}, {"1e1", "num:1e1"}, {"1.#I", "num:1.#I"}, {"1e+", "num:1 id:e +"}});
}

TEST(ScannerNumbers, LongLiteralIsTakenWhole) {
  const std::string digits(50000, '7');
  const std::string literal = digits + "." + digits + "e+" + digits;
  EXPECT_EQ(tokensOf(literal + ".x"), "num:" + literal + " . id:x");
}
