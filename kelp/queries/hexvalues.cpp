#include "kelp/queries/hexvalues.h"

#include <algorithm>
#include <bit>
#include <cstdint>
#include <cstring>
#include <limits>
#include <type_traits>

#include "kelp/ast/treetext.h"

namespace Kelp {

namespace {

static_assert(sizeof(int) == 4 && sizeof(float) == 4, "numbers have 32 bits");
static_assert(sizeof(Vector) == 12 && sizeof(Color) == 12, "parts stand behind each other");
static_assert(std::is_trivially_copyable_v<Vector> && std::is_trivially_copyable_v<Color>);

using Byte = unsigned char;

constexpr size_t kDigitsOfNumber = 8;
// Digits that are worked on at once: few enough to stay in the nearest cache between the steps.
constexpr size_t kBlock = 256;
constexpr Byte kNoDigit = 0xFF;
constexpr char kDigits[] = "0123456789abcdef";

// Comparisons and choices of bytes: compilers make vector instructions of them, 16 or more
// characters at a time, and no branch.
Byte digitOf(char character) {
  const auto code = static_cast<Byte>(character);
  const auto decimal = static_cast<Byte>(code - '0');
  const auto letter = static_cast<Byte>((code | 0x20U) - 'a');  // of either case
  const auto other = letter < 6 ? static_cast<Byte>(letter + 10) : kNoDigit;
  return decimal < 10 ? decimal : other;
}

template <size_t kBytes>
void reverseEachNumber(Byte (&bytes)[kBytes]) {
  for (size_t i = 0; i < kBytes; i += 4) std::reverse(bytes + i, bytes + i + 4);
}

// Texts have the lowest byte first.
void turnToHostOrder([[maybe_unused]] Byte (&bytes)[kBlock / 2]) {
  if constexpr (std::endian::native == std::endian::big) {
    reverseEachNumber(bytes);  // unreachable: the tests run where the lowest byte comes first
  }                            // unreachable: likewise
}

// Steps of one kind each, all of them of a known length. False when not all are digits.
bool decodeBlock(const char* text, Byte* numbers) {
  Byte digits[kBlock];
  Byte all = 0;
  for (size_t i = 0; i < kBlock; ++i) {
    digits[i] = digitOf(text[i]);
    all = static_cast<Byte>(all | digits[i]);
  }
  Byte bytes[kBlock / 2];
  for (size_t i = 0; i < kBlock / 2; ++i) {
    bytes[i] = static_cast<Byte>(digits[2 * i] << 4U | digits[2 * i + 1]);
  }
  turnToHostOrder(bytes);
  std::memcpy(numbers, bytes, sizeof bytes);
  return all < 16;
}

void encodeBlock(const Byte* numbers, char* text) {
  Byte bytes[kBlock / 2];
  std::memcpy(bytes, numbers, sizeof bytes);
  turnToHostOrder(bytes);
  Byte digits[kBlock];
  for (size_t i = 0; i < kBlock / 2; ++i) {
    digits[2 * i] = static_cast<Byte>(bytes[i] >> 4U);
    digits[2 * i + 1] = static_cast<Byte>(bytes[i] & 15U);
  }
  for (size_t i = 0; i < kBlock; ++i) {
    text[i] = static_cast<char>(digits[i] + (digits[i] < 10 ? '0' : 'a' - 10));
  }
}

// Where the first character stands that is no digit; there is one.
HexError badDigitIn(std::string_view text, size_t from) {
  while (digitOf(text[from]) != kNoDigit) ++from;
  return {HexError::Kind::kDigit, from, text[from]};
}

HexError tooLong(size_t position) { return {HexError::Kind::kTooLong, position}; }

// What is wrong with the characters from `start` on, which are too few for an element.
HexError errorOfRest(std::string_view text, size_t start) {
  if (start == text.size()) return {};
  const std::string_view rest = text.substr(start);
  if (std::any_of(rest.begin(), rest.end(), [](char c) { return digitOf(c) == kNoDigit; })) {
    return badDigitIn(text, start);
  }
  return {HexError::Kind::kTooShort, text.size()};
}

}  // namespace

std::string HexError::describe() const {
  switch (kind) {
    case Kind::kNone:
      return "";
    case Kind::kNoText:
      return "there is no text to decode";
    case Kind::kDigit:
      break;
    case Kind::kTooShort:
      return "the text ends within an element, behind character " + std::to_string(position);
    case Kind::kTooLong:
      return "the text goes on behind its last element, which ends with character " +
             std::to_string(position);
  }
  const bool isShown = character > ' ' && character <= '~' && character != '"';
  std::string shown = {'"', character, '"'};
  if (!isShown) {
    const auto code = static_cast<Byte>(character);
    shown = {'b', 'y', 't', 'e', ' ', '0', 'x', kDigits[code >> 4U], kDigits[code & 15U]};
  }
  return "character " + std::to_string(position + 1) + " is no hexadecimal digit: " + shown;
}

HexError decodeHexNumbers(std::string_view text, void* numbers) {
  auto* to = static_cast<Byte*>(numbers);
  size_t at = 0;
  for (; text.size() - at >= kBlock; at += kBlock) {
    if (!decodeBlock(text.data() + at, to)) return badDigitIn(text, at);
    to += kBlock / 2;
  }
  const size_t rest = text.size() - at;
  if (rest == 0) return {};
  char block[kBlock];
  std::memset(block, '0', sizeof block);
  std::memcpy(block, text.data() + at, rest);
  Byte decoded[kBlock / 2];
  if (!decodeBlock(block, decoded)) return badDigitIn(text, at);
  const size_t whole = rest / kDigitsOfNumber;
  std::memcpy(to, decoded, whole * 4);
  return errorOfRest(text, at + whole * kDigitsOfNumber);
}

void encodeHexNumbers(const void* numbers, size_t count, char* digits) {
  const auto* from = static_cast<const Byte*>(numbers);
  size_t left = count * 4;  // bytes
  for (; left >= kBlock / 2; left -= kBlock / 2) {
    encodeBlock(from, digits);
    from += kBlock / 2;
    digits += kBlock;
  }
  if (left == 0) return;
  Byte rest[kBlock / 2] = {};
  std::memcpy(rest, from, left);
  char block[kBlock];
  encodeBlock(rest, block);
  std::memcpy(digits, block, left * 2);
}

template <class T>
HexList<T> decodeHexList(std::string_view text) {
  constexpr size_t kMost = std::numeric_limits<int>::max();
  HexList<T> list;
  const size_t count = text.size() / kHexDigits<T>;
  if (count > kMost) {
    list.error = tooLong(kMost * kHexDigits<T>);
    return list;
  }
  list.elements.allocArray(static_cast<int>(count));
  const size_t whole = count * kHexDigits<T>;
  list.error = decodeHexNumbers(text.substr(0, whole), list.elements.data);
  if (list) list.error = errorOfRest(text, whole);
  if (!list) list.elements.free();
  return list;
}

HexTransform decodeHexTransform(std::string_view text) {
  constexpr size_t kNumbers = 12;
  constexpr size_t kDigitsOfAll = kNumbers * kDigitsOfNumber;
  HexTransform transform;
  float numbers[kNumbers];
  transform.error = decodeHexNumbers(text.substr(0, kDigitsOfAll), numbers);
  if (!transform) return transform;
  if (text.size() > kDigitsOfAll) transform.error = tooLong(kDigitsOfAll);
  if (text.size() < kDigitsOfAll) transform.error = {HexError::Kind::kTooShort, text.size()};
  if (!transform) return transform;
  std::copy_n(numbers, 9, transform.matrix);
  std::copy_n(numbers + 9, 3, transform.offset);
  return transform;
}

template <class T>
HexList<T> elementsOf(const ListTypeExpressionAST<T>& node) {
  HexList<T> list;
  if (node.parsedForm != 0) {
    list.elements = node.elements;
    return list;
  }
  const std::string_view text = recordedText(node.textRef);
  if (text.data() != nullptr) return decodeHexList<T>(text);
  list.error.kind = HexError::Kind::kNoText;
  return list;
}

HexTransform elementsOf(const TransformHexExpressionAST& node) {
  const std::string_view text = recordedText(node.textRef);
  if (text.data() != nullptr) return decodeHexTransform(text);
  HexTransform transform;
  transform.error.kind = HexError::Kind::kNoText;
  return transform;
}

template HexList<int> decodeHexList(std::string_view text);
template HexList<float> decodeHexList(std::string_view text);
template HexList<Vector> decodeHexList(std::string_view text);
template HexList<Color> decodeHexList(std::string_view text);
template HexList<int> elementsOf(const ListTypeExpressionAST<int>& node);
template HexList<float> elementsOf(const ListTypeExpressionAST<float>& node);
template HexList<Vector> elementsOf(const ListTypeExpressionAST<Vector>& node);
template HexList<Color> elementsOf(const ListTypeExpressionAST<Color>& node);

}  // namespace Kelp
