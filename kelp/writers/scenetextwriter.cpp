#include "kelp/writers/scenetextwriter.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <functional>
#include <string>
#include <type_traits>
#include <vector>

#include "kelp/ast/visitor.h"
#include "kelp/source/characterclass.h"
#include "kelp/writers/numberliteral.h"
#include "kelp/writers/treetext.h"
#include "kelp/writers/workstack.h"

namespace Kelp {

namespace {

// How tightly an expression holds together; what stands in it holds at least as tightly, or in
// brackets.
enum class Rank { kSum, kProduct, kTerm, kAtom };

Rank rankOf(const BinaryExpressionAST& node) {
  const bool sum = node.op == BinaryExpressionAST::kPlus || node.op == BinaryExpressionAST::kMinus;
  return sum ? Rank::kSum : Rank::kProduct;
}

bool isIdentifier(std::string_view text) {
  if (text.empty() || text == "nan" || classOf(text[0]) != CharacterClass::kIdentifier)
    return false;
  return std::all_of(text.begin(), text.end(), isInIdentifier);
}

template <class T>
struct ListForm;
template <>
struct ListForm<Vector> {
  static constexpr const char* kName = "ListVector";
  static constexpr const char* kHexName = "ListVectorHex";
};
template <>
struct ListForm<Color> {
  static constexpr const char* kName = "ListColor";
  static constexpr const char* kHexName = "ListColorHex";
};
template <>
struct ListForm<int> {
  static constexpr const char* kName = "ListInt";
  static constexpr const char* kHexName = "ListIntHex";
};
template <>
struct ListForm<float> {
  static constexpr const char* kName = "ListFloat";
  static constexpr const char* kHexName = "ListFloatHex";
};
template <>
struct ListForm<CharString> {
  static constexpr const char* kName = "ListString";
  static constexpr const char* kHexName = nullptr;
};

constexpr int kBracket = LineFiller::kLevelsOfBracket;

}  // namespace

// ---- values ------------------------------------------------------------------------------------

class SceneTextWriter::Impl final : public Visitor {
 public:
  explicit Impl(TextSink textSink) : sink(std::move(textSink)), filler(sink) {}

  void writeValue(ExpressionAST* value, Gap gap) {
    add(value, gap, 0, Rank::kSum);
    steps.run([this](const Step& step) { perform(step); });
  }

  void quote(std::string_view text, Gap gap, int level);
  [[noreturn]] void fail(const std::string& what) const;
  void requireIdentifier(const CharString& name, const char* what) const {
    if (!isIdentifier(viewOf(name))) fail(std::string(what) + " is no identifier");
  }

  void visit(NumberExpressionAST& node) override;
  void visit(StringExpressionAST& node) override {
    quote(literalText(node), current.gap, current.level);
  }
  void visit(VectorExpressionAST& node) override {
    if (node.kind != VALUE_VECTOR && node.kind != VALUE_COLOR) fail("a vector is of no known kind");
    addCall(node.kind == VALUE_COLOR ? "Color" : "Vector", node.components, 3);
  }
  void visit(AColorExpressionAST& node) override { addCall("AColor", node.components, 4); }
  void visit(MatrixExpressionAST& node) override { addCall("Matrix", node.rows, 3); }
  void visit(TransformExpressionAST& node) override {
    ExpressionAST* const parts[] = {node.matrix, node.offset};
    addCall("Transform", parts, 2);
  }
  void visit(TransformHexExpressionAST& node) override {
    writeHex("TransformHex", node.textRef, node.textLength);
  }
  void visit(ObjectReferenceAST& node) override {
    requireIdentifier(node.name, "the name in a reference");
    put(viewOf(node.name));
  }
  void visit(PropertyReferenceAST& node) override {
    writePair(node.objectName, ".", node.propertyName);
  }
  void visit(RuntimeValueAST& node) override { writePair(node.objectName, "::", node.valueName); }
  void visit(ArrayExpressionAST& node) override;
  void visit(NegatedExpressionAST& node) override;
  void visit(BinaryExpressionAST& top) override;
  void visit(BuiltinFunctionAST& node) override;
  void visit(ListExpressionAST& node) override {
    open("List");
    steps.add(
        {Step::kCells, nullptr, node.head, nullptr, "", Gap::kOpening, current.level + kBracket});
  }
  void visit(InterpolateExpressionAST& node) override {
    if (node.first == nullptr) fail("an interpolation has no pairs");
    open("interpolate");
    steps.add(
        {Step::kPairs, nullptr, nullptr, node.first, "", Gap::kOpening, current.level + kBracket});
  }

