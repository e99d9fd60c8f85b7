#include "kelp/queries/equality.h"

#include <algorithm>
#include <bit>
#include <cstring>
#include <typeinfo>
#include <utility>
#include <vector>

#include "kelp/ast/treetext.h"
#include "kelp/ast/visitor.h"
#include "kelp/queries/hexvalues.h"

namespace Kelp {

namespace {

bool sameBits(double a, double b) {
  return std::bit_cast<uint64_t>(a) == std::bit_cast<uint64_t>(b);
}

template <size_t kCount>
bool sameNumbers(const float (&a)[kCount], const float (&b)[kCount]) {
  return std::equal(a, a + kCount, b, [](float left, float right) {
    return std::bit_cast<uint32_t>(left) == std::bit_cast<uint32_t>(right);
  });
}

bool sameElements(const PtrArray<CharString>& a, const PtrArray<CharString>& b) {
  return std::equal(a.data, a.data + a.count, b.data, b.data + b.count);
}

// Numbers without gaps between them.
template <class T>
bool sameElements(const PtrArray<T>& a, const PtrArray<T>& b) {
  static_assert(sizeof(T) % sizeof(int32_t) == 0);
  if (a.count != b.count) return false;
  return a.count == 0 || std::memcmp(a.data, b.data, static_cast<size_t>(a.count) * sizeof(T)) == 0;
}

// Visits the nodes of one tree, each with its counterpart in the other at hand.
class Comparison final : public Visitor {
 public:
  bool run(ExpressionAST* a, ExpressionAST* b) {
    add(a, b);
    while (equal && !pending.empty()) {
      const auto [left, right] = pending.back();
      pending.pop_back();
      if (left == nullptr || right == nullptr) {
        equal = left == right;
      } else if (typeid(*left) != typeid(*right)) {
        equal = false;
      } else {
        counterpart = right;
        left->visit(*this);
      }
    }
    return equal;
  }

  void visit(NumberExpressionAST& node) override {
    require(sameBits(node.value, other(node).value));
  }
  void visit(StringExpressionAST& node) override {
    require(literalText(node) == literalText(other(node)));
  }
  void visit(VectorExpressionAST& node) override {
    require(node.kind == other(node).kind);
    addAll(node.components, other(node).components);
  }
  void visit(AColorExpressionAST& node) override {
    addAll(node.components, other(node).components);
  }
  void visit(MatrixExpressionAST& node) override { addAll(node.rows, other(node).rows); }
  void visit(TransformExpressionAST& node) override {
    add(node.matrix, other(node).matrix);
    add(node.offset, other(node).offset);
  }
  void visit(TransformHexExpressionAST& node) override {
    if (recordedText(node.textRef) == recordedText(other(node).textRef)) return;
    const HexTransform a = elementsOf(node);
    const HexTransform b = elementsOf(other(node));
    require(a && b && sameNumbers(a.matrix, b.matrix) && sameNumbers(a.offset, b.offset));
  }
  void visit(ObjectReferenceAST& node) override { require(node.name == other(node).name); }
  void visit(PropertyReferenceAST& node) override {
    require(node.objectName == other(node).objectName &&
            node.propertyName == other(node).propertyName);
  }
  void visit(RuntimeValueAST& node) override {
    require(node.objectName == other(node).objectName && node.valueName == other(node).valueName);
  }
  void visit(ArrayExpressionAST& node) override {
    const std::vector<ExpressionAST*>& indices = other(node).indices;
    require(node.indices.size() == indices.size());
    if (!equal) return;
    add(node.base, other(node).base);
    for (size_t i = 0; i < indices.size(); ++i) add(node.indices[i], indices[i]);
  }
  void visit(NegatedExpressionAST& node) override { add(node.operand, other(node).operand); }
  void visit(BinaryExpressionAST& node) override {
    require(node.op == other(node).op);
    // The chain of a sum hangs on the left: walked last, it does not fill the stack.
    add(node.left, other(node).left);
    add(node.right, other(node).right);
  }
  void visit(BuiltinFunctionAST& node) override {
    const BuiltinFunctionAST& call = other(node);
    require(node.funcID == call.funcID && node.numArgs == call.numArgs);
    if (!equal) return;
    for (int i = 0; i < node.numArgs; ++i) add(node.args[i], call.args[i]);
  }
  void visit(ListExpressionAST& node) override {
    const ListCell* cell = other(node).head;
    require(node.count == other(node).count);
    if (!equal) return;
    for (const ListCell* each = node.head; each != nullptr; each = each->next, cell = cell->next) {
      add(each->expr, cell->expr);
    }
  }
  void visit(InterpolateExpressionAST& node) override {
    const KeyList* pair = other(node).first;
    require(node.count == other(node).count);
    if (!equal) return;
    for (const KeyList* each = node.first; each != nullptr; each = each->next, pair = pair->next) {
      add(each->key, pair->key);
      add(each->value, pair->value);
    }
  }
  void visit(ListTypeExpressionAST<Vector>& node) override { compareLists(node); }
  void visit(ListTypeExpressionAST<int>& node) override { compareLists(node); }
  void visit(ListTypeExpressionAST<Color>& node) override { compareLists(node); }
  void visit(ListTypeExpressionAST<float>& node) override { compareLists(node); }
  void visit(ListTypeExpressionAST<CharString>& node) override {
    require(sameElements(node.elements, other(node).elements));
  }

 private:
  void require(bool condition) { equal = equal && condition; }

  void add(ExpressionAST* a, ExpressionAST* b) { pending.emplace_back(a, b); }

  template <size_t kCount>
  void addAll(ExpressionAST* const (&a)[kCount], ExpressionAST* const (&b)[kCount]) {
    for (size_t i = 0; i < kCount; ++i) add(a[i], b[i]);
  }

  // The counterpart of the node that is visited, which is of the same class.
  template <class Node>
  const Node& other(const Node&) const {
    return static_cast<const Node&>(*counterpart);
  }

  template <class T>
  void compareLists(const ListTypeExpressionAST<T>& node) {
    const ListTypeExpressionAST<T>& list = other(node);
    const bool bothHexadecimal = node.parsedForm == 0 && list.parsedForm == 0;
    if (bothHexadecimal && recordedText(node.textRef) == recordedText(list.textRef)) return;
    const HexList<T> a = elementsOf(node);
    const HexList<T> b = elementsOf(list);
    require(a && b && sameElements(a.elements, b.elements));
  }

  std::vector<std::pair<ExpressionAST*, ExpressionAST*>> pending;
  const ExpressionAST* counterpart = nullptr;
  bool equal = true;
};

}  // namespace

bool areEqual(ExpressionAST* a, ExpressionAST* b) { return Comparison().run(a, b); }

}  // namespace Kelp
