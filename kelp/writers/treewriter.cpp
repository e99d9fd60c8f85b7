#include "kelp/writers/treewriter.h"

#include <string>
#include <utility>

#include "kelp/ast/treetext.h"
#include "kelp/ast/visitor.h"
#include "kelp/writers/numbertext.h"
#include "kelp/writers/workstack.h"

namespace Kelp {

namespace {

constexpr int kMaxIndentedDepth = 40;
constexpr size_t kColumns = 100;
constexpr size_t kMinColumns = 40;  // for the elements of lists that stand far to the right

// ---- texts -------------------------------------------------------------------------------------

// Control characters, among them those of two bytes (C2 80 to C2 9F), steer terminals.
bool isControl(std::string_view character) {
  const auto first = static_cast<unsigned char>(character[0]);
  if (character.size() == 1) return first < 0x20 || first == 0x7F;
  return character.size() == 2 && first == 0xC2 && static_cast<unsigned char>(character[1]) < 0xA0;
}

void appendByte(std::string& text, char byte) {
  constexpr char kDigits[] = "0123456789abcdef";
  const auto value = static_cast<unsigned char>(byte);
  text += "\\x";
  text += kDigits[value >> 4];
  text += kDigits[value & 15];
}

void appendEscaped(std::string& text, std::string_view character) {
  if (character == "\n") {
    text += "\\n";
  } else if (character == "\t") {
    text += "\\t";
  } else if (character == "\"" || character == "\\") {
    text += '\\';
    text += character;
  } else if (isControl(character)) {
    for (const char byte : character) appendByte(text, byte);
  } else {
    text += character;
  }
}

std::string quoted(std::string_view source) {
  if (source.data() == nullptr) return "null";
  std::string text = "\"";
  while (!source.empty()) {
    const size_t length = leadingCharacter(source);
    if (length > 0) {
      appendEscaped(text, source.substr(0, length));
    } else {
      appendByte(text, source[0]);
    }
    source.remove_prefix(length > 0 ? length : 1);
  }
  return text + '"';
}

bool isWordCharacter(char c) {
  const bool letter = (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
  const bool digit = c >= '0' && c <= '9';
  return letter || digit || c == '_' || c == '@' || c == '|' || c == '$';
}

// As it is if that is harmless, quoted if not.
std::string name(const CharString& text) {
  const std::string_view source = viewOf(text);
  bool plain = !source.empty();
  for (const char c : source) plain = plain && isWordCharacter(c);
  return plain ? std::string(source) : quoted(source);
}

std::string number(double value) { return std::string(NumberText(value).view()); }
std::string number(float value) { return std::string(NumberText(value).view()); }

std::string tuple(float first, float second, float third) {
  return '(' + number(first) + ", " + number(second) + ", " + number(third) + ')';
}

std::string element(const Vector& value) { return tuple(value.x, value.y, value.z); }
std::string element(const Color& value) { return tuple(value.r, value.g, value.b); }
std::string element(int value) { return std::to_string(value); }
std::string element(float value) { return number(value); }
std::string element(const CharString& value) { return quoted(viewOf(value)); }

std::string counted(const char* what, int64_t count) {
  return std::string(what) + ", " + std::to_string(count);
}

// ---- the listing -------------------------------------------------------------------------------

}  // namespace

class TreeWriter::Listing final : public Visitor {
 public:
  explicit Listing(TextSink sink) : out(std::move(sink)) {}

  TextBuffer out;

  void write(const ObjectAST& object) {
    out << name(object.type);
    if (!object.name.isEmpty()) out << ' ' << name(object.name);
    if (object.filteredOut != 0) out << "  // filtered out";
    out << '\n';
    for (const PropertyAST* property = object.firstProperty; property != nullptr;
         property = property->next) {
      write(*property);
    }
  }

