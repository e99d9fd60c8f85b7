// Nodes come from pools as their last user left them: the parser sets every field.
#include <gtest/gtest.h>

#include <cstring>

#include "tests/support/rows.h"
#include "tests/support/sexpression.h"
#include "tests/support/trees.h"

using namespace Kelp;
using namespace KelpTest;

namespace {

// Something for a pointer field that nobody may follow.
template <class T>
T* rubbish() {
  return reinterpret_cast<T*>(uintptr_t{0xdeadbeef0});
}

// Puts an element with rubbish in it on top of the pool, and gives its address.
template <class Node, class Spoil>
Node* spoilNext(const Spoil& spoil) {
  Node* node = Node::pool.newElement();
  spoil(*node);
  Node::pool.freeElement(node);
  return node;
}

void spoilString(StringExpressionAST& node, int ownsText) {
  node.directory = "stale directory";
  node.text = "stale text";
  for (uint64_t& word : node.span) word = 0xdeadbeef;
  node.spanLength = 99;
  node.ownsText = ownsText;
}

void spoilObject(ObjectAST& object) {
  object.firstProperty = rubbish<PropertyAST>();
  object.lastProperty = rubbish<PropertyAST>();
  object.type = "stale type";
  object.name = "stale name";
  object.next = rubbish<ObjectAST>();
  object.extra = rubbish<void>();
  object.filteredOut = 1;
}

void spoilProperty(PropertyAST& property) {
  property.name = "stale name";
  property.value = rubbish<ExpressionAST>();
  property.file = "stale file";
  property.line = 99;
  property.next = rubbish<PropertyAST>();
  property.extra = rubbish<void>();
  property.records = rubbish<PropertyRecord>();
}

void spoilTable(InterpolateExpressionAST& table) {
  table.first = rubbish<KeyList>();
  table.last = rubbish<KeyList>();
  table.count = 99;
}

void spoilPair(KeyList& pair) {
  pair.key = rubbish<ExpressionAST>();
  pair.value = rubbish<ExpressionAST>();
  pair.next = rubbish<KeyList>();
}

template <class Children>
void spoilChildren(Children& children) {
  for (auto& child : children) child = rubbish<ExpressionAST>();
}

}  // namespace

TEST(DirtyPool, AShortString) {
  auto* node = spoilNext<StringExpressionAST>([](auto& used) { spoilString(used, 0); });
  ParsedExpression parsed("\"text\"");
  ASSERT_EQ(parsed.tree.get(), node);
  EXPECT_STREQ(node->directory.chars(), "scenes");
  EXPECT_STREQ(node->text.chars(), "text");
  for (const uint64_t word : node->span) EXPECT_EQ(word, 0U);
  EXPECT_EQ(node->spanLength, 0);
  EXPECT_EQ(node->ownsText, 1);
}

TEST(DirtyPool, ALongString) {
  auto* node = spoilNext<StringExpressionAST>([](auto& used) { spoilString(used, 1); });
  ParsedExpression parsed("\"" + std::string(2000, 'x') + "\"");
  ASSERT_EQ(parsed.tree.get(), node);
  EXPECT_STREQ(node->directory.chars(), "scenes");
  EXPECT_TRUE(node->text.isNull());
  EXPECT_EQ(node->span[1], 2000U);
  EXPECT_EQ(node->spanLength, 2000);
  EXPECT_EQ(node->ownsText, 0);
}

TEST(DirtyPool, ATransformHex) {
  auto* node = spoilNext<TransformHexExpressionAST>([](auto& used) {
    used.count = 99;
    for (uint64_t& word : used.textRef) word = 0xdeadbeef;
    used.textLength = 99;
  });
  ParsedExpression parsed("TransformHex(1234)");
  ASSERT_EQ(parsed.tree.get(), node);
  EXPECT_EQ(node->count, 1);
  for (const uint64_t word : node->textRef) EXPECT_EQ(word, 0U);
  EXPECT_EQ(node->textLength, 4);
}

TEST(DirtyPool, AnObjectReference) {
  auto* node = spoilNext<ObjectReferenceAST>([](auto& used) {
    used.name = "stale";
    used.object = rubbish<ObjectAST>();
  });
  ParsedExpression parsed("a");
  ASSERT_EQ(parsed.tree.get(), node);
  EXPECT_STREQ(node->name.chars(), "a");
  EXPECT_EQ(node->object, nullptr);
}

TEST(DirtyPool, AnInterpolationTable) {
  auto* table = spoilNext<InterpolateExpressionAST>(spoilTable);
  spoilNext<KeyList>(spoilPair);
  ParsedExpression parsed("interpolate((1, 2))");
  ASSERT_EQ(parsed.tree.get(), table);
  EXPECT_EQ(table->count, 1);
  EXPECT_EQ(table->first, table->last);
  EXPECT_EQ(table->first->next, nullptr);
  EXPECT_EQ(sexpression(table), "(interp (1 2))");
}

TEST(DirtyPool, AnInterpolationTableThatFailsAtOnce) {
  spoilNext<InterpolateExpressionAST>(spoilTable);
  EXPECT_EQ(parsedExpression("interpolate()"), "error: Expected \"(\" to begin interpolate pair");
}

TEST(DirtyPool, NodesOfFixedChildren) {
  spoilNext<VectorExpressionAST>([](auto& used) {
    spoilChildren(used.components);
    used.kind = VALUE_TYPE{99};
  });
  EXPECT_EQ(parsedExpression("Color(1, 2, 3)"), "(col 1 2 3)");
  spoilNext<AColorExpressionAST>([](auto& used) { spoilChildren(used.components); });
  EXPECT_EQ(parsedExpression("AColor(1, 2, 3, 4)"), "(acol 1 2 3 4)");
  spoilNext<MatrixExpressionAST>([](auto& used) { spoilChildren(used.rows); });
  EXPECT_EQ(parsedExpression("Matrix(1, 2, 3)"), "(mat 1 2 3)");
  spoilNext<TransformExpressionAST>([](auto& used) {
    used.matrix = rubbish<ExpressionAST>();
    used.offset = rubbish<ExpressionAST>();
  });
  EXPECT_EQ(parsedExpression("Transform(1, 2)"), "(xf 1 2)");
  spoilNext<NegatedExpressionAST>([](auto& used) { used.operand = rubbish<ExpressionAST>(); });
  EXPECT_EQ(parsedExpression("-1"), "(neg 1)");
}

TEST(DirtyPool, AnObject) {
  auto* node = spoilNext<ObjectAST>(spoilObject);
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
  auto* node = spoilNext<ObjectAST>(spoilObject);
  EXPECT_EQ(parsedScene("5 {}"), "error: Expected identifier");
  EXPECT_TRUE(node->name.isNull());
  EXPECT_EQ(node->firstProperty, nullptr);
}

TEST(DirtyPool, AProperty) {
  auto* node = spoilNext<PropertyAST>(spoilProperty);
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
