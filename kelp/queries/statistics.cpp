#include "kelp/queries/statistics.h"

#include "kelp/ast/treewalk.h"

namespace Kelp {

namespace {

class Counter final : public TreeWalk {
 public:
  explicit Counter(Statistics& totals) : statistics(totals) {}

  using TreeWalk::visit;
  void visit(ListTypeExpressionAST<Vector>& node) override { countElements(node); }
  void visit(ListTypeExpressionAST<int>& node) override { countElements(node); }
  void visit(ListTypeExpressionAST<Color>& node) override { countElements(node); }
  void visit(ListTypeExpressionAST<float>& node) override { countElements(node); }
  void visit(ListTypeExpressionAST<CharString>& node) override { countElements(node); }

 private:
  void enter(ExpressionAST&) override { ++statistics.expressionNodes; }

  template <class T>
  void countElements(const ListTypeExpressionAST<T>& node) {
    statistics.listElements += node.elements.count;
  }

  Statistics& statistics;
};

}  // namespace

Statistics countProgram(const ProgramAST& program) {
  Statistics statistics;
  for (const ObjectAST* object = program.firstObject; object != nullptr; object = object->next) {
    countObject(*object, statistics);
  }
  return statistics;
}

void countObject(const ObjectAST& object, Statistics& statistics) {
  Counter counter(statistics);
  ++statistics.objects;
  for (const PropertyAST* property = object.firstProperty; property != nullptr;
       property = property->next) {
    ++statistics.properties;
    counter.walk(property->value);
  }
}

}  // namespace Kelp
