// A parser over a text, and what tests ask of it most.
#pragma once

#include <string>
#include <string_view>

#include "kelp/parser/treeparser.h"

namespace KelpTest {

/// Reader, scanner and parser over one text, ready for the first scanAheadToken.
class TextParser {
 public:
  explicit TextParser(std::string_view text, const char* name = "scenes/test.scene");

  /// For driving single rules: reads the first token and its look-ahead.
  Kelp::TreeParser& started();

  Kelp::SourcesReader reader;
  Kelp::Scanner scanner{&reader};
  Kelp::TreeParser parser{&scanner};
};

/// The tree of a whole scene as an S-expression, or "error: TEXT" with the recorded text.
std::string parsedScene(std::string_view text);

/// The tree of one expression that is followed by the end of input, or "error: TEXT" of what was
/// thrown, or "rest: SPELLING" when something is left behind the expression.
std::string parsedExpression(std::string_view text);

/// Live counts of all static pools together.
int livePoolElements();

}  // namespace KelpTest
