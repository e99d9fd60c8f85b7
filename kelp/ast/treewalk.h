// TreeWalk: goes through expressions of any depth and length without recursion.
#pragma once

#include <vector>

#include "kelp/ast/visitor.h"

namespace Kelp {

/// Visits the nodes of expressions: visit() of a node with children puts them on a stack. Derived
/// classes override what they want to see; for a class with children they call the base's visit()
/// to go on into them. A chain hangs on the first child, which is put there first: so the stack
/// stays short while the chain is walked.
class TreeWalk : public Visitor {
 public:
  /// Visits `root`, which may be null, and all below it.
  void walk(ExpressionAST* root) {
    add(root);
    while (!pending.empty()) {
      ExpressionAST* node = pending.back();
      pending.pop_back();
      enter(*node);
      node->visit(*this);
    }
  }

  void visit(NumberExpressionAST&) override {}
  void visit(StringExpressionAST&) override {}
  void visit(TransformHexExpressionAST&) override {}
  void visit(ObjectReferenceAST&) override {}
  void visit(PropertyReferenceAST&) override {}
  void visit(RuntimeValueAST&) override {}

  void visit(VectorExpressionAST& node) override { addAll(node.components); }
  void visit(AColorExpressionAST& node) override { addAll(node.components); }
  void visit(MatrixExpressionAST& node) override { addAll(node.rows); }
  void visit(TransformExpressionAST& node) override {
    add(node.matrix);
    add(node.offset);
  }
  void visit(NegatedExpressionAST& node) override { add(node.operand); }
  void visit(BinaryExpressionAST& node) override {
    add(node.left);
    add(node.right);
  }
  void visit(BuiltinFunctionAST& node) override {
    for (int i = 0; i < node.numArgs; ++i) add(node.args[i]);
  }
  void visit(ArrayExpressionAST& node) override {
    add(node.base);
    addAll(node.indices);
  }
  void visit(ListExpressionAST& node) override {
    for (const ListCell* cell = node.head; cell != nullptr; cell = cell->next) add(cell->expr);
  }
  void visit(InterpolateExpressionAST& node) override {
    for (const KeyList* pair = node.first; pair != nullptr; pair = pair->next) {
      add(pair->key);
      add(pair->value);
    }
  }

  void visit(ListTypeExpressionAST<Vector>&) override {}
  void visit(ListTypeExpressionAST<int>&) override {}
  void visit(ListTypeExpressionAST<Color>&) override {}
  void visit(ListTypeExpressionAST<float>&) override {}
  void visit(ListTypeExpressionAST<CharString>&) override {}

 private:
  /// Called for every node before its visit().
  virtual void enter(ExpressionAST&) {}

  void add(ExpressionAST* child) {
    if (child != nullptr) pending.push_back(child);
  }

  template <class Children>
  void addAll(const Children& children) {
    for (ExpressionAST* child : children) add(child);
  }

  std::vector<ExpressionAST*> pending;
};

}  // namespace Kelp
