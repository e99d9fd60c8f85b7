#include "kelp/writers/jsonwriter.h"

#include <initializer_list>
#include <utility>

#include "kelp/ast/treetext.h"
#include "kelp/ast/visitor.h"
#include "kelp/writers/jsontext.h"
#include "kelp/writers/workstack.h"

namespace Kelp {

class JsonWriter::Nodes final : public Visitor {
 public:
  explicit Nodes(TextSink sink) : json(std::move(sink)) {}

  JsonText json;

  void write(const ObjectAST& object) {
    json.beginObject();
    json.key("type").text(viewOf(object.type));
    json.key("name").text(viewOf(object.name));
    json.key("filteredOut").integer(object.filteredOut);
    json.key("properties").beginArray();
    for (const PropertyAST* property = object.firstProperty; property != nullptr;
         property = property->next) {
      write(*property);
    }
    json.endArray();
    json.endObject();
  }

  void write(const PropertyAST& property) {
    json.beginObject();
    json.key("name").text(viewOf(property.name));
    json.key("file").text(viewOf(property.file));
    json.key("line").integer(property.line);
    json.key("frames").beginArray();
    for (const PropertyRecord* record = property.records; record != nullptr;
         record = record->next) {
      tuple({record->t1, record->t2});
    }
    json.endArray();
    json.key("value");
    add(property.value);
    steps.run([this](const Step& step) { perform(step); });
    json.endObject();
  }

  void visit(NumberExpressionAST& node) override {
    begin("number");
    json.key("value").number(node.value);
    json.endObject();
  }
  void visit(StringExpressionAST& node) override {
    begin("string");
    json.key("text").text(literalText(node));
    json.key("directory").text(viewOf(node.directory));
    json.key("ownsText").boolean(node.ownsText != 0);
    json.endObject();
  }
  void visit(VectorExpressionAST& node) override {
    begin(node.kind == VALUE_COLOR ? "color" : "vector");
    json.key("valueType").integer(node.kind);
    addArray("components", node.components);
    add(Action::kEndObject);
  }
  void visit(AColorExpressionAST& node) override {
    begin("acolor");
    addArray("components", node.components);
    add(Action::kEndObject);
  }
  void visit(MatrixExpressionAST& node) override {
    begin("matrix");
    addArray("rows", node.rows);
    add(Action::kEndObject);
  }
  void visit(TransformExpressionAST& node) override {
    begin("transform");
    addMember("matrix", node.matrix);
    addMember("offset", node.offset);
    add(Action::kEndObject);
  }
  void visit(TransformHexExpressionAST& node) override {
    begin("transformHex");
    json.key("hex").text(recordedText(node.textRef));
    json.endObject();
  }
  void visit(ObjectReferenceAST& node) override {
    begin("reference");
    json.key("object").text(viewOf(node.name));
    json.endObject();
  }
  void visit(PropertyReferenceAST& node) override {
    begin("propertyReference");
    json.key("object").text(viewOf(node.objectName));
    json.key("property").text(viewOf(node.propertyName));
    json.endObject();
  }
  void visit(RuntimeValueAST& node) override {
    begin("runtimeValue");
    json.key("object").text(viewOf(node.objectName));
    json.key("value").text(viewOf(node.valueName));
    json.endObject();
  }
  void visit(ArrayExpressionAST& node) override {
    begin("element");
    addMember("base", node.base);
    addArray("indices", node.indices);
    add(Action::kEndObject);
  }
  void visit(NegatedExpressionAST& node) override {
    begin("negated");
    addMember("operand", node.operand);
    add(Action::kEndObject);
  }
  void visit(BinaryExpressionAST& top) override {
    const std::vector<BinaryExpressionAST*> spine = leftSpine(top);
    std::vector<ExpressionAST*> operands{spine.back()->left};
    begin("operators");
    json.key("operators").beginArray();
    for (size_t i = spine.size(); i-- > 0;) {
      json.integer(spine[i]->op);
      operands.push_back(spine[i]->right);
    }
    json.endArray();
    addArray("operands", operands);
    add(Action::kEndObject);
  }
  void visit(BuiltinFunctionAST& node) override {
    const BuiltinFunction* function = BuiltinFunctionAST::findFunction(node.funcID);
    begin("call");
    json.key("id").integer(node.funcID);
    json.key("name").text(function != nullptr ? function->name : std::string_view());
    json.key("seed").number(node.seed);
    addArray("arguments", std::vector<ExpressionAST*>(node.args, node.args + node.numArgs));
    add(Action::kEndObject);
  }
  void visit(ListExpressionAST& node) override {
    begin("list");
    json.key("elements").beginArray();
    for (const ListCell* cell = node.head; cell != nullptr; cell = cell->next) add(cell->expr);
    add(Action::kEndArray);
    add(Action::kEndObject);
  }
  void visit(InterpolateExpressionAST& node) override {
    begin("interpolation");
    json.key("pairs").beginArray();
    for (const KeyList* pair = node.first; pair != nullptr; pair = pair->next) {
      add(Action::kBeginObject);
      addMember("key", pair->key);
      addMember("value", pair->value);
      add(Action::kEndObject);
    }
    add(Action::kEndArray);
    add(Action::kEndObject);
  }

