#include "kelp/program/hashlittle.h"

#include <bit>
#include <cstring>

namespace Kelp {

static_assert(std::endian::native == std::endian::little, "words are read as they lie in memory");

namespace {

struct HashState {
  uint32_t a, b, c;

  void mix() {
    a -= c, a ^= std::rotl(c, 4), c += b;
    b -= a, b ^= std::rotl(a, 6), a += c;
    c -= b, c ^= std::rotl(b, 8), b += a;
    a -= c, a ^= std::rotl(c, 16), c += b;
    b -= a, b ^= std::rotl(a, 19), a += c;
    c -= b, c ^= std::rotl(b, 4), b += a;
  }

  void finish() {
    c ^= b, c -= std::rotl(b, 14);
    a ^= c, a -= std::rotl(c, 11);
    b ^= a, b -= std::rotl(a, 25);
    c ^= b, c -= std::rotl(b, 16);
    a ^= c, a -= std::rotl(c, 4);
    b ^= a, b -= std::rotl(a, 14);
    c ^= b, c -= std::rotl(b, 24);
  }
};

// The published code reads aligned keys by words, others by halves or bytes, all to the same
// values; a copy of four bytes is one instruction wherever they lie.
uint32_t wordAt(const uint8_t* at) {
  uint32_t value;
  std::memcpy(&value, at, sizeof value);
  return value;
}

// The word that the last 1 to 3 bytes make, missing ones counting as zero.
uint32_t partOfAWord(const uint8_t* at, size_t length) {
  const size_t middle = length / 2;
  const size_t last = length - 1;
  return at[0] | uint32_t{at[middle]} << (8 * middle) | uint32_t{at[last]} << (8 * last);
}

// The word at `offset` of the last 1 to 12 bytes, missing ones counting as zero. A word of which
// some are there is read with those before it, which are then shifted out.
uint32_t tailWord(const uint8_t* tail, size_t length, size_t offset) {
  if (length <= offset) return 0;
  if (length >= offset + 4) return wordAt(tail + offset);
  if (length < 4) return partOfAWord(tail, length);
  return wordAt(tail + length - 4) >> (8 * (offset + 4 - length));
}

}  // namespace

uint32_t hashlittle(const void* key, size_t length) {
  const auto* bytes = static_cast<const uint8_t*>(key);
  const uint32_t start = 0xdeadbeef + static_cast<uint32_t>(length);
  HashState state{start, start, start};
  for (; length > 12; bytes += 12, length -= 12) {
    state.a += wordAt(bytes);
    state.b += wordAt(bytes + 4);
    state.c += wordAt(bytes + 8);
    state.mix();
  }
  if (length == 0) return state.c;
  state.a += tailWord(bytes, length, 0);
  state.b += tailWord(bytes, length, 4);
  state.c += tailWord(bytes, length, 8);
  state.finish();
  return state.c;
}

}  // namespace Kelp
