// Numbers as hexadecimal text: what ListIntHex and its like and TransformHex hold.
//
// A number of 32 bits is eight digits, its lowest byte first: 1.0F is "0000803f". Numbers, parts of
// vectors and colours, and elements of lists stand behind each other with nothing between them.
// Digits are read in either case and written in lower case.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

#include "kelp/ast/expressions.h"

namespace Kelp {

/// Why a hexadecimal text cannot be decoded.
struct HexError {
  enum class Kind {
    kNone,
    kNoText,    ///< the form stands around something else than a string
    kDigit,     ///< a character is no digit
    kTooShort,  ///< the text ends within an element
    kTooLong,   ///< the text goes on behind a whole transform, or holds more than an array can
  };

  /// What is wrong, in words; "" for kNone.
  std::string describe() const;

  Kind kind = Kind::kNone;
  size_t position = 0;    ///< of the first character that is wrong; kTooShort: the text's length
  char character = '\0';  ///< kDigit: what stands there
};

/// The elements of a list, or why there are none.
template <class T>
struct HexList {
  PtrArray<T> elements;  ///< empty when there is an error
  HexError error;

  explicit operator bool() const { return error.kind == HexError::Kind::kNone; }
};

/// The numbers of a TransformHex, or why there are none.
struct HexTransform {
  float matrix[9] = {};  ///< row after row
  float offset[3] = {};
  HexError error;

  explicit operator bool() const { return error.kind == HexError::Kind::kNone; }
};

/// The digits of one element: 8 of an int or a float, 24 of a Vector or a Color.
template <class T>
constexpr size_t kHexDigits = 2 * sizeof(T);

/// Decodes the text of a hexadecimal list. T is int, float, Vector or Color. Takes memory for the
/// elements only; throws std::bad_alloc.
template <class T>
HexList<T> decodeHexList(std::string_view text);

/// Decodes the text of a TransformHex.
HexTransform decodeHexTransform(std::string_view text);

/// The elements of a list, however the scene says them: decoded, or shared with the node where they
/// stand as numbers. T as above. The node's borrowed text must be alive. Throws std::bad_alloc.
template <class T>
HexList<T> elementsOf(const ListTypeExpressionAST<T>& node);

/// The numbers of a TransformHex, whose borrowed text must be alive.
HexTransform elementsOf(const TransformHexExpressionAST& node);

/// Decodes numbers into memory of the caller's own, which has room for text.size() / 8 of them: for
/// lists that are worked on piece by piece. What a bad text leaves there is of no use.
HexError decodeHexNumbers(std::string_view text, void* numbers);

/// The other way: writes the eight digits of each number, nothing behind them.
void encodeHexNumbers(const void* numbers, size_t count, char* digits);

/// Elements as the text of a hexadecimal list. T as above. Throws std::bad_alloc.
template <class T>
std::string encodeHexList(const T* elements, size_t count) {
  std::string text(count * kHexDigits<T>, '\0');
  encodeHexNumbers(elements, count * (sizeof(T) / 4), text.data());
  return text;
}

}  // namespace Kelp
