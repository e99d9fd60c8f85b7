// Reads number literals out of a source, several digits at a time. The values are those of parseNum
// to the last bit: the same products are added in the same order, they are only found faster.
#pragma once

#include <emmintrin.h>

#include <array>
#include <bit>
#include <cstdint>
#include <cstring>
#include <string_view>

#include "kelp/source/characterclass.h"

namespace Kelp {

/// What parseNum multiplies the first digits behind a point with: 0.1, and each the one before
/// times 0.1, rounded every time.
inline constexpr auto kFractionScales = [] {
  std::array<double, 16> scales{};
  double scale = 0.1;
  for (double& each : scales) {
    each = scale;
    scale = scale * 0.1;
  }
  return scales;
}();

/// The value of the literal at `*at`, and moves `*at` behind it. The literal begins with a digit,
/// or a point and a digit, and lies in a source, whose padding ends every search.
double readNumberPlainly(const char** at);

namespace NumberReader {

/// Which of the 16 characters at `at` are digits; the lowest bit speaks of the first.
inline uint32_t findDigits(const char* at) {
  const __m128i block = _mm_loadu_si128(reinterpret_cast<const __m128i*>(at));
  const __m128i digits = _mm_sub_epi8(block, _mm_set1_epi8('0'));
  const __m128i areDigits = _mm_cmpeq_epi8(_mm_min_epu8(digits, _mm_set1_epi8(9)), digits);
  return static_cast<uint32_t>(_mm_movemask_epi8(areDigits));
}

/// The integer that the first `count` characters spell, 1 to 8 digits. In pairs, then in fours,
/// then in eights (D. Lemire, "Quickly parsing eight digits", 2018).
inline uint32_t integerOf(const char* at, int count) {
  uint64_t digits;
  std::memcpy(&digits, at, sizeof digits);
  digits <<= 8 * (8 - count);  // zeros in front
  digits &= 0x0F0F0F0F0F0F0F0FU;
  digits = (digits * 10) + (digits >> 8);
  digits = (((digits & 0x000000FF000000FFU) * 0x000F424000000064U) +
            (((digits >> 16) & 0x000000FF000000FFU) * 0x0000271000000001U)) >>
           32;
  return static_cast<uint32_t>(digits);
}

/// `value` with the products of the first `count` (1 to 8) digits at `at` and the scales added one
/// by one. Digits that are not there count as zeros, which change no value.
inline double addFraction(double value, const char* at, int count, const double* scales) {
  uint64_t characters;
  std::memcpy(&characters, at, sizeof characters);
  characters &= 0x0F0F0F0F0F0F0F0FU >> (8 * (8 - count));
  const __m128i zero = _mm_setzero_si128();
  const __m128i bytes = _mm_cvtsi64_si128(static_cast<int64_t>(characters));
  const __m128i words = _mm_unpacklo_epi8(bytes, zero);
  const auto addPair = [&value](__m128i twoDigits, const double* twoScales) {
    const __m128d products = _mm_mul_pd(_mm_cvtepi32_pd(twoDigits), _mm_loadu_pd(twoScales));
    value = value + _mm_cvtsd_f64(products);
    value = value + _mm_cvtsd_f64(_mm_unpackhi_pd(products, products));
  };
  const __m128i firstFour = _mm_unpacklo_epi16(words, zero);
  addPair(firstFour, scales);
  addPair(_mm_unpackhi_epi64(firstFour, firstFour), scales + 2);
  if (count <= 4) return value;
  const __m128i lastFour = _mm_unpackhi_epi16(words, zero);
  addPair(lastFour, scales + 4);
  addPair(_mm_unpackhi_epi64(lastFour, lastFour), scales + 6);
  return value;
}

}  // namespace NumberReader

inline double readNumber(const char** at) {
  const char* text = *at;
  const uint32_t digits = NumberReader::findDigits(text);
  const int whole = std::countr_one(digits);
  if (whole > 8) return readNumberPlainly(at);
  double value = whole > 0 ? NumberReader::integerOf(text, whole) : 0.0;
  const char* end = text + whole;
  if (*end == '.') {
    const char* fraction = end + 1;
    int places = std::countr_one(digits >> (whole + 1));
    if (whole + 1 + places == 16) places = std::countr_one(NumberReader::findDigits(fraction));
    if (places == 16) return readNumberPlainly(at);
    end = fraction + places;
    if (*end == '#') return readNumberPlainly(at);
    if (places > 0) {
      const int first = places < 8 ? places : 8;
      value = NumberReader::addFraction(value, fraction, first, kFractionScales.data());
    }
    if (places > 8) {
      value = NumberReader::addFraction(value, fraction + 8, places - 8, &kFractionScales[8]);
    }
  }
  if ((*end | 0x20) == 'e') return readNumberPlainly(at);
  *at = end;
  return value;
}

// ---- what exporters write most -----------------------------------------------------------------

/// A number with nothing between its sign and its digits: [ "-" ] literal. Moves `*at` behind it;
/// false, and `*at` stays, where there is something else.
inline bool readPlainNumber(const char** at, double* value) {
  const uint64_t minus = **at == '-' ? 1 : 0;
  const char* behind = *at + minus;
  if (!isDigit(*behind)) return false;
  // Without a branch: whether the next number is negative cannot be foretold.
  *value = std::bit_cast<double>(std::bit_cast<uint64_t>(readNumber(&behind)) ^ (minus << 63U));
  *at = behind;
  return true;
}

/// Three such numbers: keyword "(" number "," [ " " ] number "," [ " " ] number ")".
inline bool readPlainElement(const char** at, std::string_view keyword, double (&values)[3]) {
  const char* behind = *at + keyword.size();
  if (std::memcmp(*at, keyword.data(), keyword.size()) != 0 || *behind != '(') return false;
  ++behind;
  for (int i = 0; i < 3; ++i) {
    if (!readPlainNumber(&behind, &values[i]) || *behind != (i < 2 ? ',' : ')')) return false;
    ++behind;
    if (i < 2 && *behind == ' ') ++behind;
  }
  *at = behind;
  return true;
}

}  // namespace Kelp
