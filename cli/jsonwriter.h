// JsonWriter: JSON text as it is made, without a document in memory.
#pragma once

#include <cstddef>
#include <cstdint>
#include <ostream>
#include <string_view>

// Texts of scenes may be longer than 32 bits can count.
#define RAPIDJSON_NO_SIZETYPEDEFINE
namespace rapidjson {
using SizeType = std::size_t;
}  // namespace rapidjson

#include <rapidjson/writer.h>

#include "kelp/utils/charstring.h"

namespace KelpCli {

/// Writes to a stream whose buffer throws when it fails.
class JsonWriter {
 public:
  explicit JsonWriter(std::ostream& out) : sink{out.rdbuf()}, writer(sink) {}

  void beginObject() { writer.StartObject(); }
  void endObject() { writer.EndObject(); }
  void beginArray() { writer.StartArray(); }
  void endArray() { writer.EndArray(); }
  void null() { writer.Null(); }
  void boolean(bool value) { writer.Bool(value); }
  void integer(int64_t value) { writer.Int64(value); }

  /// With digits that read back to the same bits; not finite: "Infinity", "-Infinity" or "NaN".
  void number(double value);
  void number(float value);

  /// A string, or {"bytes": "<hexadecimal digits>"} when the text is not well-formed UTF-8, or null
  /// when the view's data() is.
  void text(std::string_view value);

  /// A member's name, which its value follows.
  JsonWriter& key(std::string_view name) {
    writer.Key(name.data(), name.size());
    return *this;
  }

  /// Ready for another value, which stands on a line of its own.
  void newLine();

 private:
  struct Sink {
    using Ch = char;
    std::streambuf* buffer;
    void Put(char c) { buffer->sputc(c); }
    void Flush() {}
  };

  void raw(std::string_view digits);

  Sink sink;
  rapidjson::Writer<Sink> writer;
};

}  // namespace KelpCli
