#include <gtest/gtest.h>

#include "tests/support/rows.h"
#include "tests/support/trees.h"

using namespace Kelp;
using namespace KelpTest;

TEST(Interpolate, ReadsPairsInOrder) {
  expectExpressions({
      {"interpolate((0,1))", "(interp (0 1))"},
      {"interpolate((0,1),(1,2))", "(interp (0 1) (1 2))"},
      {"interpolate((5,a.b),(-1,Vector(1,2,3)),(5,\"s\"))",
       R"((interp (5 (prop "a" "b")) ((neg 1) (vec 1 2 3)) (5 "s")))"},
      {"interpolate((interpolate((1,2)), 3))", "(interp ((interp (1 2)) 3))"},
      {"interpolate(((1),(2)))", "(interp (1 2))"},
  });
}

TEST(Interpolate, ErrorsInTables) {
  expectExpressions({
      {"interpolate()", "error: Expected \"(\" to begin interpolate pair"},
      {"interpolate(", "error: Expected \"(\" to begin interpolate pair"},
      {"interpolate(1, 2)", "error: Expected \"(\" to begin interpolate pair"},
      {"interpolate((0,1),)", "error: Expected \"(\" to begin interpolate pair"},
      {"interpolate((0 1))", "error: Expected \",\" between interpolate pair elements"},
      {"interpolate((0))", "error: Expected \",\" between interpolate pair elements"},
      {"interpolate((0,1,2))", "error: Expected \")\" after interpolate pair"},
      {"interpolate((0,1", "error: Expected \")\" after interpolate pair"},
      {"interpolate((0,1) (1,2))", "error: Expected \")\" after interpolate"},
      {"interpolate((0,1)", "error: Expected \")\" after interpolate"},
      {"interpolate((,1))", notAToken(",")},
      {"interpolate((0,))", notAToken(")")},
  });
}

TEST(Interpolate, TheNodeLinksItsPairs) {
  ParsedExpression parsed("interpolate((1,10),(2,20),(3,30))");
  auto& table = as<InterpolateExpressionAST>(parsed.tree.get());
  EXPECT_EQ(table.count, 3);
  EXPECT_EQ(table.type(), 1);
  KeyList* pair = table.first;
  for (int i = 1; i <= 3; ++i) {
    ASSERT_NE(pair, nullptr);
    EXPECT_EQ(as<NumberExpressionAST>(pair->key).value, i);
    EXPECT_EQ(as<NumberExpressionAST>(pair->value).value, 10 * i);
    if (i == 3) {
      EXPECT_EQ(pair, table.last);
    }
    pair = pair->next;
  }
  EXPECT_EQ(pair, nullptr);
}
