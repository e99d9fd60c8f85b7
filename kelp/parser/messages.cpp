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

std::string_view wordIn(std::string_view text, Message message) {
  const MessageRow& row = kMessages[static_cast<int>(message)];
  const std::string_view before = row.before;
  const std::string_view after = row.after;
  const bool fits = text.size() >= before.size() + after.size() && text.starts_with(before) &&
                    text.ends_with(after);
  if (!fits) return {};
  return text.substr(before.size(), text.size() - before.size() - after.size());
}

}  // namespace Kelp
