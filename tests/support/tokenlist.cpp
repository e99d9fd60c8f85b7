#include "tests/support/tokenlist.h"

#include "kelp/utils/exceptions.h"

namespace KelpTest {

using namespace Kelp;

std::string shown(const Token& token) {
  const std::string text(token.text.data, static_cast<size_t>(token.text.count));
  switch (token.type) {
    case TOKEN_NUMBER:
      return "num:" + text;
    case TOKEN_IDENTIFIER:
      return "id:" + text;
    case TOKEN_STRING:
      return "str:" + text;
    case TOKEN_UNKNOWN:
      return "?:" + text;
    case TOKEN_END:
      return "end" + text;
    default:
      return text == tokenSpelling(token.type) ? text : "wrong spelling " + text;
  }
}

std::string remainingTokens(Scanner& scanner) {
  std::string list;
  Token token;
  try {
    for (scanner.scan(token); token.type != TOKEN_END; scanner.scan(token)) {
      list += (list.empty() ? "" : " ") + shown(token);
    }
  } catch (const InvalidSourceFile& failure) {
    list += (list.empty() ? "error: " : " error: ") + std::string(failure.message.chars());
  }
  return list;
}

std::string tokensOf(std::string_view text) {
  TextScanner source(text);
  return remainingTokens(source.scanner);
}

std::string scanErrorOf(std::string_view text) {
  const std::string list = tokensOf(text);
  const size_t error = list.find("error: ");
  return error == std::string::npos ? "" : list.substr(error + 7);
}

TextScanner::TextScanner(std::string_view text, const char* name) {
  reader.openText(text.data(), static_cast<int64_t>(text.size()), name);
}

std::string TextScanner::next() {
  scanner.scan(token);
  return shown(token);
}

}  // namespace KelpTest
