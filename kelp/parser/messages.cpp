#include "kelp/parser/messages.h"

namespace Kelp {

namespace {

struct MessageRow {
  const char* before;
  const char* after;  // empty: the message takes no word
};

constexpr MessageRow kMessages[] = {
#define KELP_MESSAGE(identifier, before, after) {before, after},
#include "kelp/parser/messages.def"
#undef KELP_MESSAGE
};

}  // namespace

CharString messageText(Message message, const char* word) {
  const MessageRow& row = kMessages[static_cast<int>(message)];
  if (*row.after == '\0') return CharString(row.before);
  return makeCharString(row.before, word, row.after);
}

}  // namespace Kelp
