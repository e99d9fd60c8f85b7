// The rules of number literals a second time, character by character over an index, for comparing.
#pragma once

#include <cstdint>
#include <string>

namespace KelpTest {

/// The value of a literal's text, by the rules and nothing else.
double referenceNumber(const std::string& text);

/// The bits of a double, for comparing values to the last one.
uint64_t bitsOf(double value);

/// Like bitsOf, but every not-a-number gives the same.
uint64_t valueBitsOf(double value);

}  // namespace KelpTest