  void visit(ListTypeExpressionAST<Vector>& node) override { typedList(node, "vectorList"); }
  void visit(ListTypeExpressionAST<int>& node) override { typedList(node, "intList"); }
  void visit(ListTypeExpressionAST<Color>& node) override { typedList(node, "colorList"); }
  void visit(ListTypeExpressionAST<float>& node) override { typedList(node, "floatList"); }
  void visit(ListTypeExpressionAST<CharString>& node) override { typedList(node, "stringList"); }

 private:
  enum class Action { kValue, kKey, kBeginObject, kEndObject, kBeginArray, kEndArray };

  struct Step {
    Action action;
    ExpressionAST* node;
    const char* name;
  };

  void perform(const Step& step) {
    switch (step.action) {
      case Action::kValue:
        step.node != nullptr ? step.node->visit(*this) : json.null();
        break;
      case Action::kKey:
        json.key(step.name);
        break;
      case Action::kBeginObject:
        json.beginObject();
        break;
      case Action::kEndObject:
        json.endObject();
        break;
      case Action::kBeginArray:
        json.beginArray();
        break;
      case Action::kEndArray:
        json.endArray();
        break;
    }
  }

  void begin(const char* kind) {
    json.beginObject();
    json.key("kind").text(kind);
  }

  void add(ExpressionAST* node) { steps.add({Action::kValue, node, nullptr}); }
  void add(Action action) { steps.add({action, nullptr, nullptr}); }

  void addMember(const char* name, ExpressionAST* node) {
    steps.add({Action::kKey, nullptr, name});
    add(node);
  }

  template <class Children>
  void addArray(const char* name, const Children& children) {
    steps.add({Action::kKey, nullptr, name});
    add(Action::kBeginArray);
    for (ExpressionAST* child : children) add(child);
    add(Action::kEndArray);
  }

  template <class T>
  void typedList(const ListTypeExpressionAST<T>& node, const char* kind) {
    begin(kind);
    if (node.parsedForm == 0) {
      json.key("hex").text(recordedText(node.textRef));
    } else {
      json.key("elements").beginArray();
      for (int i = 0; i < node.elements.count; ++i) element(node.elements[i]);
      json.endArray();
    }
    if (!node.sourceDir.isNull()) json.key("directory").text(viewOf(node.sourceDir));
    json.endObject();
  }

  template <class Value>
  void tuple(std::initializer_list<Value> values) {
    json.beginArray();
    for (const Value value : values) json.number(value);
    json.endArray();
  }

  void element(const Vector& value) { tuple({value.x, value.y, value.z}); }
  void element(const Color& value) { tuple({value.r, value.g, value.b}); }
  void element(int value) { json.integer(value); }
  void element(float value) { json.number(value); }
  void element(const CharString& value) { json.text(viewOf(value)); }

  WorkStack<Step> steps;
};

JsonWriter::JsonWriter(TextSink sink) : nodes(std::make_unique<Nodes>(std::move(sink))) {}
JsonWriter::~JsonWriter() = default;

void JsonWriter::write(const ProgramAST& program, std::string_view sceneName) {
  JsonText& json = nodes->json;
  json.beginObject();
  json.key("format").text("kelp-tree 1");
  json.key("scene").text(sceneName);
  json.key("objects").beginArray();
  for (const ObjectAST* object : objectsInTextOrder(program)) nodes->write(*object);
  json.endArray();
  json.endObject();
  json.newLine();
}

void JsonWriter::write(const ObjectAST& object) {
  nodes->write(object);
  nodes->json.newLine();
}

void JsonWriter::write(const PropertyAST& property) {
  nodes->write(property);
  nodes->json.newLine();
}

}  // namespace Kelp
