#include "tests/support/numberreference.h"

#include <bit>
#include <cmath>

namespace KelpTest {

namespace {

double (*const volatile powerOf)(double, double) = std::pow;

// Walks over a text by index; beyond its end there is no character, not even a NUL.
struct Walk {
  const std::string& text;
  size_t i = 0;

  bool atEnd() const { return i >= text.size(); }
  bool at(char lower, char upper) const {
    return !atEnd() && (text[i] == lower || text[i] == upper);
  }
  bool atDigit() const { return !atEnd() && std::string("0123456789").find(text[i]) < 10; }
  double digit() { return static_cast<double>(text[i++] - '0'); }
  bool skip(char c) {
    if (!at(c, c)) return false;
    ++i;
    return true;
  }
};

double withExponent(Walk walk, double value) {
  walk.skip('+');
  const double sign = walk.skip('-') ? -1.0 : 1.0;
  if (!walk.atDigit()) return value;
  double exponent = 0.0;
  while (walk.atDigit()) {
    exponent *= 10.0;
    exponent += walk.digit();
  }
  return value * powerOf(10.0, sign * exponent);
}

double specialValue(Walk walk, double value) {
  if (walk.at('q', 'Q')) return 0.0;
  if (!walk.at('i', 'I')) return value;
  walk.i += 2;
  if (walk.at('f', 'F')) return static_cast<double>(1e18F);
  if (walk.at('d', 'D')) return 0.0;
  return value;
}

}  // namespace

double referenceNumber(const std::string& text) {
  if (text == "nan") return 0.0;
  Walk walk{text};
  double value = 0.0;
  while (walk.atDigit()) {
    value *= 10.0;
    value += walk.digit();
  }
  const bool fraction = walk.skip('.');
  double scale = 0.1;
  while (fraction && walk.atDigit()) {
    const double part = walk.digit() * scale;
    value += part;
    scale *= 0.1;
  }
  if (walk.skip('e') || walk.skip('E')) return withExponent(walk, value);
  if (fraction && walk.skip('#')) return specialValue(walk, value);
  return value;
}

uint64_t bitsOf(double value) { return std::bit_cast<uint64_t>(value); }

uint64_t valueBitsOf(double value) { return std::isnan(value) ? ~uint64_t{0} : bitsOf(value); }

}  // namespace KelpTest
