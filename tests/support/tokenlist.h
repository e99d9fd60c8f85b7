// The tokens of a text as one line, for comparing.
#pragma once

#include <string>
#include <string_view>

#include "kelp/source/scanner.h"

namespace KelpTest {

/// One token: "num:5." "id:a" "str:text" "?:@" "end", and every punctuation as it is spelled.
std::string shown(const Kelp::Token& token);

/// What is left to scan, separated by blanks and without the end token; when the scanner fails the
/// list ends with "error: MESSAGE".
std::string remainingTokens(Kelp::Scanner& scanner);

/// The tokens of a text in memory.
std::string tokensOf(std::string_view text);

/// The message that scanning a text in memory ends with, "" when it does not fail.
std::string scanErrorOf(std::string_view text);

/// A reader over a text in memory and a scanner over it.
struct TextScanner {
  explicit TextScanner(std::string_view text, const char* name = nullptr);

  /// The next token, as shown() gives it.
  std::string next();

  Kelp::SourcesReader reader;
  Kelp::Scanner scanner{&reader};
  Kelp::Token token;
};

}  // namespace KelpTest
