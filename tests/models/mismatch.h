// How the library is told apart from a model of it.
#pragma once

#include <optional>
#include <sstream>
#include <stdexcept>
#include <string>

#include "kelp/utils/charstring.h"

namespace KelpTest {

/// A text or none, as a CharString holds it.
using MaybeText = std::optional<std::string>;

inline MaybeText textOf(const Kelp::CharString& text) {
  return text.isNull() ? MaybeText() : MaybeText(text.chars());
}

inline const char* charsOf(const MaybeText& text) { return text ? text->c_str() : nullptr; }

/// The library did not do what the model says.
class Mismatch : public std::logic_error {
 public:
  using std::logic_error::logic_error;
};

template <class Value>
void describe(std::ostream& out, const Value& value) {
  out << value;
}
inline void describe(std::ostream& out, const MaybeText& text) {
  out << (text ? '"' + *text + '"' : "no text");
}

/// Throws Mismatch unless both are equal. Nothing is allocated while they are.
template <class Expected, class Got>
void expectSame(const char* what, const Expected& expected, const Got& got) {
  if (expected == got) return;
  std::ostringstream text;
  text << what << ": expected ";
  describe(text, expected);
  text << ", got ";
  describe(text, got);
  throw Mismatch(text.str());
}

inline void expectThat(const char* what, bool holds) {
  if (!holds) throw Mismatch(std::string("does not hold: ") + what);
}

}  // namespace KelpTest
