// Where the tokens of the scene text end. All functions read a little past what they return, which
// the padding behind every source allows, and stop at its NUL.
#pragma once

#include <emmintrin.h>

#include <array>
#include <bit>
#include <cstdint>
#include <string_view>

#include "kelp/source/characterclass.h"
#include "kelp/source/token.h"

namespace Kelp {

/// The token type of every character that is a token by itself, else TOKEN_UNKNOWN.
inline constexpr auto kPunctuation = [] {
  std::array<TOKENTYPE, 256> types{};
  types.fill(TOKEN_UNKNOWN);
  const auto set = [&types](std::string_view spelling, TOKENTYPE type) {
    if (spelling.size() == 1) types[static_cast<uint8_t>(spelling[0])] = type;
  };
#define KELP_TOKEN(code, enumerator, spelling) set(spelling, enumerator);
#include "kelp/source/tokens.def"
#undef KELP_TOKEN
  return types;
}();

inline bool isBlank(char c) { return classOf(c) == CharacterClass::kBlank; }

/// The first quote, backslash, line end or NUL from `at` on.
inline const char* findStringStop(const char* at) {
  const __m128i quote = _mm_set1_epi8('"');
  const __m128i backslash = _mm_set1_epi8('\\');
  const __m128i newline = _mm_set1_epi8('\n');
  const __m128i nul = _mm_setzero_si128();
  for (;; at += sizeof(__m128i)) {
    const __m128i block = _mm_loadu_si128(reinterpret_cast<const __m128i*>(at));
    const __m128i stops =
        _mm_or_si128(_mm_or_si128(_mm_cmpeq_epi8(block, quote), _mm_cmpeq_epi8(block, backslash)),
                     _mm_or_si128(_mm_cmpeq_epi8(block, newline), _mm_cmpeq_epi8(block, nul)));
    const auto mask = static_cast<uint32_t>(_mm_movemask_epi8(stops));
    if (mask != 0) return at + std::countr_zero(mask);
  }
}

/// Whether the backslash at `at` makes the character behind it stand for itself.
inline bool isEscape(const char* at) { return *at == '\\' && (at[1] == '"' || at[1] == '\\'); }

/// Writes the text of a string literal to `out` with its escapes decoded; gives the end of it.
inline char* decodeString(const char* begin, const char* end, char* out) {
  while (begin < end) {
    if (isEscape(begin)) ++begin;
    *out++ = *begin++;
  }
  return out;
}

/// Behind the identifier that begins at `at`.
inline const char* skipIdentifier(const char* at) {
  do ++at;
  while (isInIdentifier(*at));
  return at;
}

inline const char* skipDigits(const char* at) {
  while (isDigit(*at)) ++at;
  return at;
}

/// Behind an exponent that starts at `at`, or `at` itself when there is none.
inline const char* skipExponent(const char* at) {
  if (*at != 'e' && *at != 'E') return at;
  const char* digits = at + 1;
  if (*digits == '+') ++digits;
  if (*digits == '-') ++digits;
  return isDigit(*digits) ? skipDigits(digits) : at;
}

/// Behind the letters of 1.#INF and its like, or `at` itself when there are none.
inline const char* skipSpecialValue(const char* at) {
  if (*at != '#' || !isLetter(at[1])) return at;
  ++at;
  while (isLetter(*at)) ++at;
  return at;
}

/// Behind the number literal that begins at `at`.
inline const char* skipNumber(const char* at) {
  const char* end = skipDigits(at);
  const bool point = *end == '.';
  if (point) end = skipDigits(end + 1);
  const char* behindExponent = skipExponent(end);
  return point && behindExponent == end ? skipSpecialValue(end) : behindExponent;
}

}  // namespace Kelp
