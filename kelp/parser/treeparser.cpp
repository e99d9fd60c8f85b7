// The frame that every rule stands on: the token ring, accepting and expecting, errors.
#include "kelp/parser/treeparser.h"

namespace Kelp {

void TreeParser::scanAheadToken(bool skipScanAhead) {
  if (lookahead >= 0) {
    current = lookahead;
    lookahead = -1;
  } else {
    tokens[current].reset();
    scanner->scan(tokens[current]);
  }
  if (_at(TOKEN_END)) return;
  lookahead = (current + 1) % 2;
  Token& ahead = tokens[lookahead];
  ahead.reset();
  if (skipScanAhead) {
    scanner->skipScan(ahead);
  } else {
    scanner->scan(ahead);
  }
}

int TreeParser::_accept(TOKENTYPE type) {
  if (!_at(type)) {
    _currentToken().getSpelling();  // refused tokens are left terminated for messages
    return 0;
  }
  scanAheadToken(false);
  return 1;
}

void TreeParser::_expect(TOKENTYPE type, Message message, const char* word) {
  if (_accept(type) == 0) _fail(message, word);
}

void TreeParser::_fail(Message message, const char* word) {
  throw InvalidSyntaxException(messageText(message, word));
}

void TreeParser::setError(const CharString& text) {
  errorInfo.setErrorText(text);
  errorInfo.setErrorLine(scanner->reader->getCurrentLine());
  errorInfo.setErrorFile(scanner->reader->getCurrentFile());
}

}  // namespace Kelp
