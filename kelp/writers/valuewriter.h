// ValueWriter: expressions as scene text, for SceneTextWriter.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <utility>

#include "kelp/ast/objects.h"
#include "kelp/ast/treetext.h"
#include "kelp/ast/visitor.h"
#include "kelp/writers/linefiller.h"
#include "kelp/writers/scenetextwriter.h"
#include "kelp/writers/workstack.h"

namespace Kelp {

struct HexError;

/// Hands pieces to the filler, with the gaps and levels that formatText gives the same tokens.
/// After a failure it is of no further use.
class ValueWriter final : public Visitor {
 public:
  explicit ValueWriter(TextSink textSink) : sink(std::move(textSink)), filler(sink) {}

  /// `gap` stands before it. Throws NotWritableException and what the sink throws.
  void writeValue(ExpressionAST* value, Gap gap) {
    add(value, gap, 0, Rank::kSum);
    steps.run([this](const Step& step) { perform(step); });
  }

  /// A text as a string literal.
  void quote(std::string_view text, Gap gap = Gap::kNone, int level = 0);

  /// Throws NotWritableException.
  [[noreturn]] void fail(const std::string& what,
                         const char* refusal = "Cannot be written as scene text") const;
  static bool isIdentifier(std::string_view text);
  void requireIdentifier(const CharString& name, const char* what) const;

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
  void visit(TransformExpressionAST& node) override;
  void visit(TransformHexExpressionAST& node) override;
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
  ConstantForm constants = ConstantForm::kAsItIs;
  int64_t approximated = 0;               // numbers
  const ObjectAST* object = nullptr;      // for messages
  const PropertyAST* property = nullptr;  // likewise

 private:
  static constexpr int kBracket = LineFiller::kLevelsOfBracket;

  // How tightly an expression holds together; what stands in it holds at least as tightly, or in
  // brackets.
  enum class Rank { kSum, kProduct, kTerm, kAtom };

  // A value, a piece, or what is left of a list or an interpolation.
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

  template <class T>
  void writeList(const ListTypeExpressionAST<T>& node);
  template <class T>
  void writeElements(const T* elements, int count, bool areFirst);
  void writeHex(const char* form, const uint64_t (&record)[3], int textLength);
  template <class T>
  void writeDecoded(const ListTypeExpressionAST<T>& node);
  template <class T>
  void writeEncoded(const char* form, const T* elements, size_t count);
  void writeDecodedTransform(const TransformHexExpressionAST& node);
  [[noreturn]] void failDecoding(const char* form, const HexError& error) const;
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

}  // namespace Kelp
