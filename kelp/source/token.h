// Token: one scanned token of a scene text.
#pragma once

#include <cstdint>

#include "kelp/utils/table.h"

namespace Kelp {

enum TOKENTYPE : int32_t {
#define KELP_TOKEN(code, enumerator, spelling) enumerator = code,
#include "kelp/source/tokens.def"
#undef KELP_TOKEN
};

/// The spelling of a token type as tokens.def lists it, "" for a code that no token has.
const char* tokenSpelling(int32_t type);

/// A slot that tokens are scanned into again and again; its text array is kept for reuse.
struct Token {
  /// The text, NUL-terminated. Every call appends one NUL to `text`, so the count is the length
  /// only before the first call. Valid until the next append to this token or scan into it.
  const char* getSpelling() {
    text += '\0';
    return text.data;
  }

  /// Empties the slot: end of input, no text, no record.
  void reset() {
    type = TOKEN_END;
    overflowCount = 0;
    text.count = 0;
    overflow[0] = overflow[1] = overflow[2] = 0;
  }

  TOKENTYPE type = TOKEN_END;
  /// For a string of more than 1023 characters: how many more, else 0.
  int32_t overflowCount = 0;
  /// The spelling; for a string what stands between the quotes, escapes decoded. Not terminated.
  Table<char> text;
  /// For a string: address of the first character, number of characters, owning source. The
  /// characters belong to the SourcesReader and are good as long as that lives.
  uint64_t overflow[3] = {0, 0, 0};
};

}  // namespace Kelp
