#include "tests/support/dirt.h"

#include <vector>

#include "kelp/ast/expressions.h"
#include "kelp/ast/objects.h"

namespace KelpTest {

namespace {

using namespace Kelp;

template <class T>
T* rubbish() {
  return reinterpret_cast<T*>(uintptr_t{0xdeadbeef0});
}

void soil(uint64_t (&record)[3]) {
  for (uint64_t& word : record) word = 0xdeadbeef;
}

template <size_t n>
void soil(ExpressionAST* (&children)[n]) {
  for (ExpressionAST*& child : children) child = rubbish<ExpressionAST>();
}

void soil(NumberExpressionAST& node) { node.value = 99.5; }

void soil(StringExpressionAST& node) {
  static int turn = 0;
  node.directory = "stale directory";
  node.text = "stale text";
  soil(node.span);
  node.spanLength = 99;
  node.ownsText = ++turn % 2;  // either form finds the other's leavings
}

void soil(VectorExpressionAST& node) {
  soil(node.components);
  node.kind = VALUE_TYPE{99};
}

void soil(AColorExpressionAST& node) { soil(node.components); }

void soil(MatrixExpressionAST& node) { soil(node.rows); }

void soil(TransformExpressionAST& node) {
  node.matrix = rubbish<ExpressionAST>();
  node.offset = rubbish<ExpressionAST>();
}

void soil(TransformHexExpressionAST& node) {
  node.count = 99;
  soil(node.textRef);
  node.textLength = 99;
}

void soil(ObjectReferenceAST& node) {
  node.name = "stale name";
  node.object = rubbish<ObjectAST>();
}

void soil(NegatedExpressionAST& node) { node.operand = rubbish<ExpressionAST>(); }

void soil(InterpolateExpressionAST& node) {
  node.first = node.last = rubbish<KeyList>();
  node.count = 99;
}

void soil(KeyList& pair) {
  pair.key = pair.value = rubbish<ExpressionAST>();
  pair.next = rubbish<KeyList>();
}

void soil(ObjectAST& object) {
  object.firstProperty = object.lastProperty = rubbish<PropertyAST>();
  object.type = "stale type";
  object.name = "stale name";
  object.next = rubbish<ObjectAST>();
  object.extra = rubbish<void>();
  object.filteredOut = 99;
}

void soil(PropertyAST& property) {
  property.name = "stale name";
  property.value = rubbish<ExpressionAST>();
  property.file = "stale file";
  property.line = 99;
  property.next = rubbish<PropertyAST>();
  property.extra = rubbish<void>();
  property.records = rubbish<PropertyRecord>();
}

template <class Node>
void leaveDirt(int elements) {
  std::vector<Node*> taken;
  for (int i = 0; i < elements; ++i) {
    taken.push_back(Node::pool.newElement());
    soil(*taken.back());
  }
  for (Node* node : taken) Node::pool.freeElement(node);
}

}  // namespace

void leaveDirtInPools(int elements) {
  leaveDirt<NumberExpressionAST>(elements);
  leaveDirt<StringExpressionAST>(elements);
  leaveDirt<VectorExpressionAST>(elements);
  leaveDirt<AColorExpressionAST>(elements);
  leaveDirt<MatrixExpressionAST>(elements);
  leaveDirt<TransformExpressionAST>(elements);
  leaveDirt<TransformHexExpressionAST>(elements);
  leaveDirt<ObjectReferenceAST>(elements);
  leaveDirt<NegatedExpressionAST>(elements);
  leaveDirt<InterpolateExpressionAST>(elements);
  leaveDirt<KeyList>(elements);
  leaveDirt<ObjectAST>(elements);
  leaveDirt<PropertyAST>(elements);
}

}  // namespace KelpTest
