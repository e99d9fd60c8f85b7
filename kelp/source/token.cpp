#include "kelp/source/token.h"

namespace Kelp {

namespace {

struct Spelling {
  int32_t type;
  const char* text;
};

constexpr Spelling kSpellings[] = {
#define KELP_TOKEN(code, enumerator, spelling) {code, spelling},
#include "kelp/source/tokens.def"
#undef KELP_TOKEN
};

}  // namespace

const char* tokenSpelling(int32_t type) {
  for (const Spelling& spelling : kSpellings) {
    if (spelling.type == type) return spelling.text;
  }
  return "";
}

}  // namespace Kelp
