#include "tests/support/hiddenfields.h"

#include <bit>
#include <vector>

#include "kelp/ast/visitor.h"

namespace KelpTest {

namespace {

using namespace Kelp;

class HiddenFields final : public Visitor {
 public:
  std::string text;

  void write(ExpressionAST* root) {
    pending.push_back(root);
    while (!pending.empty()) {
      ExpressionAST* node = pending.back();
      pending.pop_back();
      if (node != nullptr) node->visit(*this);
    }
  }

  template <class Value>
  void field(const char* name, Value value) {
    text += std::string(" ") + name + "=" + std::to_string(value);
  }
  void field(const char* name, const CharString& value) {
    text += std::string(" ") + name + "=" + (value.isNull() ? "<null>" : value.chars());
  }

  void visit(NumberExpressionAST&) override {}
  void visit(PropertyReferenceAST& node) override { field("resolved", node.resolved != nullptr); }
  void visit(RuntimeValueAST&) override {}
  void visit(NegatedExpressionAST& node) override { pending.push_back(node.operand); }
  void visit(AColorExpressionAST& node) override { addAll(node.components); }
  void visit(MatrixExpressionAST& node) override { addAll(node.rows); }
  void visit(VectorExpressionAST& node) override {
    field("kind", static_cast<int>(node.kind));
    addAll(node.components);
  }
  void visit(TransformExpressionAST& node) override {
    pending.push_back(node.matrix);
    pending.push_back(node.offset);
  }
  void visit(BinaryExpressionAST& node) override {
    pending.push_back(node.left);
    pending.push_back(node.right);
  }
  void visit(StringExpressionAST& node) override {
    field("directory", node.directory);
    field("text", node.text);
    record(node.span);
    field("spanLength", node.spanLength);
    field("ownsText", node.ownsText);
  }
  void visit(TransformHexExpressionAST& node) override {
    field("count", node.count);
    record(node.textRef);
    field("textLength", node.textLength);
  }
  void visit(ObjectReferenceAST& node) override { field("object", node.object != nullptr); }
  void visit(InterpolateExpressionAST& node) override {
    field("pairs", node.count);
    const KeyList* last = nullptr;
    for (const KeyList* pair = node.first; pair != nullptr; pair = pair->next) {
      pending.push_back(pair->key);
      pending.push_back(pair->value);
      last = pair;
    }
    field("ends", last == node.last);
  }
  void visit(ListExpressionAST& node) override {
    field("cells", node.count);
    field("evaluated", node.evaluated != nullptr);
    const ListCell* last = nullptr;
    for (const ListCell* cell = node.head; cell != nullptr; cell = cell->next) {
      pending.push_back(cell->expr);
      last = cell;
    }
    field("ends", last == node.tail);
  }
  void visit(ArrayExpressionAST& node) override {
    pending.push_back(node.base);
    addAll(node.indices);
  }
  void visit(BuiltinFunctionAST& node) override {
    field("arguments", node.numArgs);
    field("seed", std::bit_cast<uint32_t>(node.seed));
    for (int i = node.numArgs; i < BuiltinFunctionAST::kMaxArgs; ++i) {
      field("unused", node.args[i] != nullptr);
    }
    for (int i = 0; i < node.numArgs; ++i) pending.push_back(node.args[i]);
  }
  void visit(ListTypeExpressionAST<Vector>& node) override { typedList(node); }
  void visit(ListTypeExpressionAST<int>& node) override { typedList(node); }
  void visit(ListTypeExpressionAST<Color>& node) override { typedList(node); }
  void visit(ListTypeExpressionAST<float>& node) override { typedList(node); }
  void visit(ListTypeExpressionAST<CharString>& node) override { typedList(node); }

 private:
  // Addresses differ from process to process.
  void record(const uint64_t words[3]) {
    field("address", words[0] != 0);
    field("length", words[1]);
    field("source", words[2] != 0);
  }

  template <class Children>
  void addAll(const Children& children) {
    pending.insert(pending.end(), std::begin(children), std::end(children));
  }

  template <class T>
  void typedList(const ListTypeExpressionAST<T>& node) {
    record(node.textRef);
    field("textLength", node.textLength);
    field("parsedForm", node.parsedForm);
    field("elements", node.elements.count);
    field("sourceDir", node.sourceDir);
  }

  std::vector<ExpressionAST*> pending;
};

void writeProperty(HiddenFields& fields, const PropertyAST& property) {
  fields.text += "\n ";
  fields.field("file", property.file);
  fields.field("line", property.line);
  fields.field("extra", property.extra != nullptr);
  for (const PropertyRecord* frames = property.records; frames != nullptr; frames = frames->next) {
    fields.field("from", frames->t1);
    fields.field("to", frames->t2);
  }
  fields.write(property.value);
}

void writeObject(HiddenFields& fields, const ObjectAST& object) {
  fields.text += '\n';
  fields.field("extra", object.extra != nullptr);
  fields.field("filteredOut", object.filteredOut);
  const PropertyAST* last = nullptr;
  for (const PropertyAST* p = object.firstProperty; p != nullptr; p = p->next) {
    writeProperty(fields, *p);
    last = p;
  }
  fields.field("ends", last == object.lastProperty);
}

}  // namespace

std::string hiddenFields(const ProgramAST& program) {
  HiddenFields fields;
  fields.field("objects", program.numObjects);
  for (const ObjectAST* object : objectsInTextOrder(program)) {
    writeObject(fields, *object);
    const ObjectAST* found = program.getObject(object->name.chars());
    fields.field("found", found == object);
    fields.field("foundType", found == nullptr ? CharString() : found->type);
  }
  return fields.text + '\n';
}

}  // namespace KelpTest