  void visit(ListTypeExpressionAST<Vector>& node) override { writeList(node); }
  void visit(ListTypeExpressionAST<int>& node) override { writeList(node); }
  void visit(ListTypeExpressionAST<Color>& node) override { writeList(node); }
  void visit(ListTypeExpressionAST<float>& node) override { writeList(node); }
  void visit(ListTypeExpressionAST<CharString>& node) override { writeList(node); }

  TextSink sink;
  LineFiller filler;
  int64_t approximated = 0;
  const ObjectAST* object = nullptr;      // for messages
  const PropertyAST* property = nullptr;  // likewise

 private:
  struct Step {
    enum Kind { kValue, kText, kCells, kPairs };

    Kind kind = kText;
    ExpressionAST* node = nullptr;
    const ListCell* cell = nullptr;
    const KeyList* pair = nullptr;
    const char* text = "";
    Gap gap = Gap::kNone;
    int level = 0;
    Rank atLeast = Rank::kSum;
  };

  void perform(const Step& step);
  void performCells(const Step& step);
  void performPairs(const Step& step);

  void add(ExpressionAST* node, Gap gap, int level, Rank atLeast = Rank::kSum) {
    steps.add({Step::kValue, node, nullptr, nullptr, "", gap, level, atLeast});
  }
  void addText(const char* text, Gap gap = Gap::kNone, int level = 0) {
    steps.add({Step::kText, nullptr, nullptr, nullptr, text, gap, level});
  }
  void addCall(std::string_view name, ExpressionAST* const* arguments, int count);

  // The first piece of the node that is visited.
  void put(std::string_view text) { filler.add(text, current.gap, current.level); }
  void open(std::string_view name) {
    put(name);
    filler.add("(");
  }
  void writePair(const CharString& objectName, std::string_view mark, const CharString& name);
  void writeHex(const char* form, const uint64_t (&record)[3], int textLength);

  template <class T>
  void writeList(const ListTypeExpressionAST<T>& node);
  void writeElement(const Vector& value, Gap gap, int level) {
    writeTuple("Vector(", value.x, value.y, value.z, gap, level);
  }
  void writeElement(const Color& value, Gap gap, int level) {
    writeTuple("Color(", value.r, value.g, value.b, gap, level);
  }
  void writeElement(int value, Gap gap, int level);
  void writeElement(float value, Gap gap, int level) { writeNumber(value, gap, level); }
  void writeElement(const CharString& value, Gap gap, int level) {
    quote(viewOf(value), gap, level);
  }
  void writeTuple(std::string_view opening, float x, float y, float z, Gap gap, int level);
  template <class Value>
  void writeNumber(Value value, Gap gap, int level);