  void visit(NumberExpressionAST& node) override { line(number(node.value)); }
  void visit(StringExpressionAST& node) override { line(quoted(literalText(node))); }
  void visit(VectorExpressionAST& node) override {
    line(node.kind == VALUE_COLOR ? "color" : "vector");
    addAll(node.components);
  }
  void visit(AColorExpressionAST& node) override {
    line("color with alpha");
    addAll(node.components);
  }
  void visit(MatrixExpressionAST& node) override {
    line("matrix");
    addAll(node.rows);
  }
  void visit(TransformExpressionAST& node) override {
    line("transform");
    add(node.matrix, "matrix ");
    add(node.offset, "offset ");
  }
  void visit(TransformHexExpressionAST& node) override {
    line("hexadecimal transform " + quoted(recordedText(node.textRef)));
  }
  void visit(ObjectReferenceAST& node) override { line("reference " + name(node.name)); }
  void visit(PropertyReferenceAST& node) override {
    line("property " + name(node.objectName) + '.' + name(node.propertyName));
  }
  void visit(RuntimeValueAST& node) override {
    line("runtime value " + name(node.objectName) + "::" + name(node.valueName));
  }
  void visit(ArrayExpressionAST& node) override {
    line("element");
    add(node.base, "of ");
    for (ExpressionAST* index : node.indices) add(index, "at ");
  }
  void visit(NegatedExpressionAST& node) override {
    line("negated");
    add(node.operand);
  }
  void visit(BinaryExpressionAST& top) override {
    line("operators, applied from the top");
    const std::vector<BinaryExpressionAST*> spine = leftSpine(top);
    add(spine.back()->left, "  ");
    for (size_t i = spine.size(); i-- > 0;) add(spine[i]->right, spine[i]->operatorSpelling(), " ");
  }
  void visit(BuiltinFunctionAST& node) override {
    const BuiltinFunction* function = BuiltinFunctionAST::findFunction(node.funcID);
    std::string words = "call ";
    words += function != nullptr ? function->name : "function " + std::to_string(node.funcID);
    const bool random =
        node.funcID == BuiltinFunctionAST::kRandom || node.funcID == BuiltinFunctionAST::kRandomInt;
    if (random) words += ", seed " + number(node.seed);
    line(words);
    for (int i = 0; i < node.numArgs; ++i) add(node.args[i]);
  }
  void visit(ListExpressionAST& node) override {
    line(counted("list", node.count));
    for (const ListCell* cell = node.head; cell != nullptr; cell = cell->next) add(cell->expr);
  }
  void visit(InterpolateExpressionAST& node) override {
    line(counted("interpolation", node.count));
    for (const KeyList* pair = node.first; pair != nullptr; pair = pair->next) {
      add(pair->key, "key ");
      add(pair->value, "  value ");
    }
  }

  void visit(ListTypeExpressionAST<Vector>& node) override { typedList(node, "vectors"); }
  void visit(ListTypeExpressionAST<int>& node) override { typedList(node, "integers"); }
  void visit(ListTypeExpressionAST<Color>& node) override { typedList(node, "colors"); }
  void visit(ListTypeExpressionAST<float>& node) override { typedList(node, "floats"); }
  void visit(ListTypeExpressionAST<CharString>& node) override { typedList(node, "strings"); }

 private:
  struct Step {
    ExpressionAST* node;
    const char* label;
    const char* gap;
    int depth;
  };

  void write(const PropertyAST& property) {
    firstLabel = name(property.name) + " = ";
    lineEnd = "  // " + placeOf(property);
    steps.add({property.value, firstLabel.c_str(), "", 1});
    steps.run([this](const Step& step) {
      current = step;
      if (step.node != nullptr) {
        step.node->visit(*this);
      } else {
        line("null");
      }
    });
  }

  static std::string placeOf(const PropertyAST& property) {
    const std::string_view file = viewOf(property.file);
    std::string place = file.empty() ? "" : quoted(file);
    // Without its quotes: the escapes are what matters here.
    if (!file.empty()) place = place.substr(1, place.size() - 2);
    place += ':' + std::to_string(property.line);
    for (const PropertyRecord* record = property.records; record != nullptr;
         record = record->next) {
      place += ", frames " + number(record->t1) + " to " + number(record->t2);
    }
    return place;
  }

  void startLine(int depth) {
    out << std::string(2 * static_cast<size_t>(std::min(depth, kMaxIndentedDepth)), ' ');
    if (depth > kMaxIndentedDepth) out << "(depth " << std::to_string(depth) << ") ";
  }

  // The line of the node that is visited. The first line of a property also says where it is from.
  void line(std::string_view words) {
    startLine(current.depth);
    out << current.label << current.gap << words << lineEnd << '\n';
    lineEnd.clear();
  }

  void add(ExpressionAST* child, const char* label = "", const char* gap = "") {
    steps.add({child, label, gap, current.depth + 1});
  }

  template <class Children>
  void addAll(const Children& children) {
    for (ExpressionAST* child : children) add(child);
  }

  template <class T>
  void typedList(const ListTypeExpressionAST<T>& node, const char* what) {
    if (node.parsedForm == 0) {
      line(std::string("hexadecimal ") + what + ' ' + quoted(recordedText(node.textRef)));
      return;
    }
    line(counted(what, node.elements.count));
    const int depth = current.depth + 1;
    const auto indent = 2 * static_cast<size_t>(std::min(depth, kMaxIndentedDepth));
    const size_t columns = std::max(kColumns - indent, kMinColumns);
    size_t used = 0;
    for (int i = 0; i < node.elements.count; ++i) {
      const std::string text = element(node.elements[i]);
      const bool fits = used > 0 && used + 1 + text.size() <= columns;
      if (used > 0) out << (fits ? " " : "\n");
      if (!fits) startLine(depth);
      out << text;
      used = fits ? used + 1 + text.size() : text.size();
    }
    if (used > 0) out << '\n';
  }

  WorkStack<Step> steps;
  Step current{};
  std::string firstLabel;
  std::string lineEnd;
};

TreeWriter::TreeWriter(TextSink sink) : listing(std::make_unique<Listing>(std::move(sink))) {}
TreeWriter::~TreeWriter() = default;

void TreeWriter::write(const ProgramAST& program) {
  bool first = true;
  for (const ObjectAST* object : objectsInTextOrder(program)) {
    if (!first) listing->out << '\n';
    first = false;
    listing->write(*object);
  }
  listing->out.flush();
}

}  // namespace Kelp
