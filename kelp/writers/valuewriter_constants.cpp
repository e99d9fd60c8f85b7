// Numbers, typed lists and transforms as scene text, in either of their forms.
#include <algorithm>
#include <array>
#include <bit>
#include <charconv>
#include <cmath>
#include <optional>
#include <type_traits>

#include "kelp/parser/treeparser.h"
#include "kelp/queries/hexvalues.h"
#include "kelp/writers/numberliteral.h"
#include "kelp/writers/valuewriter.h"

namespace Kelp {

namespace {

// Elements that are decoded or encoded at a time: lists of any length need no more memory.
constexpr int kPieceOfList = 256;

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
};

// The numbers of a transform: the rows of its matrix, then its offset.
using TransformNumbers = std::array<float, 12>;

// A number, with or without a minus, that decoding writes with the digits it has: these may be few
// (0.1 is no float, but a float is written so), and may not be more than a float needs.
std::optional<float> constantOf(ExpressionAST* value) {
  const auto* negated = dynamic_cast<NegatedExpressionAST*>(value);
  const auto* number =
      dynamic_cast<NumberExpressionAST*>(negated != nullptr ? negated->operand : value);
  if (number == nullptr) return std::nullopt;
  const auto rounded = static_cast<float>(number->value);
  const NumberLiteral literal(rounded);
  const double read = TreeParser::parseNum(literal.view().data());
  if (std::bit_cast<uint64_t>(read) != std::bit_cast<uint64_t>(number->value)) return std::nullopt;
  return negated != nullptr ? -rounded : rounded;
}

bool addConstants(ExpressionAST* value, TransformNumbers& numbers, size_t from) {
  const auto* vector = dynamic_cast<VectorExpressionAST*>(value);
  if (vector == nullptr || vector->kind != VALUE_VECTOR) return false;
  for (ExpressionAST* component : vector->components) {
    const std::optional<float> number = constantOf(component);
    if (!number) return false;
    numbers[from++] = *number;
  }
  return true;
}

std::optional<TransformNumbers> constantsOf(const TransformExpressionAST& node) {
  TransformNumbers numbers{};
  const auto* matrix = dynamic_cast<MatrixExpressionAST*>(node.matrix);
  if (matrix == nullptr) return std::nullopt;
  for (size_t row = 0; row < 3; ++row) {
    if (!addConstants(matrix->rows[row], numbers, 3 * row)) return std::nullopt;
  }
  if (!addConstants(node.offset, numbers, 9)) return std::nullopt;
  return numbers;
}

}  // namespace

void ValueWriter::visit(NumberExpressionAST& node) {
  if (std::signbit(node.value) && !std::isnan(node.value)) {
    fail("a number is negative without a negation over it");
  }
  writeNumber(node.value, current.gap, current.level);
}

void ValueWriter::visit(TransformExpressionAST& node) {
  if (constants == ConstantForm::kHexadecimal) {
    const auto numbers = constantsOf(node);
    if (numbers) return writeEncoded("TransformHex", numbers->data(), numbers->size());
  }
  ExpressionAST* const parts[] = {node.matrix, node.offset};
  addCall("Transform", parts, 2);
}

void ValueWriter::visit(TransformHexExpressionAST& node) {
  if (constants == ConstantForm::kNumbers) return writeDecodedTransform(node);
  writeHex("TransformHex", node.textRef, node.textLength);
}

// ---- lists -------------------------------------------------------------------------------------

template <class T>
void ValueWriter::writeList(const ListTypeExpressionAST<T>& node) {
  const T* elements = node.elements.data;
  const int count = node.elements.count;
  if constexpr (!std::is_same_v<T, CharString>) {
    if (node.parsedForm == 0) {
      if (constants == ConstantForm::kNumbers) return writeDecoded(node);
      return writeHex(ListForm<T>::kHexName, node.textRef, node.textLength);
    }
    if (constants == ConstantForm::kHexadecimal) {
      return writeEncoded(ListForm<T>::kHexName, elements, static_cast<size_t>(count));
    }
  }
  open(ListForm<T>::kName);
  writeElements(elements, count, true);
  filler.add(")");
}

