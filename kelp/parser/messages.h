// The texts of syntax errors, by name.
#pragma once

#include <string_view>

#include "kelp/utils/charstring.h"

namespace Kelp {

enum class Message {
#define KELP_MESSAGE(identifier, before, after) identifier,
#include "kelp/parser/messages.def"
#undef KELP_MESSAGE
};

/// A message's text with `word` put in where the message has a place for one.
CharString messageText(Message message, const char* word);

/// The word that was put into a text of that message; data() is null when the text is another one.
/// Lives as long as the text.
std::string_view wordIn(std::string_view text, Message message);

}  // namespace Kelp
