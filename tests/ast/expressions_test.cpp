#include "kelp/ast/expressions.h"

#include <gtest/gtest.h>

#include "tests/support/allocations.h"
#include "tests/support/nodes.h"
#include "tests/support/parsing.h"

using namespace Kelp;
using namespace KelpTest;

namespace {

void expectNotIndexable(ExpressionAST* node, const char* name) {
  const auto_ast<ExpressionAST> guard(node);
  for (const int i : {0, 1, -1}) {
    try {
      node->getIth(i);
      ADD_FAILURE() << name;
    } catch (const NotIndexableException& error) {
      EXPECT_TRUE(error.message.isNull()) << name;
    }
  }
}

template <class Node>
Node* fromPool() {
  return Node::pool.newElement();
}

TEST(Type, Is1ForInterpolationAnd0ForTheRest) {
  const auto_ast<ExpressionAST> table(interpolation(1));
  EXPECT_EQ(table->type(), 1);
  ExpressionAST* const others[] = {number(1),
                                   vector(nullptr, nullptr, nullptr),
                                   negated(number(1)),
                                   fromPool<StringExpressionAST>(),
                                   fromPool<TransformHexExpressionAST>(),
                                   fromPool<ObjectReferenceAST>(),
                                   new ListTypeExpressionAST<float>,
                                   new BuiltinFunctionAST,
                                   new ListExpressionAST,
                                   new PropertyReferenceAST,
                                   new RuntimeValueAST,
                                   new ArrayExpressionAST,
                                   binary(nullptr, nullptr)};
  for (ExpressionAST* other : others) {
    EXPECT_EQ(other->type(), 0);
    other->deleteThis();
  }
}

TEST(GetIth, OfVectorColorAndMatrixIsTheComponent) {
  ExpressionAST* const parts[4] = {number(1), number(2), number(3), number(4)};
  VectorExpressionAST* three = vector(parts[0], parts[1], parts[2]);
  for (int i = 0; i < 3; ++i) EXPECT_EQ(three->getIth(i), parts[i]);
  AColorExpressionAST* four = AColorExpressionAST::pool.newElement();
  for (int i = 0; i < 4; ++i) four->components[i] = parts[i];
  for (int i = 0; i < 4; ++i) EXPECT_EQ(four->getIth(i), parts[i]);
  MatrixExpressionAST* rows = MatrixExpressionAST::pool.newElement();
  for (int i = 0; i < 3; ++i) rows->rows[i] = parts[2 - i];
  for (int i = 0; i < 3; ++i) EXPECT_EQ(rows->getIth(i), parts[2 - i]);
  for (ExpressionAST*& row : rows->rows) row = nullptr;
  for (ExpressionAST*& component : three->components) component = nullptr;
  rows->deleteThis();
  three->deleteThis();
  four->deleteThis();
}

TEST(GetIth, OfTransformIsMatrixOffsetOrNull) {
  const auto_ast<TransformExpressionAST> node(TransformExpressionAST::pool.newElement());
  node->matrix = number(1);
  node->offset = number(2);
  EXPECT_EQ(node->getIth(0), node->matrix);
  EXPECT_EQ(node->getIth(1), node->offset);
  EXPECT_EQ(node->getIth(2), nullptr);
  EXPECT_EQ(node->getIth(-1), nullptr);
}

TEST(GetIth, OfNegatedVectorIsTheVectorsComponent) {
  const auto_ast<ExpressionAST> once(negated(vector(number(1), number(2), number(3))));
  EXPECT_EQ(valueOf(once->getIth(1)), 2);
  const auto_ast<ExpressionAST> thrice(
      negated(negated(negated(vector(number(1), number(2), number(3))))));
  EXPECT_EQ(valueOf(thrice->getIth(2)), 3);
}

TEST(GetIth, OfNodesWithoutComponentsThrowsWithoutAMessage) {
  expectNotIndexable(number(1), "number");
  expectNotIndexable(fromPool<StringExpressionAST>(), "string");
  expectNotIndexable(interpolation(2), "interpolation");
  expectNotIndexable(fromPool<TransformHexExpressionAST>(), "transform hex");
  expectNotIndexable(fromPool<ObjectReferenceAST>(), "object reference");
  expectNotIndexable(new ListTypeExpressionAST<Vector>, "vectors");
  expectNotIndexable(new ListTypeExpressionAST<int>, "ints");
  expectNotIndexable(new ListTypeExpressionAST<Color>, "colours");
  expectNotIndexable(new ListTypeExpressionAST<float>, "floats");
  expectNotIndexable(new ListTypeExpressionAST<CharString>, "strings");
  expectNotIndexable(negated(number(1)), "negated number");
  expectNotIndexable(new PropertyReferenceAST, "property reference");
  expectNotIndexable(new RuntimeValueAST, "runtime value");
  expectNotIndexable(new BuiltinFunctionAST, "call");
  expectNotIndexable(binary(number(1), number(2)), "sum");
  expectNotIndexable(new ArrayExpressionAST, "indexed reference");
}

TEST(GetIth, OfAListIsTheElementOrNull) {
  const auto_ast<ListExpressionAST> list(new ListExpressionAST);
  list->tail = new ListCell{number(2), nullptr};
  list->head = new ListCell{number(1), list->tail};
  list->count = 2;
  EXPECT_EQ(valueOf(list->getIth(0)), 1);
  EXPECT_EQ(valueOf(list->getIth(1)), 2);
  EXPECT_EQ(list->getIth(2), nullptr);
  EXPECT_EQ(list->getIth(-1), nullptr);
}

TEST(Factories, NumberReusesTheElementJustFreed) {
  ExpressionAST* first = number(1);
  first->deleteThis();
  ExpressionAST* second = number(2);
  EXPECT_EQ(second, first);
  EXPECT_EQ(valueOf(second), 2);
  second->deleteThis();
}

TEST(Factories, VectorTakesOverKindAndComponents) {
  for (const VALUE_TYPE kind : {VALUE_VECTOR, VALUE_COLOR}) {
    ExpressionAST* parts[3] = {number(1), number(2), number(3)};
    VectorExpressionAST* node = VectorExpressionAST::newVectorExpressionAST(kind, parts);
    EXPECT_EQ(node->kind, kind);
    for (int i = 0; i < 3; ++i) EXPECT_EQ(node->components[i], parts[i]);
    node->deleteThis();
  }
  EXPECT_EQ(VALUE_VECTOR, 3);
  EXPECT_EQ(VALUE_COLOR, 5);
}

TEST(FreshNodes, StringOwnsItsText) {
  const StringExpressionAST fresh;
  EXPECT_EQ(fresh.ownsText, 1);
  EXPECT_TRUE(fresh.directory.isNull() && fresh.text.isNull());
  for (const uint64_t word : fresh.span) EXPECT_EQ(word, 0U);
  EXPECT_EQ(fresh.spanLength, 0);
}

TEST(FreshNodes, TypedListIsEmptyAndInParsedForm) {
  const ListTypeExpressionAST<float> fresh;
  for (const uint64_t word : fresh.textRef) EXPECT_EQ(word, 0U);
  EXPECT_EQ(fresh.textLength, 0);
  EXPECT_EQ(fresh.parsedForm, 1);
  EXPECT_EQ(fresh.elements.count, 0);
  EXPECT_TRUE(fresh.sourceDir.isNull());
}

TEST(FreshNodes, OfThePoolsAreZero) {
  const VectorExpressionAST vectorNode;
  for (const ExpressionAST* component : vectorNode.components) EXPECT_EQ(component, nullptr);
  EXPECT_EQ(vectorNode.kind, 0);
  const PropertyAST propertyNode;
  EXPECT_TRUE(propertyNode.name.isNull() && propertyNode.file.isNull());
  EXPECT_EQ(propertyNode.value, nullptr);
  EXPECT_EQ(propertyNode.next, nullptr);
  EXPECT_EQ(propertyNode.records, nullptr);
  const TransformHexExpressionAST hexNode;
  EXPECT_EQ(hexNode.count, 0);
  EXPECT_EQ(hexNode.textLength, 0);
}

}  // namespace
