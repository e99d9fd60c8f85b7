// Number literals.
#include <cmath>

#include "kelp/parser/tokenring.h"

#ifdef __FAST_MATH__
#error "number literals need IEEE arithmetic as written: build without -ffast-math"
#endif

namespace Kelp {

namespace {

// Called through a pointer that the compiler cannot see through: it would replace a power of ten
// by exp10(), which rounds differently.
double (*const volatile power)(double, double) = std::pow;

// What 1.#INF stands for: 1e18 rounded to single precision.
constexpr double kInfinity = 9.999999843067494e+17;

bool isDecimalDigit(char c) { return c >= '0' && c <= '9'; }

// Adds the digits at `text` to `value` as the next ones of an integer and moves behind them.
double readInteger(const char*& text, double value) {
  for (; isDecimalDigit(*text); ++text) value = value * 10.0 + (*text - '0');
  return value;
}

double readFraction(const char*& text, double value) {
  double scale = 0.1;
  for (; isDecimalDigit(*text); ++text) {
    value = value + (*text - '0') * scale;
    scale = scale * 0.1;
  }
  return value;
}

// `text` stands behind the exponent mark. A plus and then a minus counts as a minus.
double applyExponent(const char* text, double value) {
  if (*text == '+') ++text;
  const double sign = *text == '-' ? -1.0 : 1.0;
  if (*text == '-') ++text;
  if (!isDecimalDigit(*text)) return value;
  const double exponent = readInteger(text, 0.0);
  return value * power(10.0, sign * exponent);
}

// `text` stands behind the # of 1.#INF, 1.#IND, 1.#QNAN and their like.
double readSpecialValue(const char* text, double value) {
  switch (*text) {
    case 'i':
    case 'I': {
      const char last = text[1] == '\0' ? '\0' : text[2];
      if (last == 'f' || last == 'F') return kInfinity;
      return last == 'd' || last == 'D' ? 0.0 : value;
    }
    case 'q':
    case 'Q':
      return 0.0;
    default:
      return value;
  }
}

}  // namespace

double TokenRing::parseNum(const char* text) {
  double value = readInteger(text, 0.0);
  const bool point = *text == '.';
  if (point) value = readFraction(++text, value);
  if (*text == 'e' || *text == 'E') return applyExponent(text + 1, value);
  if (point && *text == '#') return readSpecialValue(text + 1, value);
  return value;
}

}  // namespace Kelp
