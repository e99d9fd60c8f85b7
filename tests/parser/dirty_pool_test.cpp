// Nodes come from pools as their last user left them: the parser sets every field.
#include <gtest/gtest.h>

#include <cstring>

#include "tests/support/dirt.h"
#include "tests/support/rows.h"
#include "tests/support/sexpression.h"
#include "tests/support/trees.h"

using namespace Kelp;
using namespace KelpTest;

namespace {

// The element that a pool hands out next, with something in all of its fields.
template <class Node>
Node* soiledNext() {
  leaveDirtInPools(1);
  Node* node = Node::pool.newElement();
  Node::pool.freeElement(node);
  return node;
}

}  // namespace

TEST(DirtyPool, AShortString) {
  auto* node = soiledNext<StringExpressionAST>();
  node->ownsText = 0;
  ParsedExpression parsed("\"text\"");
  ASSERT_EQ(parsed.tree.get(), node);
  EXPECT_STREQ(node->directory.chars(), "scenes");
  EXPECT_STREQ(node->text.chars(), "text");
  for (const uint64_t word : node->span) EXPECT_EQ(word, 0U);
  EXPECT_EQ(node->spanLength, 0);
  EXPECT_EQ(node->ownsText, 1);
}

TEST(DirtyPool, ALongString) {
  auto* node = soiledNext<StringExpressionAST>();
  node->ownsText = 1;
  ParsedExpression parsed("\"" + std::string(2000, 'x') + "\"");
  ASSERT_EQ(parsed.tree.get(), node);
  EXPECT_STREQ(node->directory.chars(), "scenes");
  EXPECT_TRUE(node->text.isNull());
  EXPECT_EQ(node->span[1], 2000U);
  EXPECT_EQ(node->spanLength, 2000);
  EXPECT_EQ(node->ownsText, 0);
}

TEST(DirtyPool, ATransformHex) {
  auto* node = soiledNext<TransformHexExpressionAST>();
  ParsedExpression parsed("TransformHex(1234)");
  ASSERT_EQ(parsed.tree.get(), node);
  EXPECT_EQ(node->count, 1);
  for (const uint64_t word : node->textRef) EXPECT_EQ(word, 0U);
  EXPECT_EQ(node->textLength, 4);
}

TEST(DirtyPool, AnObjectReference) {
  auto* node = soiledNext<ObjectReferenceAST>();
  ParsedExpression parsed("a");
  ASSERT_EQ(parsed.tree.get(), node);
  EXPECT_STREQ(node->name.chars(), "a");
  EXPECT_EQ(node->object, nullptr);
}

TEST(DirtyPool, AnInterpolationTable) {
  auto* table = soiledNext<InterpolateExpressionAST>();
  ParsedExpression parsed("interpolate((1, 2))");
  ASSERT_EQ(parsed.tree.get(), table);
  EXPECT_EQ(table->count, 1);
  EXPECT_EQ(table->first, table->last);
  EXPECT_EQ(table->first->next, nullptr);
  EXPECT_EQ(sexpression(table), "(interp (1 2))");
}

TEST(DirtyPool, AnInterpolationTableThatFailsAtOnce) {
  soiledNext<InterpolateExpressionAST>();
  EXPECT_EQ(parsedExpression("interpolate()"), "error: Expected \"(\" to begin interpolate pair");
}

TEST(DirtyPool, NodesOfFixedChildren) {
  soiledNext<VectorExpressionAST>();
  EXPECT_EQ(parsedExpression("Color(1, 2, 3)"), "(col 1 2 3)");
  soiledNext<AColorExpressionAST>();
  EXPECT_EQ(parsedExpression("AColor(1, 2, 3, 4)"), "(acol 1 2 3 4)");
  soiledNext<MatrixExpressionAST>();
  EXPECT_EQ(parsedExpression("Matrix(1, 2, 3)"), "(mat 1 2 3)");
  soiledNext<TransformExpressionAST>();
  EXPECT_EQ(parsedExpression("Transform(1, 2)"), "(xf 1 2)");
  soiledNext<NegatedExpressionAST>();
  EXPECT_EQ(parsedExpression("-1"), "(neg 1)");
}

TEST(DirtyPool, AnObject) {
  auto* node = soiledNext<ObjectAST>();
  TextParser source("A {}");
  const auto_ast<ObjectAST> object(source.started().parseObject());
  ASSERT_EQ(object.get(), node);
  EXPECT_EQ(node->firstProperty, nullptr);
  EXPECT_EQ(node->lastProperty, nullptr);
  EXPECT_STREQ(node->type.chars(), "A");
  EXPECT_STREQ(node->name.chars(), "");
  EXPECT_EQ(node->next, nullptr);
  EXPECT_EQ(node->extra, nullptr);
  EXPECT_EQ(node->filteredOut, 0);
}

TEST(DirtyPool, AnObjectThatFailsAtOnce) {
  auto* node = soiledNext<ObjectAST>();
  EXPECT_EQ(parsedScene("5 {}"), "error: Expected identifier");
  EXPECT_TRUE(node->name.isNull());
  EXPECT_EQ(node->firstProperty, nullptr);
}

TEST(DirtyPool, AProperty) {
  auto* node = soiledNext<PropertyAST>();
  TextParser source("x = 1;");
  const auto_ast<PropertyAST> property(source.started().parseProperty());
  ASSERT_EQ(property.get(), node);
  EXPECT_STREQ(node->name.chars(), "x");
  EXPECT_EQ(sexpression(node->value), "1");
  EXPECT_STREQ(node->file.chars(), "scenes/test.scene");
  EXPECT_EQ(node->line, 1);
  EXPECT_EQ(node->next, nullptr);
  EXPECT_EQ(node->extra, nullptr);
  EXPECT_EQ(node->records, nullptr);
}
