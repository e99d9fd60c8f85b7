#include "kelp/program/hashlittle.h"

#include <gtest/gtest.h>
#include <sys/mman.h>
#include <unistd.h>

#include <bit>
#include <cstring>
#include <string>

using Kelp::hashlittle;

namespace {

// The published algorithm with every byte read alone and the last block padded with zeros.
uint32_t modelHash(const std::string& key) {
  const auto byte = [&](size_t i) {
    return i < key.size() ? uint32_t{static_cast<unsigned char>(key[i])} : 0U;
  };
  const auto word = [&](size_t i) {
    return byte(i) | byte(i + 1) << 8 | byte(i + 2) << 16 | byte(i + 3) << 24;
  };
  uint32_t a = 0xdeadbeef + static_cast<uint32_t>(key.size());
  uint32_t b = a;
  uint32_t c = a;
  if (key.empty()) return c;
  const auto step = [](uint32_t& x, uint32_t& y, uint32_t& z, int turn) {
    x = (x - z) ^ std::rotl(z, turn);
    z += y;
  };
  size_t at = 0;
  for (; key.size() - at > 12; at += 12) {
    a += word(at), b += word(at + 4), c += word(at + 8);
    step(a, b, c, 4), step(b, c, a, 6), step(c, a, b, 8);
    step(a, b, c, 16), step(b, c, a, 19), step(c, a, b, 4);
  }
  a += word(at), b += word(at + 4), c += word(at + 8);
  const auto last = [](uint32_t& x, uint32_t y, int turn) { x = (x ^ y) - std::rotl(y, turn); };
  last(c, b, 14), last(a, c, 11), last(b, a, 25), last(c, b, 16);
  last(a, c, 4), last(b, a, 14), last(c, b, 24);
  return c;
}

std::string keyOf(size_t length) {
  std::string key;
  for (size_t i = 0; i < length; ++i) key += static_cast<char>(i * 37 + 11);
  return key;
}

TEST(Hashlittle, PublishedValues) {
  EXPECT_EQ(hashlittle("", 0), 0xdeadbeefU);
  const char text[] = "Four score and seven years ago";
  EXPECT_EQ(hashlittle(text, std::strlen(text)), 0x17770551U);
  EXPECT_EQ(modelHash(text), 0x17770551U);
}

TEST(Hashlittle, AlignmentDoesNotMatter) {
  alignas(8) char room[80];
  for (size_t length = 0; length <= 64; ++length) {
    const std::string key = keyOf(length);
    const uint32_t expected = modelHash(key);
    for (size_t alignment = 0; alignment < 4; ++alignment) {
      std::memset(room, '#', sizeof room);
      std::memcpy(room + alignment, key.data(), length);
      ASSERT_EQ(hashlittle(room + alignment, length), expected) << length << ' ' << alignment;
    }
  }
}

TEST(Hashlittle, BytesAbove127CountUnsigned) {
  for (const char* key :
       {"\x80", "\xff\xff\xff\xff", "caf\xc3\xa9", "\xff\x80 twelve and more \x80"}) {
    EXPECT_EQ(hashlittle(key, std::strlen(key)), modelHash(key));
  }
}

TEST(Hashlittle, EmbeddedNulsCount) {
  EXPECT_NE(hashlittle("a\0b", 3), hashlittle("a\0c", 3));
  EXPECT_NE(hashlittle("a", 1), hashlittle("a\0", 2));
}

TEST(Hashlittle, ReadsNothingBehindTheKey) {
  const auto page = static_cast<size_t>(sysconf(_SC_PAGESIZE));
  void* mapped =
      mmap(nullptr, 2 * page, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
  ASSERT_NE(mapped, MAP_FAILED);
  char* guard = static_cast<char*>(mapped) + page;
  ASSERT_EQ(mprotect(guard, page, PROT_NONE), 0);
  for (size_t length = 0; length <= 64; ++length) {
    const std::string key = keyOf(length);
    std::memcpy(guard - length, key.data(), length);
    EXPECT_EQ(hashlittle(guard - length, length), modelHash(key)) << length;
  }
  munmap(mapped, 2 * page);
}

}  // namespace
