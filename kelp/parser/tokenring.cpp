#include "kelp/parser/tokenring.h"

#include "kelp/parser/directparser.h"
#include "kelp/utils/exceptions.h"

namespace Kelp {

void TokenRing::scanAheadToken(bool skipScanAhead) {
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

int TokenRing::_accept(TOKENTYPE type) {
  if (!_at(type)) {
    _currentToken().getSpelling();  // refused tokens are left terminated for messages
    return 0;
  }
  scanAheadToken(false);
  return 1;
}

void TokenRing::_expect(TOKENTYPE type, Message message, const char* word) {
  if (_accept(type) == 0) _fail(message, word);
}

void TokenRing::_fail(Message message, const char* word) {
  throw InvalidSyntaxException(messageText(message, word));
}

double TokenRing::_takeNumber() {
  const double value = parseNum(_currentToken().getSpelling());
  scanAheadToken(false);
  return value;
}

bool TokenRing::_addPlainProperties(ObjectAST* object) {
  if (!DirectParser::isPossible(*this)) return false;
  DirectParser direct(*this);
  bool any = false;
  while (PropertyAST* property = direct.nextProperty()) {
    object->addProperty(property, _readerParam1(), _readerParam2());
    any = true;
  }
  direct.handBack();
  return any;
}

TokenRing::PlacedName TokenRing::_takePropertyName() {
  const SourcesReader& reader = *scanner->reader;
  PlacedName name{spellings.share(_spelling()), reader.getCurrentFile(), reader.getCurrentLine()};
  scanAheadToken(false);
  return name;
}

}  // namespace Kelp
