// The texts of syntax errors, by name.
#pragma once

#include "kelp/utils/charstring.h"

namespace Kelp {

enum class Message {
#define KELP_MESSAGE(identifier, before, after) identifier,
#include "kelp/parser/messages.def"
#undef KELP_MESSAGE
};

/// A message's text with `word` put in where the message has a place for one.
CharString messageText(Message message, const char* word);

}  // namespace Kelp
