// What the fields of nodes hold that nobody has used yet, or nobody uses any more.
#include <gtest/gtest.h>

#include "kelp/ast/expressions.h"
#include "kelp/ast/objects.h"
#include "tests/support/nodes.h"

using namespace Kelp;

namespace {

void expectNone(const uint64_t (&record)[3]) {
  for (const uint64_t word : record) EXPECT_EQ(word, 0U);
}

template <int number>
void expectNone(ExpressionAST* const (&children)[number]) {
  for (const ExpressionAST* child : children) EXPECT_EQ(child, nullptr);
}

}  // namespace

TEST(FreshNodes, LiteralsAreEmpty) {
  const PoolElement<NumberExpressionAST> number;
  EXPECT_EQ(number.value, 0.0);
  EXPECT_EQ(number.nextFree, nullptr);
  const PoolElement<StringExpressionAST> string;
  EXPECT_TRUE(string.directory.isNull());
  EXPECT_TRUE(string.text.isNull());
  expectNone(string.span);
  EXPECT_EQ(string.spanLength, 0);
  EXPECT_EQ(string.ownsText, 1);
  const PoolElement<TransformHexExpressionAST> hex;
  EXPECT_EQ(hex.count, 0);
  expectNone(hex.textRef);
  EXPECT_EQ(hex.textLength, 0);
}

TEST(FreshNodes, ValuesHaveNoComponents) {
  const PoolElement<VectorExpressionAST> vector;
  expectNone<3>(vector.components);
  EXPECT_EQ(static_cast<int>(vector.kind), 0);
  const PoolElement<AColorExpressionAST> color;
  expectNone<4>(color.components);
  const PoolElement<MatrixExpressionAST> matrix;
  expectNone<3>(matrix.rows);
  const PoolElement<TransformExpressionAST> transform;
  EXPECT_EQ(transform.matrix, nullptr);
  EXPECT_EQ(transform.offset, nullptr);
}

TEST(FreshNodes, TypedListIsAnEmptyOne) {
  const ListTypeExpressionAST<int> list;
  expectNone(list.textRef);
  EXPECT_EQ(list.textLength, 0);
  EXPECT_EQ(list.parsedForm, 1);
  EXPECT_EQ(list.elements.count, 0);
  EXPECT_TRUE(list.sourceDir.isNull());
}

TEST(FreshNodes, ReferencesNameNothing) {
  const PoolElement<ObjectReferenceAST> object;
  EXPECT_TRUE(object.name.isNull());
  EXPECT_EQ(object.object, nullptr);
  const PropertyReferenceAST property;
  EXPECT_EQ(property.resolved, nullptr);
  const ArrayExpressionAST array;
  EXPECT_TRUE(array.indices.empty());
  EXPECT_EQ(array.base, nullptr);
}

TEST(FreshNodes, OperatorsAndCallsHaveNoOperands) {
  const PoolElement<NegatedExpressionAST> negated;
  EXPECT_EQ(negated.operand, nullptr);
  const BinaryExpressionAST binary;
  EXPECT_EQ(binary.left, nullptr);
  EXPECT_EQ(binary.right, nullptr);
  EXPECT_EQ(binary.op, 0);
  const BuiltinFunctionAST call;
  EXPECT_EQ(call.numArgs, 0);
  expectNone<4>(call.args);
  EXPECT_EQ(call.funcID, 0);
  EXPECT_EQ(call.seed, 0.0F);
}

TEST(FreshNodes, ListsAndTablesAreEmpty) {
  const ListExpressionAST list;
  EXPECT_EQ(list.head, nullptr);
  EXPECT_EQ(list.tail, nullptr);
  EXPECT_EQ(list.count, 0);
  EXPECT_EQ(list.evaluated, nullptr);
  const PoolElement<KeyList> pair;
  EXPECT_EQ(pair.key, nullptr);
  EXPECT_EQ(pair.value, nullptr);
  EXPECT_EQ(pair.next, nullptr);
  const PoolElement<InterpolateExpressionAST> table;
  EXPECT_EQ(table.first, nullptr);
  EXPECT_EQ(table.last, nullptr);
  EXPECT_EQ(table.count, 0);
}

TEST(FreshNodes, ObjectsAndPropertiesAreBlank) {
  const PoolElement<ObjectAST> object;
  EXPECT_EQ(object.firstProperty, nullptr);
  EXPECT_EQ(object.lastProperty, nullptr);
  EXPECT_TRUE(object.type.isNull());
  EXPECT_TRUE(object.name.isNull());
  EXPECT_EQ(object.next, nullptr);
  EXPECT_EQ(object.extra, nullptr);
  EXPECT_EQ(object.filteredOut, 0);
  const PoolElement<PropertyAST> property;
  EXPECT_TRUE(property.name.isNull());
  EXPECT_EQ(property.value, nullptr);
  EXPECT_TRUE(property.file.isNull());
  EXPECT_EQ(property.line, 0);
  EXPECT_EQ(property.next, nullptr);
  EXPECT_EQ(property.extra, nullptr);
  EXPECT_EQ(property.records, nullptr);
}

TEST(FreshNodes, ReleasedObjectHoldsNoProperties) {
  ObjectAST* object = KelpTest::object("A", "a");
  object->addProperty(KelpTest::property("x", KelpTest::number(1)), 0, 0);
  object->deleteThis();
  ObjectAST* again = ObjectAST::pool.newElement();
  ASSERT_EQ(again, object);
  EXPECT_EQ(again->firstProperty, nullptr);
  EXPECT_EQ(again->lastProperty, nullptr);
  again->deleteThis();
}
