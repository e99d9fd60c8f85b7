#include "kelp/ast/visitor.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "kelp/ast/auto_ast.h"
#include "tests/support/nodes.h"

using namespace Kelp;

namespace {

// Tells which overload was called, and with which node.
class Recorder final : public Visitor {
 public:
  std::string name;
  const void* node = nullptr;

#define KELP_RECORD(Class)        \
  void visit(Class& v) override { \
    name = #Class;                \
    node = &v;                    \
  }
  KELP_RECORD(NumberExpressionAST)
  KELP_RECORD(StringExpressionAST)
  KELP_RECORD(VectorExpressionAST)
  KELP_RECORD(AColorExpressionAST)
  KELP_RECORD(MatrixExpressionAST)
  KELP_RECORD(TransformExpressionAST)
  KELP_RECORD(TransformHexExpressionAST)
  KELP_RECORD(ObjectReferenceAST)
  KELP_RECORD(NegatedExpressionAST)
  KELP_RECORD(InterpolateExpressionAST)
  KELP_RECORD(ListTypeExpressionAST<Vector>)
  KELP_RECORD(ListTypeExpressionAST<int>)
  KELP_RECORD(ListTypeExpressionAST<Color>)
  KELP_RECORD(ListTypeExpressionAST<float>)
  KELP_RECORD(ListTypeExpressionAST<CharString>)
  KELP_RECORD(ArrayExpressionAST)
  KELP_RECORD(BinaryExpressionAST)
  KELP_RECORD(BuiltinFunctionAST)
  KELP_RECORD(ListExpressionAST)
  KELP_RECORD(PropertyReferenceAST)
  KELP_RECORD(RuntimeValueAST)
#undef KELP_RECORD
};

template <class Node>
void expectVisited(Node* node, const char* name) {
  Recorder recorder;
  ExpressionAST* base = node;
  base->visit(recorder);
  EXPECT_EQ(recorder.name, name);
  EXPECT_EQ(recorder.node, node) << name;
  DefaultVisitor idle;
  base->visit(idle);
}

// What an element holds that was in use before is no children to release.
template <class Node>
void expectPooledVisited(const char* name) {
  Node* node = Node::pool.newElement();
  expectVisited(node, name);
  Node::pool.freeElement(node);
}

template <class Node>
void expectHeapVisited(const char* name) {
  auto* node = new Node;
  expectVisited(node, name);
  node->deleteThis();
}

#define KELP_EXPECT_POOLED_VISITED(Class) expectPooledVisited<Class>(#Class)
#define KELP_EXPECT_VISITED(Class) expectHeapVisited<Class>(#Class)

TEST(Visitor, PooledNodesFindTheirOperation) {
  KELP_EXPECT_POOLED_VISITED(NumberExpressionAST);
  KELP_EXPECT_POOLED_VISITED(StringExpressionAST);
  KELP_EXPECT_POOLED_VISITED(VectorExpressionAST);
  KELP_EXPECT_POOLED_VISITED(AColorExpressionAST);
  KELP_EXPECT_POOLED_VISITED(MatrixExpressionAST);
  KELP_EXPECT_POOLED_VISITED(TransformExpressionAST);
  KELP_EXPECT_POOLED_VISITED(TransformHexExpressionAST);
  KELP_EXPECT_POOLED_VISITED(ObjectReferenceAST);
  KELP_EXPECT_POOLED_VISITED(NegatedExpressionAST);
  KELP_EXPECT_POOLED_VISITED(InterpolateExpressionAST);
}

TEST(Visitor, HeapNodesFindTheirOperation) {
  KELP_EXPECT_VISITED(ListTypeExpressionAST<Vector>);
  KELP_EXPECT_VISITED(ListTypeExpressionAST<int>);
  KELP_EXPECT_VISITED(ListTypeExpressionAST<Color>);
  KELP_EXPECT_VISITED(ListTypeExpressionAST<float>);
  KELP_EXPECT_VISITED(ListTypeExpressionAST<CharString>);
  KELP_EXPECT_VISITED(ArrayExpressionAST);
  KELP_EXPECT_VISITED(BinaryExpressionAST);
  KELP_EXPECT_VISITED(BuiltinFunctionAST);
  KELP_EXPECT_VISITED(ListExpressionAST);
  KELP_EXPECT_VISITED(PropertyReferenceAST);
  KELP_EXPECT_VISITED(RuntimeValueAST);
}

// A visitor of one class of node needs to name no other.
class NumberCounter final : public DefaultVisitor {
 public:
  using DefaultVisitor::visit;
  void visit(NumberExpressionAST&) override { ++numbers; }
  void visit(VectorExpressionAST& node) override {
    for (ExpressionAST* component : node.components) component->visit(*this);
  }
  int numbers = 0;
};

TEST(DefaultVisitor, LeavesTheRestToWhoeverDerives) {
  using KelpTest::number;
  const auto_ast<ExpressionAST> node(
      KelpTest::vector(number(1), KelpTest::negated(number(2)), number(3)));
  NumberCounter counter;
  node->visit(counter);
  EXPECT_EQ(counter.numbers, 2);
}

// Slot n of a visitor's table, as code that was compiled elsewhere calls it.
TEST(Visitor, TypedListOperationsStandInTheirFixedOrder) {
  ListTypeExpressionAST<Vector> vectors;
  Recorder recorder;
  void* const* const slots = *reinterpret_cast<void* const* const*>(&recorder);
  const char* const names[] = {"ListTypeExpressionAST<Vector>", "ListTypeExpressionAST<int>",
                               "ListTypeExpressionAST<Color>", "ListTypeExpressionAST<float>",
                               "ListTypeExpressionAST<CharString>"};
  // Reading the table is the point here; the operations only take the node's address.
  using Operation = void (*)(Visitor*, void*);
  for (size_t i = 0; i < 5; ++i) {
    const auto operation = reinterpret_cast<Operation>(slots[10 + i]);
    operation(&recorder, &vectors);
    EXPECT_EQ(recorder.name, names[i]);
  }
}

}  // namespace
