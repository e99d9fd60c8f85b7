// Where the operations of a checked run come from: random numbers or the bytes of a file.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

namespace KelpTest {

class Choices {
 public:
  virtual ~Choices() = default;

  /// A number from 0 to n - 1; n is at least 1.
  virtual uint32_t below(uint32_t n) = 0;

  bool oneIn(uint32_t n) { return below(n) == 0; }
};

/// The same choices for the same seed, everywhere.
class RandomChoices final : public Choices {
 public:
  explicit RandomChoices(uint64_t seed) : state(seed * 0x9E3779B97F4A7C15U + 1) {}

  uint32_t below(uint32_t n) override {
    state ^= state << 13U;
    state ^= state >> 7U;
    state ^= state << 17U;
    return static_cast<uint32_t>((state >> 32U) * n >> 32U);
  }

 private:
  uint64_t state;
};

/// Choices read from bytes; behind their end all choices are 0.
class ByteChoices final : public Choices {
 public:
  ByteChoices(const uint8_t* data, size_t size) : at(data), end(data + size) {}

  uint8_t byte() { return at != end ? *at++ : uint8_t{0}; }

  uint32_t below(uint32_t n) override {
    uint32_t number = byte();
    if (n > 256) number = number << 8U | byte();
    return number % n;
  }

  bool atEnd() const { return at == end; }

  /// The next bytes, fewer when there are no more.
  std::string take(size_t bytes) {
    const auto left = static_cast<size_t>(end - at);
    std::string taken(at, at + (bytes < left ? bytes : left));
    at += taken.size();
    return taken;
  }
  std::string rest() { return take(static_cast<size_t>(end - at)); }

 private:
  const uint8_t* at;
  const uint8_t* end;
};

}  // namespace KelpTest
