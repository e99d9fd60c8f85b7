#include <gtest/gtest.h>

#include "tests/support/rows.h"
#include "tests/support/trees.h"

using namespace Kelp;
using namespace KelpTest;

TEST(List, ReadsAnyNumberOfExpressions) {
  expectExpressions({
      {"List()", "(list)"},
      {"List(1)", "(list 1)"},
      {"List(1, \"a\", b.c, -2)", R"((list 1 "a" (prop "b" "c") (neg 2)))"},
      {"List(List(), List(1 + 2))", "(list (list) (list (+ 1 2)))"},
      {"List(Vector(1,2,3), ListInt(1,2,))", "(list (vec 1 2 3) (lint 1 2))"},
  });
}

TEST(List, ErrorsInLists) {
  expectExpressions({
      {"List(1,)", notAToken(")")},
      {"List(,)", notAToken(",")},
      {"List(1 2)", "error: Expected \")\""},
      {"List(1", "error: Expected \")\""},
      {"List(1, 2]", "error: Expected \")\""},
      {"List(", notAToken("")},
  });
}

TEST(List, TheNodeLinksItsCellsInOrder) {
  ParsedExpression parsed("List(1, 2, 3)");
  const auto& list = as<ListExpressionAST>(parsed.tree.get());
  EXPECT_EQ(list.count, 3);
  EXPECT_EQ(list.evaluated, nullptr);
  ListCell* cell = list.head;
  for (int i = 1; i <= 3; ++i) {
    ASSERT_NE(cell, nullptr);
    EXPECT_EQ(as<NumberExpressionAST>(cell->expr).value, i);
    if (i == 3) {
      EXPECT_EQ(cell, list.tail);
    }
    cell = cell->next;
  }
  EXPECT_EQ(cell, nullptr);
}

TEST(List, OfNothingHasNoCells) {
  ParsedExpression parsed("List()");
  const auto& list = as<ListExpressionAST>(parsed.tree.get());
  EXPECT_EQ(list.head, nullptr);
  EXPECT_EQ(list.tail, nullptr);
  EXPECT_EQ(list.count, 0);
}
