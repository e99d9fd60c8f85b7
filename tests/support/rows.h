// Tables of texts and what reading them gives.
#pragma once

#include <initializer_list>
#include <string>

namespace KelpTest {

struct Row {
  std::string input;
  std::string expected;  ///< as parsedExpression or parsedScene gives it
};

/// What a row expects when `spelling` stands where no term can begin.
inline std::string notAToken(const std::string& spelling) {
  return "error: Token \"" + spelling + "\" not recognized as valid token";
}

/// Reads every input as one expression: the outcome is as expected, is the same when read again,
/// and leaves pools and heap as they were.
void expectExpressions(std::initializer_list<Row> rows);

/// The same for whole scenes.
void expectScenes(std::initializer_list<Row> rows);

}  // namespace KelpTest
