#include "kelp/parser/sharedspellings.h"

#include <cstring>

namespace Kelp {

namespace {

template <class Word>
uint64_t wordAt(const char* at) {
  Word word;
  std::memcpy(&word, at, sizeof word);
  return word;
}

// The head and the tail of a text of up to 16 characters, which may overlap; of longer ones the
// middle does not count.
uint64_t mixOf(std::string_view text) {
  const char* begin = text.data();
  const char* end = begin + text.size();
  constexpr uint64_t kOdd = 0x9E3779B97F4A7C15U;  // 2^64 over the golden ratio
  uint64_t head = text.size();
  uint64_t tail = 0;
  if (text.size() >= 8) {
    head ^= wordAt<uint64_t>(begin);
    tail = wordAt<uint64_t>(end - 8);
  } else if (text.size() >= 4) {
    head ^= wordAt<uint32_t>(begin) << 32;
    tail = wordAt<uint32_t>(end - 4);
  } else if (!text.empty()) {
    tail = static_cast<uint64_t>(begin[0]) << 16 | static_cast<uint64_t>(end[-1]) << 8 |
           static_cast<uint64_t>(begin[text.size() / 2]);
  }
  return (head * kOdd ^ tail) * kOdd;
}

}  // namespace

CharString SharedSpellings::share(std::string_view spelling) {
  if (!isInUse || spelling.size() > kLongest) return CharString(spelling);
  if (slots == nullptr) slots = std::make_unique<Slot[]>(kSlots);
  static_assert(kSlots == size_t{1} << 10);
  const uint64_t mix = mixOf(spelling);
  Slot& slot = slots[mix >> (64 - 10)];
  if (slot.mix == mix && slot.length == spelling.size() && !slot.text.isNull() &&
      std::memcmp(slot.text.chars(), spelling.data(), spelling.size()) == 0) {
    return slot.text;
  }
  CharString fresh(spelling);
  if (slot.lastMix == mix) {
    slot.text = fresh;
    slot.length = spelling.size();
    slot.mix = mix;
  }
  slot.lastMix = mix;
  return fresh;
}

}  // namespace Kelp
