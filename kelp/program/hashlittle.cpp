#include "kelp/program/hashlittle.h"

#include <bit>
#include <cstring>
#include <memory>

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

// The three ways to read a 32-bit word, by the alignment of the key. All go through memcpy or
// single bytes: the published code's aliasing and its reads past the end are not needed for its
// values.

struct ReadWords {
  static uint32_t word(const uint8_t* at) {
    uint32_t value;
    std::memcpy(&value, std::assume_aligned<4>(at), sizeof value);
    return value;
  }
};

struct ReadHalfWords {
  static uint32_t word(const uint8_t* at) {
    uint16_t half[2];
    std::memcpy(half, std::assume_aligned<2>(at), sizeof half);
    return half[0] + (uint32_t{half[1]} << 16);
  }
};

struct ReadBytes {
  static uint32_t word(const uint8_t* at) {
    return at[0] + (uint32_t{at[1]} << 8) + (uint32_t{at[2]} << 16) + (uint32_t{at[3]} << 24);
  }
};

// The last 1 to 12 bytes, missing ones counting as zero.
uint32_t tailWord(const uint8_t* tail, size_t length, size_t offset) {
  uint32_t value = 0;
  for (size_t i = offset; i < length && i < offset + 4; ++i) {
    value += uint32_t{tail[i]} << (8 * (i - offset));
  }
  return value;
}

template <class Read>
uint32_t hashAs(const uint8_t* key, size_t length) {
  const uint32_t start = 0xdeadbeef + static_cast<uint32_t>(length);
  HashState state{start, start, start};
  for (; length > 12; key += 12, length -= 12) {
    state.a += Read::word(key);
    state.b += Read::word(key + 4);
    state.c += Read::word(key + 8);
    state.mix();
  }
  if (length == 0) return state.c;
  state.a += tailWord(key, length, 0);
  state.b += tailWord(key, length, 4);
  state.c += tailWord(key, length, 8);
  state.finish();
  return state.c;
}

}  // namespace

uint32_t hashlittle(const void* key, size_t length) {
  const auto* bytes = static_cast<const uint8_t*>(key);
  const auto address = reinterpret_cast<uintptr_t>(key);
  if (address % 4 == 0) return hashAs<ReadWords>(bytes, length);
  if (address % 2 == 0) return hashAs<ReadHalfWords>(bytes, length);
  return hashAs<ReadBytes>(bytes, length);
}

}  // namespace Kelp
