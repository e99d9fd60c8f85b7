#include "kelp/parser/directparser.h"

#include <cstring>
#include <typeinfo>

#include "kelp/parser/grammar_calls.h"
#include "kelp/parser/grammar_expressions.h"
#include "kelp/parser/grammar_lists.h"
#include "kelp/parser/grammar_program.h"
#include "kelp/parser/grammar_references.h"
#include "kelp/parser/grammar_values.h"

namespace Kelp {

namespace {

// Whether an identifier stands in the text as in its token, which a host may have filled itself.
bool isSpelledAt(const Token& token, const char* at) {
  const auto length = skipIdentifier(at) - at;
  return token.text.count >= length &&
         std::memcmp(token.text.data, at, static_cast<size_t>(length)) == 0;
}

}  // namespace

template class Grammar<TextTokens>;

DirectParser::DirectParser(TokenRing& tokenRing)
    : Grammar(*tokenRing.scanner->reader, tokenRing), ring(tokenRing) {
  _moveTo(ring.scanner->startOf(1));
}

bool DirectParser::isPossible(TokenRing& tokenRing) {
  const Scanner& scanner = *tokenRing.scanner;
  if (!tokenRing.readsPlainText || typeid(scanner) != typeid(Scanner)) return false;
  if (tokenRing.lookahead < 0 || !tokenRing._at(TOKEN_IDENTIFIER)) return false;
  const SourcePosition& currentToken = scanner.startOf(1);
  const SourcePosition& ahead = scanner.startOf(0);
  if (currentToken.source == nullptr || currentToken.source != ahead.source) return false;
  if (!isSpelledAt(tokenRing._currentToken(), currentToken.at)) return false;
  // An #include between the two has been followed and must not be met again.
  const char* behind = currentToken.at;
  const auto between = static_cast<size_t>(ahead.at - behind);
  return ahead.at > behind && std::memchr(behind, '#', between) == nullptr;
}

ObjectAST* DirectParser::nextObject() {
  return _next<ObjectAST>([this] { return parseObject(); });
}

ObjectAST* DirectParser::nextFollowedObject() {
  return _next<ObjectAST>([this] {
    ReferenceRollback references(_state().referenceNames);
    auto_ast<ObjectAST> object(parseObject());
    if (!_isObjectAhead()) _fail(Message::kExpectedIdentifier);
    references.keep();
    return object.release();
  });
}

// Only looks, unless it says no.
bool DirectParser::_isObjectAhead() {
  if (!_at(TOKEN_IDENTIFIER)) return false;
  const SourcePosition start = _position();
  _advance();
  if (!_at(TOKEN_IDENTIFIER) && !_at(TOKEN_LBRACE)) return false;
  _moveTo(start);
  return true;
}

PropertyAST* DirectParser::nextProperty() {
  return _next<PropertyAST>([this] { return parseProperty(); });
}

template <class Node, class Read>
Node* DirectParser::_next(Read read) {
  if (!goesOn || !_at(TOKEN_IDENTIFIER)) return nullptr;
  const RandomGenerator seeds = BuiltinFunctionAST::rndGen;
  try {
    Node* node = read();
    lastRead = lastEnd;
    return node;
  } catch (const GiveUp& reason) {
    BuiltinFunctionAST::rndGen = seeds;
    stoppedAt = reason.at;
    goesOn = false;
    return nullptr;
  }
}

void DirectParser::handBack() {
  for (int scans = handBackUnscanned(); scans > 0; --scans) ring.scanAheadToken(false);
}

// The ring comes to the last token that was read and then passes it: a failure to read the one
// behind it must find the ring where it would have stood. Which of the two slots is the current one
// may differ, not what the current one and the other hold.
int DirectParser::handBackUnscanned() {
  if (lastRead.source == nullptr) return 0;
  ring.scanner->resumeAt(lastRead);
  ring.lookahead = -1;
  return 2;
}

}  // namespace Kelp
