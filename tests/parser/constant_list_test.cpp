#include <gtest/gtest.h>

#include <climits>
#include <cmath>

#include "tests/support/rows.h"
#include "tests/support/trees.h"

using namespace Kelp;
using namespace KelpTest;

TEST(ListInt, TruncatesTowardZero) {
  expectExpressions({
      {"ListInt()", "(lint)"},
      {"ListInt(1)", "(lint 1)"},
      {"ListInt(1, 2, )", "(lint 1 2)"},
      {"ListInt(1.7, -1.7)", "(lint 1 -1)"},
      {"ListInt(2.9, -2.9, 0.5, -0.5)", "(lint 2 -2 0 0)"},
      {"ListInt(+3, -+4, 2e3)", "(lint 3 -4 2000)"},
      {"ListInt(2147483647, -2147483648)", "(lint 2147483647 -2147483648)"},
      {"ListInt(2147483647.9, -2147483648.9)", "(lint 2147483647 -2147483648)"},
  });
}

TEST(ListInt, WhatAnIntCannotHoldIsTheLeastOne) {
  const std::string least = std::to_string(INT_MIN);
  for (const char* text :
       {"3000000000", "2147483648", "-2147483649", "1e20", "-1e20", "1e400", "-1e400", "0e400"}) {
    expectExpressions({{std::string("ListInt(") + text + ")", "(lint " + least + ")"}});
  }
}

TEST(ListFloat, RoundsToSinglePrecision) {
  expectExpressions({
      {"ListFloat( )", "(lflt)"},
      {"ListFloat(1, 2,)", "(lflt 1 2)"},
      {"ListFloat(0.1, -0.25, 1e-3)", "(lflt 0.100000001 -0.25 0.00100000005)"},
      {"ListFloat(16777217)", "(lflt 16777216)"},
      {"ListFloat(1e400, -1e400)", "(lflt inf -inf)"},
      {"ListFloat(1.#INF, 1.#QNAN, nan)", "(lflt 9.99999984e+17 0 0)"},
  });
}

TEST(ListFloat, KeepsTheSignOfZero) {
  ParsedExpression parsed("ListFloat(0, -0)");
  const auto& list = as<ListTypeExpressionAST<float>>(parsed.tree.get());
  EXPECT_FALSE(std::signbit(list.elements[0]));
  EXPECT_TRUE(std::signbit(list.elements[1]));
}

TEST(ConstantList, ErrorsInNumberLists) {
  for (const std::string name : {"ListInt", "ListFloat"}) {
    expectExpressions({
        {name + "(1 2)", "error: ) expected"},
        {name + "(1", "error: ) expected"},
        {name + "(1;", "error: ) expected"},
        {name + "(1 + 2)", "error: ) expected"},
        {name + "(", "error: Expected a number literal"},
        {name + "(1,", "error: Expected a number literal"},
        {name + "(,)", "error: Expected a number literal"},
        {name + "(1,,2)", "error: Expected a number literal"},
        {name + "(a)", "error: Expected a number literal"},
        {name + "(\"1\")", "error: Expected a number literal"},
        {name + "((1))", "error: Expected a number literal"},
        {name + "(--1)", "error: Expected a number literal"},
        {name + "(+-1)", "error: Expected a number literal"},
        {name + "(-)", "error: Expected a number literal"},
    });
  }
}

TEST(ConstantList, TheNodeHoldsNothingButItsElements) {
  ParsedExpression parsed("ListInt(5, 6, 7)");
  const auto& list = as<ListTypeExpressionAST<int>>(parsed.tree.get());
  EXPECT_EQ(list.parsedForm, 1);
  EXPECT_EQ(list.elements.count, 3);
  EXPECT_EQ(list.elements[2], 7);
  EXPECT_EQ(list.textLength, 0);
  for (const uint64_t word : list.textRef) EXPECT_EQ(word, 0U);
  EXPECT_TRUE(list.sourceDir.isNull());
}

TEST(ConstantList, EveryLengthAroundTheBlocksOfTheScratch) {
  for (const int length : {999, 1000, 1001, 2000, 2001, 12345}) {
    std::string text = "ListInt(";
    for (int i = 0; i < length; ++i) text += std::to_string(i) + ",";
    ParsedExpression parsed(text + ")");
    const auto& list = as<ListTypeExpressionAST<int>>(parsed.tree.get());
    ASSERT_EQ(list.elements.count, length);
    for (int i = 0; i < length; ++i) ASSERT_EQ(list.elements[i], i);
  }
}

TEST(ConstantList, TheScratchIsEmptiedForEveryList) {
  expectExpressions({{"List(ListInt(1,2,3), ListInt(4), ListInt(), ListFloat(5), ListFloat(6,7))",
                      "(list (lint 1 2 3) (lint 4) (lint) (lflt 5) (lflt 6 7))"}});
}

TEST(ConstantList, AFailedListLeavesNothingForTheNext) {
  TextParser source("ListInt(1, 2, x ListInt(3)");
  EXPECT_THROW(source.started().parseTerm(), InvalidSyntaxException);
  source.parser.scanAheadToken(false);
  const auto_ast<ExpressionAST> tree(source.parser.parseTerm());
  const auto& list = as<ListTypeExpressionAST<int>>(tree.get());
  ASSERT_EQ(list.elements.count, 1);
  EXPECT_EQ(list.elements[0], 3);
}
