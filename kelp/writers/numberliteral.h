// NumberLiteral: a number as scene text that the library's own reader maps back to it.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

namespace Kelp {

/// The literal of a number, with a minus before it if the number has one.
///
/// Number literals are not correctly rounded (TreeParser::parseNum), so the shortest digits of a
/// number may read as one of its neighbours. Each candidate is read: first few digits, then the
/// shortest ones that tell the number from its neighbours, then longer ones around them, then
/// other exponents.
///
/// The values that no literal reaches are not-a-numbers with a payload of their own; they become
/// the one that 0e309 stands for. All finite values that were ever tried, some ten million of all
/// exponents, have a literal, and so have both zeros and both infinities. Where a literal takes no
/// sign of its own, as in an expression, a negative number is a negation over its magnitude.
class NumberLiteral {
 public:
  explicit NumberLiteral(double value);

  /// Reads back to the float as an element of a typed list does: as a double that is then rounded.
  explicit NumberLiteral(float value);

  /// Ends in a NUL behind it. Good as long as this lives.
  std::string_view view() const { return {text, length}; }

  /// Whether the literal reads back to the same bits; if not, to the nearest value that was found.
  bool isExact() const { return exact; }

 private:
  template <class Value>
  void _write(Value value);
  template <class Value>
  void _writeMagnitude(Value magnitude);
  void _search(double magnitude);
  bool _searchWithExponent(double magnitude, int exponent);
  bool _searchPlain(double significand, int exponent);
  bool _searchAround(double significand, int digits);
  double _readUnits(uint64_t units, int places);
  template <class Value>
  bool _try(Value magnitude, std::string_view digits, int exponent);
  void _setDigits(std::string_view digits, int pointBehind, int exponent);
  void _appendExponent(int exponent);
  void _set(std::string_view words);
  void _append(std::string_view words);
  void _append(char c, int times);
  double _read() const;

  char text[88];
  size_t length = 0;
  size_t start = 0;  // 1 behind a minus
  bool exact = true;
};

}  // namespace Kelp
