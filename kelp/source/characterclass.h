// The classes of characters that the scanner tells apart, one table look-up each.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

namespace Kelp {

enum class CharacterClass : uint8_t {
  kOther,       // a token of one character, or none
  kBlank,       // space, tab, CR, VT, FF
  kNewline,     // LF
  kEnd,         // NUL: the padding, or a byte that no scene may hold
  kIdentifier,  // letter, underscore, byte above 127
  kDigit,
  kDot,    // a token, or the start of a number
  kSlash,  // a token, or the start of a comment
  kQuote,
  kHash,  // starts #include at the start of a line
};

struct CharacterTables {
  std::array<CharacterClass, 256> classes{};
  std::array<bool, 256> inIdentifier{};  // may stand in an identifier behind its first character
};

consteval CharacterTables makeCharacterTables() {
  CharacterTables tables;
  const auto set = [&tables](const char* characters, CharacterClass kind) {
    for (; *characters != '\0'; ++characters) {
      tables.classes[static_cast<uint8_t>(*characters)] = kind;
    }
  };
  set(" \t\r\v\f", CharacterClass::kBlank);
  set("\n", CharacterClass::kNewline);
  set(".", CharacterClass::kDot);
  set("/", CharacterClass::kSlash);
  set("\"", CharacterClass::kQuote);
  set("#", CharacterClass::kHash);
  set("0123456789", CharacterClass::kDigit);
  set("abcdefghijklmnopqrstuvwxyz_ABCDEFGHIJKLMNOPQRSTUVWXYZ", CharacterClass::kIdentifier);
  for (size_t i = 128; i < 256; ++i) tables.classes[i] = CharacterClass::kIdentifier;
  tables.classes[0] = CharacterClass::kEnd;
  for (size_t i = 0; i < 256; ++i) {
    tables.inIdentifier[i] = tables.classes[i] == CharacterClass::kIdentifier ||
                             tables.classes[i] == CharacterClass::kDigit || i == '@' || i == '|' ||
                             i == '$';
  }
  return tables;
}

inline constexpr CharacterTables kCharacterTables = makeCharacterTables();

inline CharacterClass classOf(char c) { return kCharacterTables.classes[static_cast<uint8_t>(c)]; }
inline bool isDigit(char c) { return classOf(c) == CharacterClass::kDigit; }
inline bool isLetter(char c) { return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z'); }
inline bool isInIdentifier(char c) {
  return kCharacterTables.inIdentifier[static_cast<uint8_t>(c)];
}

}  // namespace Kelp
