#include "kelp/queries/inventory.h"

#include <algorithm>

#include "kelp/ast/treewalk.h"

namespace Kelp {

namespace {

std::string textOf(const CharString& text) {
  return text.isNull() ? std::string() : std::string(text.chars());
}

}  // namespace

// Counts the nodes of one object.
class Inventory::Walk final : public TreeWalk {
 public:
  explicit Walk(Inventory& totals) : inventory(totals) {}

  int64_t size = 0;

  using TreeWalk::visit;
  void visit(NumberExpressionAST&) override { count("number"); }
  void visit(StringExpressionAST&) override { count("string"); }
  void visit(VectorExpressionAST& node) override {
    go(node, node.kind == VALUE_COLOR ? "color" : "vector");
  }
  void visit(AColorExpressionAST& node) override { go(node, "acolor"); }
  void visit(MatrixExpressionAST& node) override { go(node, "matrix"); }
  void visit(TransformExpressionAST& node) override { go(node, "transform"); }
  void visit(TransformHexExpressionAST& node) override {
    count("transformHex");
    countHex(node.textRef);
  }
  void visit(ObjectReferenceAST& node) override {
    count("reference");
    refer(node.name);
  }
  void visit(PropertyReferenceAST& node) override {
    count("propertyReference");
    refer(node.objectName);
  }
  void visit(RuntimeValueAST& node) override {
    count("runtimeValue");
    refer(node.objectName);
  }
  void visit(ArrayExpressionAST& node) override { go(node, "element"); }
  void visit(NegatedExpressionAST& node) override { go(node, "negated"); }
  void visit(BinaryExpressionAST& node) override { go(node, "operators"); }
  void visit(BuiltinFunctionAST& node) override { go(node, "call"); }
  void visit(ListExpressionAST& node) override { go(node, "list"); }
  void visit(InterpolateExpressionAST& node) override { go(node, "interpolation"); }
  void visit(ListTypeExpressionAST<Vector>& node) override { countList(node, "vectorList"); }
  void visit(ListTypeExpressionAST<Color>& node) override { countList(node, "colorList"); }
  void visit(ListTypeExpressionAST<int>& node) override { countList(node, "intList"); }
  void visit(ListTypeExpressionAST<float>& node) override { countList(node, "floatList"); }
  void visit(ListTypeExpressionAST<CharString>& node) override { countList(node, "stringList"); }

 private:
  void count(std::string_view kind) {
    ++inventory.expressions[kind];
    ++size;
  }

  template <class Node>
  void go(Node& node, std::string_view kind) {
    count(kind);
    TreeWalk::visit(node);
  }

  template <class T>
  void countList(const ListTypeExpressionAST<T>& node, std::string_view kind) {
    count(kind);
    inventory.listElements += node.elements.count;
    size += node.elements.count;
    if (node.parsedForm == 0) countHex(node.textRef);
  }

  void countHex(const uint64_t (&textRef)[3]) {
    inventory.hexBytes += static_cast<int64_t>(textRef[1]);
    size += static_cast<int64_t>(textRef[1]);
  }

  void refer(const CharString& name) {
    ++inventory.references;
    if (inventory.resolvesReferences) ++inventory.referencesByName[textOf(name)];
  }

  Inventory& inventory;
};

void Inventory::add(const ObjectAST& object) {
  Walk walk(*this);
  ++objects;
  ++types[textOf(object.type)];
  if (resolvesReferences) names.insert(textOf(object.name));
  _countProperties(object, walk);
  _noteSize(object, walk.size);
}

void Inventory::_countProperties(const ObjectAST& object, Walk& walk) {
  std::unordered_set<std::string_view> seen;
  for (const PropertyAST* property = object.firstProperty; property != nullptr;
       property = property->next) {
    ++properties;
    const char* name = property->name.chars();
    if (!seen.insert(name != nullptr ? name : "").second) ++repeatedProperties;
    walk.walk(property->value);
  }
}

void Inventory::_noteSize(const ObjectAST& object, int64_t size) {
  if (largestObjects.size() == kLargest && size <= largestObjects.back().size) return;
  const auto place = std::find_if(largestObjects.begin(), largestObjects.end(),
                                  [size](const Sized& other) { return other.size < size; });
  largestObjects.insert(place, {textOf(object.type), textOf(object.name), size});
  if (largestObjects.size() > kLargest) largestObjects.pop_back();
}

int64_t Inventory::danglingReferences() const {
  int64_t dangling = 0;
  for (const auto& [name, number] : referencesByName) {
    if (!names.contains(name)) dangling += number;
  }
  return dangling;
}

}  // namespace Kelp
