#include "kelp/writers/numbertext.h"

#include <charconv>
#include <cmath>
#include <cstring>

namespace Kelp {

namespace {

constexpr double kPlainFrom = 1e-5;  // smaller numbers are written with an exponent

}  // namespace

NumberText::NumberText(double value) { _write(value, 1e16); }

NumberText::NumberText(float value) {
  _write(value, 1e8F);
  if (!std::isfinite(value)) return;
  // For a few values, 7.038531e-26F is one, the double nearest to the shortest digits lies halfway
  // between two floats and rounds to the other one.
  double read = 0.0;
  std::from_chars(text, text + length, read);
  if (static_cast<float>(read) != value) _write(static_cast<double>(value), 1e16);
}

template <class Value>
void NumberText::_write(Value value, Value plainBelow) {
  if (std::isnan(value)) return _set("NaN");
  if (std::isinf(value)) return _set(value > 0 ? "Infinity" : "-Infinity");
  if (value == 0) return _set(std::signbit(value) ? "-0.0" : "0");
  const Value magnitude = std::fabs(value);
  const bool plain = magnitude >= static_cast<Value>(kPlainFrom) && magnitude < plainBelow;
  const auto format = plain ? std::chars_format::fixed : std::chars_format::scientific;
  length = static_cast<size_t>(std::to_chars(text, text + sizeof text, value, format).ptr - text);
}

void NumberText::_set(std::string_view words) {
  length = words.size();
  std::memcpy(text, words.data(), length);
}

}  // namespace Kelp
