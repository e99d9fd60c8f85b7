#include "kelp/writers/statistics.h"

#include <vector>

#include "kelp/ast/visitor.h"

namespace Kelp {

namespace {

// Counts the nodes that it visits and puts their children on a stack. A chain hangs on the first
// child, which is put there first: so the stack stays short while the chain is walked.
class Counter final : public Visitor {
 public:
  explicit Counter(Statistics& totals) : statistics(totals) {}

  void count(ExpressionAST* root) {
    add(root);
    while (!pending.empty()) {
      ExpressionAST* node = pending.back();
      pending.pop_back();
      ++statistics.expressionNodes;
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

  void visit(ListTypeExpressionAST<Vector>& node) override { countElements(node); }
  void visit(ListTypeExpressionAST<int>& node) override { countElements(node); }
  void visit(ListTypeExpressionAST<Color>& node) override { countElements(node); }
  void visit(ListTypeExpressionAST<float>& node) override { countElements(node); }
  void visit(ListTypeExpressionAST<CharString>& node) override { countElements(node); }

 private:
  void add(ExpressionAST* child) {
    if (child != nullptr) pending.push_back(child);
  }

  template <class Children>
  void addAll(const Children& children) {
    for (ExpressionAST* child : children) add(child);
  }

  template <class T>
  void countElements(const ListTypeExpressionAST<T>& node) {
    statistics.listElements += node.elements.count;
  }

  Statistics& statistics;
  std::vector<ExpressionAST*> pending;
};

}  // namespace

Statistics countProgram(const ProgramAST& program) {
  Statistics statistics;
  Counter counter(statistics);
  for (const ObjectAST* object = program.firstObject; object != nullptr; object = object->next) {
    ++statistics.objects;
    for (const PropertyAST* property = object->firstProperty; property != nullptr;
         property = property->next) {
      ++statistics.properties;
      counter.count(property->value);
    }
  }
  return statistics;
}

}  // namespace Kelp
