// The canonical layout of scene text.
#pragma once

#include <string>
#include <string_view>

#include "kelp/writers/linefiller.h"

namespace Kelp {

/// Lays scene text out anew and changes nothing but white space, so that the tree stays equal: all
/// tokens keep their spelling, all comments and #include lines their text (blanks behind a line
/// comment are dropped). Formatting what was formatted changes nothing.
///
/// - One property a line, indented by two blanks; long values go on in lines indented further and
///   break at commas, operators and opening brackets; ends of lines are LF.
/// - Of empty lines between properties, objects, comments and includes one is kept; none behind an
///   opening or before a closing brace.
/// - A comment that begins a line goes on to do so, any other one stays behind what it follows.
///
/// Works on the tokens of this text alone: includes are not followed, and nobody asks whether the
/// grammar is kept. Read the text as a Scene first; of one with errors all tokens are kept, but the
/// layout makes little sense. Throws InvalidSourceFile, with the Scanner's words, when no tokens
/// can be made of it, and what the sink throws; what the sink got until then is of no use.
void formatText(std::string_view text, const TextSink& sink);
std::string formatText(std::string_view text);

}  // namespace Kelp
