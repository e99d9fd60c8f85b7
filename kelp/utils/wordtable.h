// WordTable: finds a word among those that are known when the library is built.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string_view>

namespace Kelp {

/// The places of N different words that live for ever. One comparison tells whether a text is among
/// them: no two fall on the same slot, and a hash for which that is so is looked for by the
/// compiler.
template <size_t N>
class WordTable {
 public:
  consteval explicit WordTable(const std::array<std::string_view, N>& all) : words(all) {
    while (!_fill()) multiplier = multiplier * 0x9E3779B1U + 2;  // stays odd
  }

  /// Place of the word among those given, or -1.
  int find(std::string_view word) const {
    if (word.empty()) return -1;
    const int place = slots[_slotOf(word)];
    return place >= 0 && words[static_cast<size_t>(place)] == word ? place : -1;
  }

 private:
  static constexpr int kSlotBits = 7;
  static_assert(N <= size_t{1} << (kSlotBits - 2), "full tables have no hash without collisions");

  constexpr size_t _slotOf(std::string_view word) const {
    const auto byteAt = [word](size_t at) { return uint32_t{static_cast<uint8_t>(word[at])}; };
    const uint32_t mix = byteAt(0) | byteAt(word.size() / 2) << 8 | byteAt(word.size() - 1) << 16 |
                         static_cast<uint32_t>(word.size()) << 24;
    return (mix * multiplier) >> (32 - kSlotBits);
  }

  consteval bool _fill() {
    slots.fill(-1);
    for (size_t i = 0; i < N; ++i) {
      int16_t& slot = slots[_slotOf(words[i])];
      if (slot >= 0) return false;
      slot = static_cast<int16_t>(i);
    }
    return true;
  }

  std::array<std::string_view, N> words;
  std::array<int16_t, size_t{1} << kSlotBits> slots{};
  uint32_t multiplier = 0x9E3779B1U;  // 2^32 over the golden ratio
};

}  // namespace Kelp
