#include "kelp/ast/expressions.h"

#include <typeinfo>

#include "kelp/ast/release.h"
#include "kelp/ast/visitor.h"
#include "kelp/utils/stackguard.h"

namespace Kelp {

namespace {

[[noreturn]] void throwNotIndexable() { throw NotIndexableException(CharString()); }

// Most nodes are numbers as their pool makes them.
bool isPooledNumber(const ExpressionAST& node) {
  return &typeid(node) == &typeid(PoolElement<NumberExpressionAST>);
}

// Children are released recursively while there is stack for it.
void releaseChild(ExpressionAST*& child) {
  if (child == nullptr) return;
  if (isPooledNumber(*child)) {
    NumberExpressionAST::pool.freeElement(static_cast<NumberExpressionAST*>(child));
  } else if (isStackNearlyUsedUp()) {
    releaseWithoutStack(child);
  } else {
    child->deleteThis();
  }
  child = nullptr;
}

// Nodes lie all over the memory: later children are on their way while the first is released.
template <int number>
void releaseChildren(ExpressionAST* (&children)[number]) {
  for (const ExpressionAST* child : children) __builtin_prefetch(child);
  for (ExpressionAST*& child : children) releaseChild(child);
}

// The child as a node of the given class, null when it is of another class.
// A class that a host has derived from it has operations of its own, and is asked for them.
NegatedExpressionAST* asNegated(ExpressionAST* child) {
  const bool same =
      child != nullptr && &typeid(*child) == &typeid(PoolElement<NegatedExpressionAST>);
  return same ? static_cast<NegatedExpressionAST*>(child) : nullptr;
}
BinaryExpressionAST* asBinary(ExpressionAST* child) {
  // The class is final, so comparing type_info addresses is enough and far cheaper than a cast.
  const bool same = child != nullptr && &typeid(*child) == &typeid(BinaryExpressionAST);
  return same ? static_cast<BinaryExpressionAST*>(child) : nullptr;
}

// Releases a chain of nodes of one class that hang on each other by `child`, in the order of the
// obvious recursion (deepest first) but without its stack: on the way down every link is turned
// round to point at the parent. `finish` releases what else the node owns and the node itself.
template <class Node, class As, class Finish>
void releaseSpine(Node* top, ExpressionAST* Node::*child, As as, Finish finish) {
  Node* parent = nullptr;
  Node* node = top;
  while (Node* next = as(node->*child)) {
    node->*child = parent;
    parent = node;
    node = next;
  }
  releaseChild(node->*child);
  for (;;) {
    finish(node);
    if (parent == nullptr) return;
    node = parent;
    parent = static_cast<Node*>(node->*child);
    node->*child = nullptr;
  }
}

}  // namespace

// ---- release -----------------------------------------------------------------------------------

void NumberExpressionAST::deleteThis() { pool.freeElement(this); }
void StringExpressionAST::deleteThis() { pool.freeElement(this); }
void ObjectReferenceAST::deleteThis() { pool.freeElement(this); }

void VectorExpressionAST::deleteThis() {
  releaseChildren(components);
  pool.freeElement(this);
}

void AColorExpressionAST::deleteThis() {
  releaseChildren(components);
  pool.freeElement(this);
}

void MatrixExpressionAST::deleteThis() {
  releaseChildren(rows);
  pool.freeElement(this);
}

void TransformExpressionAST::deleteThis() {
  releaseChild(matrix);
  releaseChild(offset);
  pool.freeElement(this);
}

void TransformHexExpressionAST::deleteThis() {
  count = 0;
  pool.freeElement(this);
}

template <class T>
void ListTypeExpressionAST<T>::deleteThis() {
  sourceDir.freeMem();
  elements.free();
  delete this;
}

void PropertyReferenceAST::deleteThis() { delete this; }
void RuntimeValueAST::deleteThis() { delete this; }

void ArrayExpressionAST::deleteThis() {
  for (; !indices.empty(); indices.pop_back()) releaseChild(indices.back());
  releaseChild(base);
  delete this;
}

void NegatedExpressionAST::deleteThis() {
  releaseSpine(this, &NegatedExpressionAST::operand, asNegated,
               [](NegatedExpressionAST* node) { pool.freeElement(node); });
}

void BinaryExpressionAST::deleteThis() {
  releaseSpine(this, &BinaryExpressionAST::left, asBinary, [](BinaryExpressionAST* node) {
    releaseChild(node->right);
    delete node;
  });
}

void BuiltinFunctionAST::deleteThis() {
  for (int i = 1; i < numArgs; ++i) __builtin_prefetch(args[i]);
  for (int i = 0; i < numArgs; ++i) releaseChild(args[i]);
  delete this;
}

void ListExpressionAST::deleteThis() {
  for (ListCell* cell = head; cell != nullptr;) {
    ListCell* next = cell->next;
    if (next != nullptr) {
      __builtin_prefetch(next->expr);
      __builtin_prefetch(next->next);
    }
    releaseChild(cell->expr);
    delete cell;
    cell = next;
  }
  delete this;
}

void InterpolateExpressionAST::deleteThis() {
  for (KeyList* pair = first; pair != nullptr;) {
    KeyList* next = pair->next;
    __builtin_prefetch(next);
    __builtin_prefetch(pair->value);
    releaseChild(pair->key);
    releaseChild(pair->value);
    pair->next = nullptr;
    if (pair != first) KeyList::pool.freeElement(pair);
    pair = next;
  }
  // The first pair goes last, so that it is the next one to be handed out.
  if (first != nullptr) KeyList::pool.freeElement(first);
  first = nullptr;
  last = nullptr;
  pool.freeElement(this);
}

// ---- visit -------------------------------------------------------------------------------------

void NumberExpressionAST::visit(Visitor& visitor) { visitor.visit(*this); }
void StringExpressionAST::visit(Visitor& visitor) { visitor.visit(*this); }
void VectorExpressionAST::visit(Visitor& visitor) { visitor.visit(*this); }
void AColorExpressionAST::visit(Visitor& visitor) { visitor.visit(*this); }
void MatrixExpressionAST::visit(Visitor& visitor) { visitor.visit(*this); }
void TransformExpressionAST::visit(Visitor& visitor) { visitor.visit(*this); }
void TransformHexExpressionAST::visit(Visitor& visitor) { visitor.visit(*this); }
void ObjectReferenceAST::visit(Visitor& visitor) { visitor.visit(*this); }
void NegatedExpressionAST::visit(Visitor& visitor) { visitor.visit(*this); }
void InterpolateExpressionAST::visit(Visitor& visitor) { visitor.visit(*this); }
void ArrayExpressionAST::visit(Visitor& visitor) { visitor.visit(*this); }
void BinaryExpressionAST::visit(Visitor& visitor) { visitor.visit(*this); }
void BuiltinFunctionAST::visit(Visitor& visitor) { visitor.visit(*this); }
void ListExpressionAST::visit(Visitor& visitor) { visitor.visit(*this); }
void PropertyReferenceAST::visit(Visitor& visitor) { visitor.visit(*this); }
void RuntimeValueAST::visit(Visitor& visitor) { visitor.visit(*this); }

template <class T>
void ListTypeExpressionAST<T>::visit(Visitor& visitor) {
  visitor.visit(*this);
}

// ---- getIth ------------------------------------------------------------------------------------

ExpressionAST* TransformExpressionAST::getIth(int i) {
  if (i == 0) return matrix;
  return i == 1 ? offset : nullptr;
}

ExpressionAST* NegatedExpressionAST::getIth(int i) {
  ExpressionAST* innermost = operand;
  while (NegatedExpressionAST* negated = asNegated(innermost)) innermost = negated->operand;
  // NOLINTNEXTLINE(clang-analyzer-core.CallAndMessage): a negation in use has an operand
  return innermost->getIth(i);
}

ExpressionAST* ListExpressionAST::getIth(int i) {
  ListCell* cell = i >= 0 ? head : nullptr;
  for (; cell != nullptr && i > 0; --i) cell = cell->next;
  return cell != nullptr ? cell->expr : nullptr;
}

ExpressionAST* NumberExpressionAST::getIth(int) { throwNotIndexable(); }
ExpressionAST* StringExpressionAST::getIth(int) { throwNotIndexable(); }
ExpressionAST* InterpolateExpressionAST::getIth(int) { throwNotIndexable(); }
ExpressionAST* TransformHexExpressionAST::getIth(int) { throwNotIndexable(); }
ExpressionAST* ObjectReferenceAST::getIth(int) { throwNotIndexable(); }
ExpressionAST* ArrayExpressionAST::getIth(int) { throwNotIndexable(); }
ExpressionAST* BinaryExpressionAST::getIth(int) { throwNotIndexable(); }
ExpressionAST* BuiltinFunctionAST::getIth(int) { throwNotIndexable(); }
ExpressionAST* PropertyReferenceAST::getIth(int) { throwNotIndexable(); }
ExpressionAST* RuntimeValueAST::getIth(int) { throwNotIndexable(); }

template <class T>
ExpressionAST* ListTypeExpressionAST<T>::getIth(int) {
  throwNotIndexable();
}

// ---- operators ---------------------------------------------------------------------------------

const char* BinaryExpressionAST::operatorSpelling() const {
  switch (op) {
    case kPlus:
      return "+";
    case kMinus:
      return "-";
    case kMultiply:
      return "*";
    case kDivide:
      return "/";
    default:
      return "";
  }
}

// ---- factories and instances -------------------------------------------------------------------

VectorExpressionAST* VectorExpressionAST::newVectorExpressionAST(VALUE_TYPE kind,
                                                                 ExpressionAST** components) {
  VectorExpressionAST* node = pool.newElement();
  node->kind = kind;
  for (int i = 0; i < 3; ++i) node->components[i] = components[i];
  return node;
}

template class ListTypeExpressionAST<Vector>;
template class ListTypeExpressionAST<int>;
template class ListTypeExpressionAST<Color>;
template class ListTypeExpressionAST<float>;
template class ListTypeExpressionAST<CharString>;

}  // namespace Kelp
