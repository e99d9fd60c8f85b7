#include "cli/jsonwriter.h"

#include <cmath>
#include <string>

#include "kelp/ast/treetext.h"
#include "kelp/writers/numbertext.h"

namespace KelpCli {

namespace {

bool isUtf8(std::string_view text) {
  while (!text.empty()) {
    const size_t length = Kelp::leadingCharacter(text);
    if (length == 0) return false;
    text.remove_prefix(length);
  }
  return true;
}

std::string hexadecimal(std::string_view bytes) {
  constexpr char kDigits[] = "0123456789abcdef";
  std::string digits;
  digits.reserve(2 * bytes.size());
  for (const char byte : bytes) {
    const auto value = static_cast<unsigned char>(byte);
    digits += kDigits[value >> 4];
    digits += kDigits[value & 15];
  }
  return digits;
}

}  // namespace

void JsonWriter::number(double value) {
  const Kelp::NumberText digits(value);
  std::isfinite(value) ? raw(digits.view()) : text(digits.view());
}

void JsonWriter::number(float value) {
  const Kelp::NumberText digits(value);
  std::isfinite(value) ? raw(digits.view()) : text(digits.view());
}

void JsonWriter::text(std::string_view value) {
  if (value.data() == nullptr) return null();
  if (isUtf8(value)) {
    writer.String(value.data(), value.size());
    return;
  }
  beginObject();
  key("bytes");
  const std::string digits = hexadecimal(value);
  writer.String(digits.data(), digits.size());
  endObject();
}

void JsonWriter::newLine() {
  sink.Put('\n');
  writer.Reset(sink);
}

void JsonWriter::raw(std::string_view digits) {
  writer.RawValue(digits.data(), digits.size(), rapidjson::kNumberType);
}

}  // namespace KelpCli
