#include "kelp/parser/texttokens.h"

#include <string>
#include <utility>

#include "kelp/parser/tokenring.h"

namespace Kelp {

void TextTokens::_moveTo(const SourcePosition& token) {
  source = token.source;
  includedFrom = token.includedFrom;
  at = token.at;
  end = nullptr;
  lineStart = token.lineStart;
  line = token.line;
}

// ---- between tokens ----------------------------------------------------------------------------

const char* TextTokens::_skipLongSpace(const char* from) {
  for (;;) {
    if (*from == '\n') {
      _beginLine(++from);
    } else if (isBlank(*from)) {
      ++from;
    } else if (*from == '/' && from[1] == '/') {
      from = _skipLineComment(from);
    } else if (*from == '/' && from[1] == '*') {
      from = _skipBlockComment(from);
    } else {
      return from;
    }
  }
}

const char* TextTokens::_skipLineComment(const char* slash) {
  const char* stop = slash + 2;
  while (*stop != '\n' && *stop != '\0') ++stop;
  if (*stop == '\0') throw GiveUp{stop};
  return stop;
}

const char* TextTokens::_skipBlockComment(const char* slash) {
  for (const char* stop = slash + 2;; ++stop) {
    if (*stop == '\n') {
      _beginLine(stop + 1);
    } else if (*stop == '*' && stop[1] == '/') {
      return stop + 2;
    } else if (*stop == '\0') {
      throw GiveUp{stop};
    }
  }
}

// ---- tokens ------------------------------------------------------------------------------------

void TextTokens::_measure() {
  switch (_type()) {
    case TOKEN_IDENTIFIER:
      end = skipIdentifier(at);
      tokenText = {at, static_cast<size_t>(end - at)};
      if (tokenText == "nan") throw GiveUp{at};  // a number
      return;
    case TOKEN_NUMBER:
      end = skipNumber(at);
      break;
    case TOKEN_STRING:
      return _measureString();
    case TOKEN_UNKNOWN:
      throw GiveUp{at};
    default:
      end = at + 1;
  }
  tokenText = {at, static_cast<size_t>(end - at)};
}

void TextTokens::_measureString() {
  const char* begin = at + 1;
  const char* stop = findStringStop(begin);
  bool escaped = false;
  for (; *stop != '"'; stop = findStringStop(stop)) {
    if (*stop == '\n') {
      _beginLine(++stop);
    } else if (*stop == '\\') {
      escaped = escaped || isEscape(stop);
      stop += isEscape(stop) ? 2 : 1;
    } else {
      throw GiveUp{stop};
    }
  }
  auto length = static_cast<size_t>(stop - begin);
  if (static_cast<int64_t>(length) > longestString) throw GiveUp{at};
  if (escaped) {
    char* decoded = reader.keepText(length);
    length = static_cast<size_t>(decodeString(begin, stop, decoded) - decoded);
    begin = decoded;
  }
  tokenText = {begin, length};
  record[0] = reinterpret_cast<uintptr_t>(begin);
  record[1] = length;
  record[2] = reinterpret_cast<uintptr_t>(source);
  end = stop + 1;
}

bool TextTokens::_isCall() {
  if (end == nullptr) _measure();
  if (*end == '(') return true;
  // Only looked at: the lines in between are counted when the name is passed.
  const char* const startOfLine = lineStart;
  const int lineBefore = line;
  const bool call = *_skipSpace(end) == '(';
  lineStart = startOfLine;
  line = lineBefore;
  return call;
}

// ---- what the rules ask ------------------------------------------------------------------------

TextTokens::PlacedName TextTokens::_takePropertyName() {
  CharString name = state.spellings.share(_spelling());
  _advance();
  return {std::move(name), source->name, line};
}

size_t TextTokens::_countedLength() {
  const size_t length = _spelling().size();
  if (length > INT32_MAX) throw GiveUp{at};  // a host may allow what no token can hold
  return length;
}

TextTokens::LongText TextTokens::_longText() {
  constexpr size_t kNodeTextLimit = 1023;
  const size_t length = _countedLength();
  return {length > kNodeTextLimit ? static_cast<int32_t>(length - kNodeTextLimit) : 0, record};
}

TextTokens::RawArgument TextTokens::_rawArgument(bool skipped) {
  if (!_at(TOKEN_STRING)) throw GiveUp{at};
  if (skipped) {
    _spelling();
    return {record, 0};
  }
  return {record, static_cast<int32_t>(_countedLength())};
}

void TextTokens::_endProperty() {
  if (*at != ';') throw GiveUp{at};
  _noteEnd();
  _skip(TOKEN_SEMICOLON);
}

void TextTokens::_endObject() {
  _noteEnd();
  _skip(TOKEN_RBRACE);
}

double readNumberPlainly(const char** at) {
  const char* begin = *at;
  *at = skipNumber(begin);
  const std::string_view literal(begin, static_cast<size_t>(*at - begin));
  // parseNum would look behind the letters of a special value, and stops by itself at all others.
  if (literal.find('#') == std::string_view::npos) return TokenRing::parseNum(begin);
  return TokenRing::parseNum(std::string(literal).c_str());
}

}  // namespace Kelp
