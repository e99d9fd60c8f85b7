#include "kelp/writers/jsontext.h"

#include <cmath>
#include <string>

#include "kelp/ast/treetext.h"
#include "kelp/writers/numbertext.h"

namespace Kelp {

namespace {

bool isUtf8(std::string_view text) {
  while (!text.empty()) {
    const size_t length = leadingCharacter(text);
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

bool isPlain(char c) { return static_cast<unsigned char>(c) >= 0x20 && c != '"' && c != '\\'; }

// What stands for a character that a string cannot hold as it is.
std::string escaped(char c) {
  constexpr char kDigits[] = "0123456789ABCDEF";
  constexpr std::string_view kShort = "\"\"\\\\\bb\ff\nn\rr\tt";
  for (size_t i = 0; i < kShort.size(); i += 2) {
    if (kShort[i] == c) return {'\\', kShort[i + 1]};
  }
  const auto value = static_cast<unsigned char>(c);
  return {'\\', 'u', '0', '0', kDigits[value >> 4], kDigits[value & 15]};
}

}  // namespace

void JsonText::integer(int64_t number) { value(std::to_string(number)); }

void JsonText::number(double number) { digits(number); }
void JsonText::number(float number) { digits(number); }

template <class Value>
void JsonText::digits(Value number) {
  const NumberText digits(number);
  if (std::isfinite(number)) return value(digits.view());
  text(digits.view());
}

void JsonText::text(std::string_view characters) {
  if (characters.data() == nullptr) return null();
  if (isUtf8(characters)) return quote(characters);
  beginObject();
  key("bytes").quote(hexadecimal(characters));
  endObject();
}

JsonText& JsonText::key(std::string_view name) {
  quote(name);
  out << ':';
  needsComma = false;
  return *this;
}

void JsonText::newLine() {
  out << '\n';
  out.flush();
  needsComma = false;
}

void JsonText::separate() {
  if (needsComma) out << ',';
  needsComma = true;
}

void JsonText::begin(char bracket) {
  separate();
  out << bracket;
  needsComma = false;
}

void JsonText::end(char bracket) {
  out << bracket;
  needsComma = true;
}

void JsonText::value(std::string_view characters) {
  separate();
  out << characters;
}

void JsonText::quote(std::string_view characters) {
  separate();
  out << '"';
  while (!characters.empty()) {
    size_t plain = 0;
    while (plain < characters.size() && isPlain(characters[plain])) ++plain;
    out << characters.substr(0, plain);
    if (plain == characters.size()) break;
    out << escaped(characters[plain]);
    characters.remove_prefix(plain + 1);
  }
  out << '"';
}

}  // namespace Kelp
