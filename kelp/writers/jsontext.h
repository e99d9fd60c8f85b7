// JsonText: JSON as it is made, without a document in memory.
#pragma once

#include <cstdint>
#include <string_view>
#include <utility>

#include "kelp/writers/textbuffer.h"

namespace Kelp {

/// Writes values in the order of the calls, without spaces. Whoever calls opens and closes objects
/// and arrays in pairs, and gives every member of an object a key.
class JsonText {
 public:
  explicit JsonText(TextSink sink) : out(std::move(sink)) {}

  void beginObject() { begin('{'); }
  void endObject() { end('}'); }
  void beginArray() { begin('['); }
  void endArray() { end(']'); }
  void null() { value("null"); }
  void boolean(bool truth) { value(truth ? "true" : "false"); }
  void integer(int64_t number);

  /// With digits that read back to the same bits; not finite: "Infinity", "-Infinity" or "NaN".
  void number(double number);
  void number(float number);

  /// A string, or {"bytes": "<hexadecimal digits>"} when the text is not well-formed UTF-8, or null
  /// when the view's data() is.
  void text(std::string_view characters);

  /// A member's name, which its value follows.
  JsonText& key(std::string_view name);

  /// Ends a value that stands on a line of its own, and hands on what is held back.
  void newLine();

 private:
  void separate();
  void begin(char bracket);
  void end(char bracket);
  void value(std::string_view characters);
  template <class Value>
  void digits(Value number);
  void quote(std::string_view characters);

  TextBuffer out;
  bool needsComma = false;  // before another value
};

}  // namespace Kelp
