#include <gtest/gtest.h>

#include "tests/support/rows.h"
#include "tests/support/trees.h"

using namespace Kelp;
using namespace KelpTest;

TEST(Term, AMinusWrapsTheWholeTerm) {
  expectExpressions({
      {"-2", "(neg 2)"},
      {"-a.b[1]", R"((neg (idx (prop "a" "b") 1)))"},
      {"-a.b.x", R"((neg (idx (prop "a" "b") 0)))"},
      {"-(1 + 2)", "(neg (+ 1 2))"},
      {"-(-2)", "(neg (neg 2))"},
      {"-sin(1)", R"((neg (call "sin" 1)))"},
      {"-Vector(1,2,3)", "(neg (vec 1 2 3))"},
      {"-\"s\"", R"((neg "s"))"},
      {"-a::b", R"((neg (rt "a" "b")))"},
  });
}

TEST(Term, APlusLeavesNoTrace) {
  expectExpressions({{"+2", "2"}, {"+(2)", "2"}, {"+a", R"((ref "a"))"}});
}

TEST(Term, TakesOneSign) {
  expectExpressions({
      {"--2", notAToken("-")},
      {"-+2", notAToken("+")},
      {"+-2", notAToken("-")},
      {"++2", notAToken("+")},
      {"-", notAToken("")},
  });
}

TEST(Term, ANegativeNumberIsANegationOfAPositiveOne) {
  ParsedExpression parsed("-2.5");
  const auto& negated = as<NegatedExpressionAST>(parsed.tree.get());
  EXPECT_EQ(as<NumberExpressionAST>(negated.operand).value, 2.5);
}

TEST(Term, ParenthesesLeaveNoTrace) {
  expectExpressions({
      {"(1)", "1"},
      {"((1))", "1"},
      {"(a)", R"((ref "a"))"},
      {"(1", "error: Expected \")\""},
      {"((1)", "error: Expected \")\""},
      {"(1 2)", "error: Expected \")\""},
      {"(1, 2)", "error: Expected \")\""},
      {"()", notAToken(")")},
      {"(", notAToken("")},
  });
}

TEST(Term, IsNamedByTheTokenThatIsNone) {
  for (const std::string text : {")", "{", "}", ";", "=", "*", "/", ",", "[", "]", ":", ".", "?",
                                 "@", "#", "%", "\\", "'"}) {
    expectExpressions({{text, "error: Token \"" + text + "\" not recognized as valid token"}});
  }
  expectExpressions({{"", "error: Token \"\" not recognized as valid token"}});
}

TEST(Term, NumbersAreReadByTheirOwnRules) {
  expectExpressions({
      {"0", "0"},
      {"42", "42"},
      {"0.5", "0.5"},
      {".5", "0.5"},
      {"2e3", "2000"},
      {"nan", "0"},
      {"1.#INF", "9.9999998430674944e+17"},
      {"1.#QNAN", "0"},
  });
}
