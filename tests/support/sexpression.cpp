#include "tests/support/sexpression.h"

#include <cstdio>
#include <vector>

#include "kelp/ast/visitor.h"

namespace KelpTest {

namespace {

using namespace Kelp;

std::string number(double value, int digits) {
  char text[40];
  std::snprintf(text, sizeof text, "%.*g", digits, value);
  return text;
}

std::string quoted(const std::string& text) {
  std::string result = "\"";
  for (const char c : text) {
    if (c == '"' || c == '\\') result += '\\';
    result += c;
  }
  return result + '"';
}

std::string quoted(const CharString& text) {
  return text.isNull() ? "null" : quoted(std::string(text.chars()));
}

std::string quoted(const uint64_t record[3]) {
  const auto* text = reinterpret_cast<const char*>(record[0]);
  return quoted(std::string(text, text + record[1]));
}

class Writer final : public Visitor {
 public:
  std::string text;

  void write(ExpressionAST* node) {
    if (node == nullptr) {
      text += " null";
    } else {
      node->visit(*this);
    }
  }

  void visit(NumberExpressionAST& node) override { atom(number(node.value, 17)); }
  void visit(StringExpressionAST& node) override {
    atom(node.ownsText != 0 ? quoted(node.text) : quoted(node.span));
  }
  void visit(VectorExpressionAST& node) override {
    list(node.kind == VALUE_VECTOR ? "vec" : "col", {node.components, node.components + 3});
  }
  void visit(AColorExpressionAST& node) override {
    list("acol", {node.components, node.components + 4});
  }
  void visit(MatrixExpressionAST& node) override { list("mat", {node.rows, node.rows + 3}); }
  void visit(TransformExpressionAST& node) override { list("xf", {node.matrix, node.offset}); }
  void visit(TransformHexExpressionAST& node) override {
    atom("(xfhex " + quoted(node.textRef) + ")");
  }
  void visit(ObjectReferenceAST& node) override { atom("(ref " + quoted(node.name) + ")"); }
  void visit(NegatedExpressionAST& node) override { list("neg", {node.operand}); }
  void visit(InterpolateExpressionAST& node) override {
    atom("(interp");
    for (KeyList* pair = node.first; pair != nullptr; pair = pair->next) {
      text += " (";
      writeFirst(pair->key);
      write(pair->value);
      text += ')';
    }
    text += ')';
  }
  void visit(ListTypeExpressionAST<Vector>& node) override {
    typedList(node, "lvec", [](const Vector& v) {
      return "(" + number(v.x, 9) + " " + number(v.y, 9) + " " + number(v.z, 9) + ")";
    });
  }
  void visit(ListTypeExpressionAST<int>& node) override {
    typedList(node, "lint", [](int value) { return std::to_string(value); });
  }
  void visit(ListTypeExpressionAST<Color>& node) override {
    typedList(node, "lcol", [](const Color& c) {
      return "(" + number(c.r, 9) + " " + number(c.g, 9) + " " + number(c.b, 9) + ")";
    });
  }
  void visit(ListTypeExpressionAST<float>& node) override {
    typedList(node, "lflt", [](float value) { return number(value, 9); });
  }
  void visit(ListTypeExpressionAST<CharString>& node) override {
    typedList(node, "lstr", [](const CharString& value) { return quoted(value); });
  }
  void visit(ArrayExpressionAST& node) override {
    std::vector<ExpressionAST*> parts{node.base};
    parts.insert(parts.end(), node.indices.begin(), node.indices.end());
    list("idx", parts);
  }
  void visit(BinaryExpressionAST& top) override {
    std::vector<BinaryExpressionAST*> spine;
    ExpressionAST* leftmost = &top;
    while (auto* binary = dynamic_cast<BinaryExpressionAST*>(leftmost)) {
      spine.push_back(binary);
      leftmost = binary->left;
    }
    text += ' ';
    for (size_t i = 0; i < spine.size(); ++i) {
      text += i == 0 ? "(" : " (";
      text += spine[i]->operatorSpelling();
    }
    write(leftmost);
    for (size_t i = spine.size(); i-- > 0;) {
      write(spine[i]->right);
      text += ')';
    }
  }
  void visit(BuiltinFunctionAST& node) override {
    const BuiltinFunction* function = BuiltinFunctionAST::findFunction(node.funcID);
    list("call " + quoted(std::string(function != nullptr ? function->name : "?")),
         {node.args, node.args + node.numArgs});
  }
  void visit(ListExpressionAST& node) override {
    std::vector<ExpressionAST*> elements;
    for (ListCell* cell = node.head; cell != nullptr; cell = cell->next) {
      elements.push_back(cell->expr);
    }
    list("list", elements);
  }
  void visit(PropertyReferenceAST& node) override {
    atom("(prop " + quoted(node.objectName) + " " + quoted(node.propertyName) + ")");
  }
  void visit(RuntimeValueAST& node) override {
    atom("(rt " + quoted(node.objectName) + " " + quoted(node.valueName) + ")");
  }

 private:
  void atom(const std::string& words) { text += ' ' + words; }

  void list(const std::string& head, const std::vector<ExpressionAST*>& children) {
    text += " (" + head;
    for (ExpressionAST* child : children) write(child);
    text += ')';
  }

  void writeFirst(ExpressionAST* node) {
    const size_t start = text.size();
    write(node);
    text.erase(start, 1);
  }

  template <class T, class Format>
  void typedList(ListTypeExpressionAST<T>& node, const std::string& head, Format format) {
    if (node.parsedForm == 0) {
      atom("(" + head + "hex " + quoted(node.textRef) + ")");
      return;
    }
    text += " (" + head;
    for (int i = 0; i < node.elements.count; ++i) text += ' ' + format(node.elements[i]);
    text += ')';
  }
};

}  // namespace

std::string sexpression(ExpressionAST* expression) {
  Writer writer;
  writer.write(expression);
  return writer.text.substr(1);
}

std::string sexpression(const ObjectAST& object) {
  std::string text = "(obj " + quoted(object.type) + " " + quoted(object.name);
  for (PropertyAST* property = object.firstProperty; property != nullptr;
       property = property->next) {
    text += " (= " + quoted(property->name) + " " + sexpression(property->value) + ")";
  }
  return text + ")";
}

std::string sexpression(const ProgramAST& program) {
  std::string text = "(scene";
  for (const ObjectAST* object : objectsInTextOrder(program)) text += " " + sexpression(*object);
  return text + ")";
}

}  // namespace KelpTest