  WorkStack<Step> steps;
  Step current;
};

void SceneTextWriter::Impl::perform(const Step& step) {
  switch (step.kind) {
    case Step::kValue:
      if (step.node == nullptr) fail("a value is null");
      current = step;
      return step.node->visit(*this);
    case Step::kText:
      return filler.add(step.text, step.gap, step.level);
    case Step::kCells:
      return performCells(step);
    case Step::kPairs:
      return performPairs(step);
  }
}

// One element, then the others: a list of any length holds one step.
void SceneTextWriter::Impl::performCells(const Step& step) {
  if (step.cell == nullptr) return filler.add(")");
  add(step.cell->expr, step.gap, step.level);
  if (step.cell->next != nullptr) addText(",");
  Step rest = step;
  rest.cell = step.cell->next;
  rest.gap = Gap::kWrap;
  steps.add(rest);
}

void SceneTextWriter::Impl::performPairs(const Step& step) {
  if (step.pair == nullptr) return filler.add(")");
  filler.add("(", step.gap, step.level);
  add(step.pair->key, Gap::kOpening, step.level + kBracket);
  addText(",");
  add(step.pair->value, Gap::kWrap, step.level + kBracket);
  addText(step.pair->next != nullptr ? ")," : ")");
  Step rest = step;
  rest.pair = step.pair->next;
  rest.gap = Gap::kWrap;
  steps.add(rest);
}

void SceneTextWriter::Impl::addCall(std::string_view name, ExpressionAST* const* arguments,
                                    int count) {
  open(name);
  const int level = current.level + kBracket;
  for (int i = 0; i < count; ++i) {
    if (i > 0) addText(",");
    add(arguments[i], i > 0 ? Gap::kWrap : Gap::kOpening, level);
  }
  addText(")");
}

void SceneTextWriter::Impl::visit(NumberExpressionAST& node) {
  if (std::signbit(node.value) && !std::isnan(node.value)) {
    fail("a number is negative without a negation over it");
  }
  writeNumber(node.value, current.gap, current.level);
}

void SceneTextWriter::Impl::visit(NegatedExpressionAST& node) {
  const bool brackets = current.atLeast > Rank::kTerm;
  if (brackets) put("(");
  const int level = current.level + (brackets ? kBracket : 0);
  filler.add("-", brackets ? Gap::kOpening : current.gap, level);
  add(node.operand, Gap::kNone, level, Rank::kAtom);
  if (brackets) addText(")");
}

// A chain of operators in one go. A sum that stands left of a product needs brackets; they open
// before the whole chain and close behind their part of it.
void SceneTextWriter::Impl::visit(BinaryExpressionAST& top) {
  const std::vector<BinaryExpressionAST*> spine = leftSpine(top);
  Gap gap = current.gap;
  int level = current.level;
  const auto openBracket = [&] {
    filler.add("(", gap, level);
    gap = Gap::kOpening;
    level += kBracket;
  };
  const auto closesBehind = [&](size_t i) {
    return i > 0 ? rankOf(*spine[i - 1]) == Rank::kProduct && rankOf(*spine[i]) == Rank::kSum
                 : rankOf(*spine[i]) < current.atLeast;
  };
  for (size_t i = 0; i < spine.size(); ++i) {
    if (spine[i]->operatorSpelling()[0] == '\0') fail("an operator is unknown");
    if (closesBehind(i)) openBracket();
  }
  add(spine.back()->left, gap, level, Rank::kTerm);
  for (size_t i = spine.size(); i-- > 0;) {
    const bool sum = rankOf(*spine[i]) == Rank::kSum;
    addText(spine[i]->operatorSpelling(), Gap::kWrap, level + (sum ? 1 : 2));
    add(spine[i]->right, Gap::kSpace, level, sum ? Rank::kProduct : Rank::kTerm);
    if (!closesBehind(i)) continue;
    addText(")");
    level -= kBracket;
  }
}

void SceneTextWriter::Impl::visit(BuiltinFunctionAST& node) {
  const BuiltinFunction* function = BuiltinFunctionAST::findFunction(node.funcID);
  if (function == nullptr) fail("a function is unknown");
  if (node.numArgs != function->numArgs) {
    fail(std::string("a call of ") + function->name + " has " + std::to_string(node.numArgs) +
         " arguments");
  }
  addCall(function->name, node.args, node.numArgs);
}

void SceneTextWriter::Impl::visit(ArrayExpressionAST& node) {
  auto* base = dynamic_cast<PropertyReferenceAST*>(node.base);
  if (base == nullptr) fail("something else than a property is indexed");
  if (node.indices.empty()) fail("a property is indexed by nothing");
  visit(*base);
  for (ExpressionAST* index : node.indices) {
    addText("[");
    add(index, Gap::kOpening, current.level + kBracket);
    addText("]");
  }
}

void SceneTextWriter::Impl::writePair(const CharString& objectName, std::string_view mark,
                                      const CharString& name) {
  requireIdentifier(objectName, "the object in a reference");
  requireIdentifier(name, "the name behind the object in a reference");
  put(viewOf(objectName));
  filler.add(mark);
  filler.add(viewOf(name));
}

// ---- constants ---------------------------------------------------------------------------------

template <class T>
void SceneTextWriter::Impl::writeList(const ListTypeExpressionAST<T>& node) {
  if constexpr (ListForm<T>::kHexName != nullptr) {
    if (node.parsedForm == 0) {
      return writeHex(ListForm<T>::kHexName, node.textRef, node.textLength);
    }
  }
  open(ListForm<T>::kName);
  const int level = current.level + kBracket;
  for (int i = 0; i < node.elements.count; ++i) {
    if (i > 0) filler.add(",");
    writeElement(node.elements.data[i], i > 0 ? Gap::kWrap : Gap::kOpening, level);
  }
  filler.add(")");
}

// A form around something else than a string has no text but remembers how long the other was.
void SceneTextWriter::Impl::writeHex(const char* form, const uint64_t (&record)[3],
                                     int textLength) {
  open(form);
  const int level = current.level + kBracket;
  const std::string_view text = recordedText(record);
  if (text.data() != nullptr) {
    quote(text, Gap::kOpening, level);
  } else {
    if (textLength <= 0) fail("a hexadecimal form has no text");
    filler.add("x", Gap::kOpening, level);
    for (int i = 1; i < textLength; ++i) filler.add("x");
  }
  filler.add(")");
}

void SceneTextWriter::Impl::writeElement(int value, Gap gap, int level) {
  char digits[16];
  const auto end = std::to_chars(digits, digits + sizeof digits, value).ptr;
  filler.add({digits, static_cast<size_t>(end - digits)}, gap, level);
}

void SceneTextWriter::Impl::writeTuple(std::string_view opening, float x, float y, float z, Gap gap,
                                       int level) {
  filler.add(opening, gap, level);
  writeNumber(x, Gap::kOpening, level + kBracket);
  filler.add(",");
  writeNumber(y, Gap::kWrap, level + kBracket);
  filler.add(",");
  writeNumber(z, Gap::kWrap, level + kBracket);
  filler.add(")");
}

template <class Value>
void SceneTextWriter::Impl::writeNumber(Value value, Gap gap, int level) {
  const NumberLiteral literal(value);
  if (!literal.isExact()) ++approximated;
  std::string_view text = literal.view();
  // In an expression a minus would be a negation; of not-a-numbers that sign is the only loss.
  if (std::is_same_v<Value, double> && text[0] == '-') {
    text.remove_prefix(1);
    ++approximated;
  }
  filler.add(text, gap, level);
}

// Backslashes stand for themselves but before another one or a quote.
void SceneTextWriter::Impl::quote(std::string_view text, Gap gap, int level) {
  if (text.data() == nullptr) fail("a text is null");
  filler.add("\"", gap, level);
  size_t plainFrom = 0;
  for (size_t at = text.find_first_of(std::string_view("\"\\\0", 3)); at < text.size();
       at = text.find_first_of(std::string_view("\"\\\0", 3), at + 1)) {
    if (text[at] == '\0') fail("a text holds a NUL");
    const bool before = at > 0 && text[at - 1] == '\\';
    const char next = at + 1 < text.size() ? text[at + 1] : '"';
    if (text[at] == '\\' && !before && next != '\\' && next != '"') continue;
    filler.add(text.substr(plainFrom, at - plainFrom));
    filler.add("\\");
    plainFrom = at;
  }
  filler.add(text.substr(plainFrom));
  filler.add("\"");
}

void SceneTextWriter::Impl::fail(const std::string& what) const {
  std::string message = "Cannot be written as scene text: ";
  if (object != nullptr) {
    message += "object \"" + std::string(viewOf(object->type)) + ' ' +
               std::string(viewOf(object->name)) + "\", ";
  }
  if (property != nullptr) message += "property \"" + std::string(viewOf(property->name)) + "\", ";
  throw NotWritableException(CharString((message + what).c_str()));
}

// ---- objects -----------------------------------------------------------------------------------

namespace {

// Of equal type and name, as the key of a program says it.
bool areSame(const ObjectAST& a, const ObjectAST& b) {
  return viewOf(a.type) == viewOf(b.type) && viewOf(a.name) == viewOf(b.name);
}

// An object that another one of the same type and name stands beside; null when there is none.
const ObjectAST* findDoubled(const std::vector<ObjectAST*>& objects) {
  struct Entry {
    size_t hash;
    const ObjectAST* object;
  };
  std::vector<Entry> entries;
  entries.reserve(objects.size());
  for (const ObjectAST* object : objects) {
    const std::hash<std::string_view> hash;
    entries.push_back({hash(viewOf(object->type)) * 31 + hash(viewOf(object->name)), object});
  }
  std::sort(entries.begin(), entries.end(), [](const Entry& a, const Entry& b) {
    if (a.hash != b.hash) return a.hash < b.hash;
    const int types = viewOf(a.object->type).compare(viewOf(b.object->type));
    return types != 0 ? types < 0 : viewOf(a.object->name) < viewOf(b.object->name);
  });
  const auto found =
      std::adjacent_find(entries.begin(), entries.end(), [](const Entry& a, const Entry& b) {
        return a.hash == b.hash && areSame(*a.object, *b.object);
      });
  return found != entries.end() ? found->object : nullptr;
}

}  // namespace

SceneTextWriter::SceneTextWriter(TextSink sink) : impl(std::make_unique<Impl>(std::move(sink))) {}
SceneTextWriter::~SceneTextWriter() = default;

void SceneTextWriter::write(const ProgramAST& program) {
  std::vector<ObjectAST*> objects = objectsInTextOrder(program);
  if (leaveOutFiltered) {
    std::erase_if(objects, [](const ObjectAST* object) { return object->filteredOut != 0; });
  }
  impl->object = findDoubled(objects);
  if (impl->object != nullptr) impl->fail("there is another one of that type and name");
  for (const ObjectAST* object : objects) write(*object);
}

void SceneTextWriter::write(const ObjectAST& object) {
  LineFiller& filler = impl->filler;
  impl->object = &object;
  impl->requireIdentifier(object.type, "its type");
  const bool named = !object.name.isEmpty();
  if (named) impl->requireIdentifier(object.name, "its name");
  const std::string_view type = viewOf(object.type);
  // Some identifiers would be taken for a byte order mark at the very start.
  if (filler.isAtStart() && type.starts_with("\xEF\xBB\xBF")) impl->sink("\n");
  filler.startLine(0, true);
  filler.add(type);
  if (named) filler.add(viewOf(object.name), Gap::kSpace);
  filler.add("{", Gap::kSpace);
  for (const PropertyAST* property = object.firstProperty; property != nullptr;
       property = property->next) {
    write(*property);
  }
  if (object.firstProperty != nullptr) {
    filler.startLine(0);
    filler.add("}");
  } else {
    filler.add("}", Gap::kSpace);
  }
  impl->object = nullptr;
}

void SceneTextWriter::write(const PropertyAST& property) {
  impl->property = &property;
  impl->filler.startLine(LineFiller::kIndent);
  const std::string_view name = viewOf(property.name);
  if (isIdentifier(name)) {
    impl->filler.add(name);
  } else {
    impl->quote(name, Gap::kNone, 0);
  }
  impl->filler.add("=", Gap::kSpace);
  impl->writeValue(property.value, Gap::kSpace);
  impl->filler.add(";");
  impl->property = nullptr;
}

void SceneTextWriter::write(ExpressionAST& value) {
  impl->filler.startLine(0);
  impl->writeValue(&value, Gap::kNone);
}

void SceneTextWriter::finish() { impl->filler.finish(); }

int64_t SceneTextWriter::approximatedNumbers() const { return impl->approximated; }

}  // namespace Kelp