template <class T>
void ValueWriter::writeElements(const T* elements, int count, bool areFirst) {
  const int level = current.level + kBracket;
  for (int i = 0; i < count; ++i) {
    const bool isFirst = areFirst && i == 0;
    if (!isFirst) filler.add(",");
    writeElement(elements[i], isFirst ? Gap::kOpening : Gap::kWrap, level);
  }
}

template <class T>
void ValueWriter::writeDecoded(const ListTypeExpressionAST<T>& node) {
  const std::string_view text = recordedText(node.textRef);
  if (text.data() == nullptr) failDecoding(ListForm<T>::kHexName, {HexError::Kind::kNoText});
  open(ListForm<T>::kName);
  T elements[kPieceOfList];
  constexpr size_t kPiece = kPieceOfList * kHexDigits<T>;
  for (size_t at = 0; at < text.size(); at += kPiece) {
    const std::string_view piece = text.substr(at, kPiece);
    HexError error = decodeHexNumbers(piece, elements);
    const bool isWhole = piece.size() % kHexDigits<T> == 0;
    if (error.kind == HexError::Kind::kNone && !isWhole) {
      error = {HexError::Kind::kTooShort, piece.size()};
    }
    if (error.kind != HexError::Kind::kNone) {
      error.position += at;
      failDecoding(ListForm<T>::kHexName, error);
    }
    writeElements(elements, static_cast<int>(piece.size() / kHexDigits<T>), at == 0);
  }
  filler.add(")");
}

void ValueWriter::writeDecodedTransform(const TransformHexExpressionAST& node) {
  const HexTransform transform = elementsOf(node);
  if (!transform) failDecoding("TransformHex", transform.error);
  open("Transform");
  const int level = current.level + kBracket;
  filler.add("Matrix(", Gap::kOpening, level);
  for (int row = 0; row < 3; ++row) {
    const float* numbers = transform.matrix + ptrdiff_t{3} * row;
    if (row > 0) filler.add(",");
    writeTuple("Vector(", numbers[0], numbers[1], numbers[2], row > 0 ? Gap::kWrap : Gap::kOpening,
               level + kBracket);
  }
  filler.add("),");
  const float* offset = transform.offset;
  writeTuple("Vector(", offset[0], offset[1], offset[2], Gap::kWrap, level);
  filler.add(")");
}

template <class T>
void ValueWriter::writeEncoded(const char* form, const T* elements, size_t count) {
  open(form);
  filler.add("\"", Gap::kOpening, current.level + kBracket);
  char digits[kPieceOfList * kHexDigits<T>];
  for (size_t at = 0; at < count; at += kPieceOfList) {
    const size_t piece = std::min<size_t>(count - at, kPieceOfList);
    encodeHexNumbers(elements + at, piece * (sizeof(T) / 4), digits);
    filler.add({digits, piece * kHexDigits<T>});
  }
  filler.add("\")");
}

// A form around something else than a string has no text but remembers how long the other was.
void ValueWriter::writeHex(const char* form, const uint64_t (&record)[3], int textLength) {
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

void ValueWriter::failDecoding(const char* form, const HexError& error) const {
  fail(std::string(form) + ": " + error.describe(), "Cannot be decoded");
}

// ---- elements ----------------------------------------------------------------------------------

void ValueWriter::writeElement(int value, Gap gap, int level) {
  char digits[16];
  const auto end = std::to_chars(digits, digits + sizeof digits, value).ptr;
  filler.add({digits, static_cast<size_t>(end - digits)}, gap, level);
}

void ValueWriter::writeTuple(std::string_view opening, float x, float y, float z, Gap gap,
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
void ValueWriter::writeNumber(Value value, Gap gap, int level) {
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

}  // namespace Kelp
