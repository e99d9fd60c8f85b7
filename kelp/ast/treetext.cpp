#include "kelp/ast/treetext.h"

namespace Kelp {

namespace {

// What may follow a first byte: how many bytes in all, and the range of the second one. The ranges
// shut out overlong forms, surrogates and what lies beyond U+10FFFF.
struct Sequence {
  size_t length;
  unsigned char secondFrom;
  unsigned char secondTo;
};

Sequence sequenceOf(unsigned char first) {
  if (first < 0x80) return {1, 0, 0};
  if (first < 0xC2 || first > 0xF4) return {0, 0, 0};
  if (first < 0xE0) return {2, 0x80, 0xBF};
  if (first == 0xE0) return {3, 0xA0, 0xBF};
  if (first == 0xED) return {3, 0x80, 0x9F};
  if (first < 0xF0) return {3, 0x80, 0xBF};
  if (first == 0xF0) return {4, 0x90, 0xBF};
  return {4, 0x80, static_cast<unsigned char>(first == 0xF4 ? 0x8F : 0xBF)};
}

}  // namespace

std::vector<BinaryExpressionAST*> leftSpine(BinaryExpressionAST& top) {
  std::vector<BinaryExpressionAST*> spine{&top};
  while (auto* left = dynamic_cast<BinaryExpressionAST*>(spine.back()->left)) spine.push_back(left);
  return spine;
}

std::string_view recordedText(const uint64_t (&record)[3]) {
  return {reinterpret_cast<const char*>(record[0]), record[1]};
}

std::string_view literalText(const StringExpressionAST& node) {
  return node.ownsText != 0 ? viewOf(node.text) : recordedText(node.span);
}

std::string_view viewOf(const CharString& text) {
  return text.isNull() ? std::string_view() : std::string_view(text.chars());
}

size_t leadingCharacter(std::string_view text) {
  if (text.empty()) return 0;
  const auto byte = [text](size_t i) { return static_cast<unsigned char>(text[i]); };
  const Sequence sequence = sequenceOf(byte(0));
  if (sequence.length > text.size()) return 0;
  if (sequence.length < 2) return sequence.length;
  if (byte(1) < sequence.secondFrom || byte(1) > sequence.secondTo) return 0;
  for (size_t i = 2; i < sequence.length; ++i) {
    if ((byte(i) & 0xC0U) != 0x80U) return 0;
  }
  return sequence.length;
}

}  // namespace Kelp
