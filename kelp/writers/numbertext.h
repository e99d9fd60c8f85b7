// NumberText: a number with the digits that read back to it.
#pragma once

#include <cstddef>
#include <string_view>

namespace Kelp {

/// The shortest digits that read back to the same bits; "Infinity", "-Infinity" or "NaN" for what
/// has no digits, "-0.0" for negative zero, so that no reader takes it for an integer.
class NumberText {
 public:
  explicit NumberText(double value);

  /// These digits read back to the float whether they are read as a float, or as a double that is
  /// then rounded.
  explicit NumberText(float value);

  std::string_view view() const { return {text, length}; }

 private:
  template <class Value>
  void _write(Value value, Value plainBelow);
  void _set(std::string_view words);

  char text[40];
  size_t length = 0;
};

}  // namespace Kelp
