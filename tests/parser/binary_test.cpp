#include <gtest/gtest.h>

#include "tests/support/rows.h"
#include "tests/support/trees.h"

using namespace Kelp;
using namespace KelpTest;

TEST(Binary, SumsAndProductsAreLeftAssociative) {
  expectExpressions({
      {"1 - 2 - 3", "(- (- 1 2) 3)"},
      {"1 + 2 - 3 + 4", "(+ (- (+ 1 2) 3) 4)"},
      {"8 / 4 / 2", "(/ (/ 8 4) 2)"},
      {"8 / 4 * 2 / 1", "(/ (* (/ 8 4) 2) 1)"},
      {"1 - (2 - 3)", "(- 1 (- 2 3))"},
  });
}

TEST(Binary, ProductsBindTighterThanSums) {
  expectExpressions({
      {"1 + 2 * 3", "(+ 1 (* 2 3))"},
      {"1 * 2 + 3", "(+ (* 1 2) 3)"},
      {"1 - 2 / 3 * 4 - 5", "(- (- 1 (* (/ 2 3) 4)) 5)"},
      {"(1 + 2) * 3", "(* (+ 1 2) 3)"},
  });
}

TEST(Binary, ASignBelongsToItsTerm) {
  expectExpressions({
      {"1 - -2", "(- 1 (neg 2))"},
      {"1 + -2 * 3", "(+ 1 (* (neg 2) 3))"},
      {"-1 * -2", "(* (neg 1) (neg 2))"},
      {"-1 - 2", "(- (neg 1) 2)"},
      {"1 - +2", "(- 1 2)"},
      {"2 * +3", "(* 2 3)"},
  });
}

TEST(Binary, EveryKindOfOperand) {
  expectExpressions({
      {"a + b.c * d::e - \"s\"", R"((- (+ (ref "a") (* (prop "b" "c") (rt "d" "e"))) "s"))"},
      {"Vector(1,2,3) * sin(4)", R"((* (vec 1 2 3) (call "sin" 4)))"},
      {"List(1) / ListInt(2)", "(/ (list 1) (lint 2))"},
  });
}

TEST(Binary, OtherOperatorsDoNotExist) {
  expectExpressions({
      {"1 ^ 2", "rest: ^"},
      {"1 < 2", "rest: <"},
      {"1 % 2", "rest: %"},
      {"1 & 2", "rest: &"},
      {"1 = 2", "rest: ="},
      {"1 2", "rest: 2"},
  });
}

TEST(Binary, AMissingOperandIsNamedByTheTokenInItsPlace) {
  expectExpressions({
      {"1 +", notAToken("")},
      {"1 * ;", notAToken(";")},
      {"* 1", notAToken("*")},
      {"/ 1", notAToken("/")},
      {"1 + * 2", notAToken("*")},
      {"1 * / 2", notAToken("/")},
  });
}

TEST(Binary, TheNodeHoldsTheTokenCodeOfItsOperator) {
  struct {
    const char* text;
    int op;
  } const rows[] = {{"1 + 2", 13}, {"1 - 2", 14}, {"1 * 2", 15}, {"1 / 2", 16}};
  for (const auto& row : rows) {
    ParsedExpression parsed(row.text);
    const auto& node = as<BinaryExpressionAST>(parsed.tree.get());
    EXPECT_EQ(node.op, row.op);
    EXPECT_EQ(as<NumberExpressionAST>(node.left).value, 1.0);
    EXPECT_EQ(as<NumberExpressionAST>(node.right).value, 2.0);
  }
}

TEST(Binary, ARuleLeavesTheTokenBehindWhatItRead) {
  TextParser source("1 * 2 + 3");
  const auto_ast<ExpressionAST> factor(source.started().parseFactor());
  EXPECT_TRUE(source.parser._at(TOKEN_PLUS));
  source.parser.scanAheadToken(false);
  const auto_ast<ExpressionAST> term(source.parser.parseTerm());
  EXPECT_TRUE(source.parser._at(TOKEN_END));
}
