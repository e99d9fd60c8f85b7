#include "kelp/writers/numberliteral.h"

#include <algorithm>
#include <bit>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <iterator>
#include <limits>
#include <type_traits>

#include "kelp/parser/treeparser.h"

namespace Kelp {

namespace {

constexpr double kLargestPlainInteger = 1e15;  // every integer up to it is read without rounding
constexpr int kLeastPlainExponent = -5;        // smaller numbers are written with an exponent
constexpr int kLeastScientificExponent = 16;   // as are numbers from there on
constexpr int kEnoughDigits = 17;              // to tell any double from its neighbours

// The significant digits of a number and the power of ten that the first of them stands for.
struct Digits {
  char characters[24];
  size_t count;
  int exponent;

  std::string_view view() const { return {characters, count}; }
};

// From the form d.ddde+dd.
Digits digitsIn(const char* begin, const char* end) {
  Digits digits{};
  const char* at = begin;
  for (; *at != 'e'; ++at) {
    if (*at != '.') digits.characters[digits.count++] = *at;
  }
  std::from_chars(at[1] == '+' ? at + 2 : at + 1, end, digits.exponent);
  return digits;
}

template <class Value>
Digits shortestDigits(Value value) {
  char buffer[40];
  const auto end =
      std::to_chars(buffer, buffer + sizeof buffer, value, std::chars_format::scientific).ptr;
  return digitsIn(buffer, end);
}

// A number of digits that is given, rounded correctly.
Digits roundedDigits(double value, int count) {
  char buffer[40];
  const auto end =
      std::to_chars(buffer, buffer + sizeof buffer, value, std::chars_format::scientific, count - 1)
          .ptr;
  return digitsIn(buffer, end);
}

std::string_view withoutEndingZeros(std::string_view digits) {
  while (digits.size() > 1 && digits.back() == '0') digits.remove_suffix(1);
  return digits;
}

// The power of ten that the reader multiplies by.
double powerOfTen(int exponent) {
  char buffer[16] = "1e";
  *std::to_chars(buffer + 2, buffer + sizeof buffer - 1, exponent).ptr = '\0';
  return TreeParser::parseNum(buffer);
}

template <class Value>
bool isSame(Value read, Value wanted) {
  using Bits = std::conditional_t<sizeof(Value) == 8, uint64_t, uint32_t>;
  return std::bit_cast<Bits>(read) == std::bit_cast<Bits>(wanted);
}

}  // namespace

NumberLiteral::NumberLiteral(double value) { _write(value); }
NumberLiteral::NumberLiteral(float value) { _write(value); }

template <class Value>
void NumberLiteral::_write(Value value) {
  if (std::isnan(value)) {
    // What the reader's arithmetic gives has a sign of its own, which a minus turns round.
    _set("0e309");
    if (isSame(static_cast<Value>(_read()), value)) return;
    exact = isSame(static_cast<Value>(-_read()), value);
    if (exact) _set("-0e309");
    return;
  }
  if (std::signbit(value)) {
    _append('-', 1);
    start = 1;
    value = -value;
  }
  if (std::isinf(value)) return _append("1e309");
  _writeMagnitude(value);
}

template <class Value>
void NumberLiteral::_writeMagnitude(Value magnitude) {
  const auto wide = static_cast<double>(magnitude);
  if (wide <= kLargestPlainInteger && wide == std::floor(wide)) {
    const auto integer = static_cast<uint64_t>(wide);
    length = static_cast<size_t>(std::to_chars(text + start, std::end(text), integer).ptr - text);
    text[length] = '\0';
    return;
  }
  const Digits shortest = shortestDigits(magnitude);
  // A number that was read from few digits may be off by a little; they are what is wanted.
  const int few = std::is_same_v<Value, double> ? 14 : kEnoughDigits;
  for (int count = few; count < static_cast<int>(shortest.count); ++count) {
    const Digits rounded = roundedDigits(wide, count);
    if (_try(magnitude, withoutEndingZeros(rounded.view()), rounded.exponent)) return;
  }
  if (_try(magnitude, shortest.view(), shortest.exponent)) return;
  if constexpr (std::is_same_v<Value, float>) {
    // Of all floats these digits miss none.
    const Digits nine = roundedDigits(wide, 9);
    exact = _try(magnitude, nine.view(), nine.exponent);
  } else {
    _search(wide);
  }
}

// ---- the long way ------------------------------------------------------------------------------

// The reader calculates digits first and multiplies the result by a power of ten. Not every product
// can be hit with every power, but there is a choice of powers: one larger for each place that the
// point moves to the left.
void NumberLiteral::_search(double magnitude) {
  constexpr int kFarthestPoint = 15;
  const int natural = shortestDigits(magnitude).exponent;
  const bool plain = natural >= kLeastPlainExponent && natural < kLeastScientificExponent;
  if (plain && _searchPlain(magnitude, 0)) return;
  for (int shift = 0; shift <= kFarthestPoint; ++shift) {
    if (_searchWithExponent(magnitude, natural - shift)) return;
    if (_searchWithExponent(magnitude, natural + shift)) return;
  }
  exact = false;  // unreachable: no finite number is known that no literal reads back to
  const Digits nearest = shortestDigits(magnitude);   // unreachable: likewise
  _try(magnitude, nearest.view(), nearest.exponent);  // unreachable: likewise
}  // unreachable: likewise

bool NumberLiteral::_searchWithExponent(double magnitude, int exponent) {
  const double power = powerOfTen(exponent);
  if (power == 0 || std::isinf(power)) return false;
  const double quotient = magnitude / power;
  if (!std::isfinite(quotient)) return false;
  const double neighbours[] = {quotient, std::nextafter(quotient, 0.0),
                               std::nextafter(quotient, std::numeric_limits<double>::infinity())};
  return std::any_of(std::begin(neighbours), std::end(neighbours), [&](double significand) {
    return significand * power == magnitude && _searchPlain(significand, exponent);
  });
}

bool NumberLiteral::_searchPlain(double significand, int exponent) {
  constexpr int kMostDigits = 19;
  const Digits shortest = shortestDigits(significand);
  _setDigits(shortest.view(), shortest.exponent + 1, 0);
  bool found = _read() == significand;
  for (int digits = 15; digits <= kMostDigits && !found; ++digits) {
    found = _searchAround(significand, digits);
  }
  if (found) _appendExponent(exponent);
  return found;
}

// Tries the literals of that many digits near the significand: the reader misses by a few of the
// last places, so it has to be aimed beside the mark.
bool NumberLiteral::_searchAround(double significand, int digits) {
  constexpr int kCorrections = 3;
  constexpr double kFarthestMiss = 3.0;  // in units of the last binary place
  constexpr int kMostPlaces = 40;
  const Digits rounded = roundedDigits(significand, digits);
  const int places = digits - 1 - rounded.exponent;  // behind the point
  if (places < 0 || places > kMostPlaces) return false;
  const double unitsOfOne = std::pow(10.0, places);
  const double lastPlace = std::nextafter(significand, HUGE_VAL) - significand;
  uint64_t aim = 0;
  std::from_chars(rounded.characters, rounded.characters + rounded.count, aim);
  for (int i = 0; i < kCorrections; ++i) {
    const double read = _readUnits(aim, places);
    if (read == significand) return true;
    aim += static_cast<uint64_t>(std::llround((significand - read) * unitsOfOne));
  }
  const auto farthest = static_cast<uint64_t>(kFarthestMiss * lastPlace * unitsOfOne) + 1;
  for (uint64_t distance = 0; distance <= farthest; ++distance) {
    if (_readUnits(aim + distance, places) == significand) return true;
    if (distance < aim && _readUnits(aim - distance, places) == significand) return true;
  }
  return false;
}

// Writes an integer with the point that many places before its end and reads that.
double NumberLiteral::_readUnits(uint64_t units, int places) {
  char buffer[24];
  const auto end = std::to_chars(buffer, buffer + sizeof buffer, units).ptr;
  const int count = static_cast<int>(end - buffer);
  _setDigits(withoutEndingZeros({buffer, static_cast<size_t>(count)}), count - places, 0);
  return _read();
}

// ---- texts -------------------------------------------------------------------------------------

// First in the form that people write: with an exponent when the number is very large or small.
template <class Value>
bool NumberLiteral::_try(Value magnitude, std::string_view digits, int exponent) {
  const bool plain = exponent >= kLeastPlainExponent && exponent < kLeastScientificExponent;
  if (plain) {
    _setDigits(digits, exponent + 1, 0);
    if (static_cast<Value>(_read()) == magnitude) return true;
  }
  _setDigits(digits, 1, exponent);
  return static_cast<Value>(_read()) == magnitude;
}

// The digits with the point behind the pointBehind-th, which may lie outside of them.
void NumberLiteral::_setDigits(std::string_view digits, int pointBehind, int exponent) {
  length = start;
  const int count = static_cast<int>(digits.size());
  const int whole = std::clamp(pointBehind, 0, count);
  _append(digits.substr(0, static_cast<size_t>(whole)));
  _append('0', pointBehind > count ? pointBehind - count : 0);
  if (whole == 0) _append('0', 1);
  if (whole < count) {
    _append('.', 1);
    _append('0', pointBehind < 0 ? -pointBehind : 0);
    _append(digits.substr(static_cast<size_t>(whole)));
  }
  _appendExponent(exponent);
}

void NumberLiteral::_appendExponent(int exponent) {
  if (exponent != 0) {
    _append('e', 1);
    char* end = std::to_chars(text + length, std::end(text), exponent).ptr;
    length = static_cast<size_t>(end - text);
  }
  text[length] = '\0';
}

void NumberLiteral::_set(std::string_view words) {
  length = start = 0;
  if (words[0] == '-') {
    _append('-', 1);
    start = 1;
    words.remove_prefix(1);
  }
  _append(words);
}

void NumberLiteral::_append(std::string_view words) {
  std::memcpy(text + length, words.data(), words.size());
  length += words.size();
  text[length] = '\0';
}

void NumberLiteral::_append(char c, int times) {
  std::memset(text + length, c, static_cast<size_t>(times));
  length += static_cast<size_t>(times);
}

double NumberLiteral::_read() const { return TreeParser::parseNum(text + start); }

}  // namespace Kelp
