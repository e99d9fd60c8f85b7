// The fuzzing targets. Each takes any bytes, throws Mismatch when the library breaks a promise, and
// returns 0; the sanitizers watch the rest. The first two bytes of an input choose the request for
// memory that fails (see Shortage).
#pragma once

#include <cstddef>
#include <cstdint>

namespace KelpTest {

/// Settings, then the text of a scene.
int fuzzText(const uint8_t* data, size_t size);

/// Settings, then tokens for a scanner that is none.
int fuzzTokens(const uint8_t* data, size_t size);

/// Operations on programs.
int fuzzPrograms(const uint8_t* data, size_t size);

/// Operations on strings, tables or maps.
int fuzzContainers(const uint8_t* data, size_t size);

/// The text of a number.
int fuzzNumbers(const uint8_t* data, size_t size);

struct FuzzTarget {
  const char* name;
  int (*run)(const uint8_t* data, size_t size);
};

inline constexpr FuzzTarget kFuzzTargets[] = {
    {"text", fuzzText},         {"tokens", fuzzTokens},
    {"programs", fuzzPrograms}, {"containers", fuzzContainers},
    {"numbers", fuzzNumbers},
};

}  // namespace KelpTest
