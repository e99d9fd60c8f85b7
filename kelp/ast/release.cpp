#include "kelp/ast/release.h"

#include "kelp/ast/visitor.h"

namespace Kelp {

namespace {

// Finds, for every class, the first child that has not been released yet. Nodes of a host's own
// classes count as leaves, if they do not show themselves as one of ours: their deleteThis() knows
// what to do.
class NextChild final : public DefaultVisitor {
 public:
  using DefaultVisitor::visit;

  /// Where the node holds that child; null when there is none left.
  ExpressionAST** of(ExpressionAST& node) {
    slot = nullptr;
    node.visit(*this);
    return slot;
  }

  void visit(VectorExpressionAST& node) override { take(node.components); }
  void visit(AColorExpressionAST& node) override { take(node.components); }
  void visit(MatrixExpressionAST& node) override { take(node.rows); }
  void visit(BuiltinFunctionAST& node) override { take(node.args); }
  void visit(NegatedExpressionAST& node) override { take(node.operand); }
  void visit(TransformExpressionAST& node) override {
    take(node.matrix);
    take(node.offset);
  }
  void visit(BinaryExpressionAST& node) override {
    take(node.left);
    take(node.right);
  }
  void visit(ArrayExpressionAST& node) override {
    while (!node.indices.empty() && node.indices.back() == nullptr) node.indices.pop_back();
    if (!node.indices.empty()) take(node.indices.back());
    take(node.base);
  }
  void visit(ListExpressionAST& node) override {
    while (node.head != nullptr && node.head->expr == nullptr) {
      ListCell* done = node.head;
      node.head = done->next;
      delete done;
    }
    if (node.head != nullptr) take(node.head->expr);
  }
  void visit(InterpolateExpressionAST& node) override {
    if (node.first == nullptr) return;
    take(*node.first);
    // The first pair stays until last, so it is the others that are unlinked.
    while (slot == nullptr && node.first->next != nullptr) {
      KeyList* pair = node.first->next;
      take(*pair);
      if (slot != nullptr) return;
      node.first->next = pair->next;
      pair->next = nullptr;
      KeyList::pool.freeElement(pair);
    }
  }

 private:
  void take(ExpressionAST*& child) {
    if (slot == nullptr && child != nullptr) slot = &child;
  }
  void take(KeyList& pair) {
    take(pair.key);
    take(pair.value);
  }
  template <int number>
  void take(ExpressionAST* (&children)[number]) {
    for (ExpressionAST*& child : children) take(child);
  }

  ExpressionAST** slot = nullptr;
};

}  // namespace

void releaseWithoutStack(ExpressionAST* expression) noexcept {
  // On the way down the link to a child is turned round to point at the parent. Children before it
  // are gone by then, so on the way up it is the first link that is not null. The first node counts
  // as its own parent.
  NextChild nextChild;
  ExpressionAST* parent = expression;
  ExpressionAST* node = expression;
  for (;;) {
    if (ExpressionAST** down = nextChild.of(*node)) {
      ExpressionAST* child = *down;
      *down = parent;
      parent = node;
      node = child;
      continue;
    }
    const bool wasFirst = node == parent;
    node->deleteThis();
    if (wasFirst) return;
    node = parent;
    ExpressionAST** link = nextChild.of(*node);
    parent = *link;
    *link = nullptr;
  }
}

}  // namespace Kelp
