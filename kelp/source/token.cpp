#include "kelp/source/token.h"

namespace Kelp {

const char* tokenSpelling(int32_t type) {
  switch (type) {
#define KELP_TOKEN(code, enumerator, spelling) \
  case code:                                   \
    return spelling;
#include "kelp/source/tokens.def"
#undef KELP_TOKEN
    default:
      return "";
  }
}

}  // namespace Kelp
