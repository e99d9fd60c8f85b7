// TextTokens: the tokens of one source, taken straight from its characters.
#pragma once

#include <cstdint>
#include <cstring>
#include <string_view>

#include "kelp/parser/messages.h"
#include "kelp/parser/numberreader.h"
#include "kelp/parser/parserstate.h"
#include "kelp/source/lexemes.h"
#include "kelp/source/scanner.h"

namespace Kelp {

class ObjectAST;

/// What the rules ask for, without tokens in between: the type of a token is seen from its first
/// character when somebody asks for it, its end when it is passed, and nothing is copied.
///
/// Only text that needs no thought is read so. At an error, an #include, the end of the source and
/// the literal `nan` it gives up; whoever reads with it then reads the same again from a Scanner,
/// which knows them all and what to report.
class TextTokens {
 public:
  /// Thrown where the text is not plain.
  struct GiveUp {
    const char* at;  ///< a character that is not, or the beginning of something that is not
  };

  TextTokens(SourcesReader& sources, ParserState& parserState)
      : reader(sources), state(parserState), longestString(sources.limits.maxStringLength) {}
  TextTokens(const TextTokens&) = delete;
  TextTokens& operator=(const TextTokens&) = delete;

  /// Stands at a token.
  void _moveTo(const SourcePosition& token);

  bool _at(TOKENTYPE type) const;
  void _expect(TOKENTYPE type, Message /*message*/, const char* /*word*/ = nullptr);
  [[noreturn, gnu::cold]] void _fail(Message /*message*/, const char* /*word*/ = nullptr) const {
    throw GiveUp{at};
  }

 protected:
  /// Where the current token begins, for _moveTo.
  SourcePosition _position() const { return {source, at, lineStart, line, includedFrom}; }
  /// The source that the tokens come from.
  const Source& _source() const { return *source; }

  struct PlacedName {
    CharString name;
    CharString file;
    int line;
  };
  struct LongText {
    int32_t overflowCount;
    const uint64_t* record;
  };
  struct RawArgument {
    const uint64_t* record;
    int32_t copied;
  };

  ParserState& _state() { return state; }
  double _readerParam1() const { return reader.readerParam1; }
  double _readerParam2() const { return reader.readerParam2; }

  TOKENTYPE _type() const;
  void _advance();
  void _skip(TOKENTYPE) { _goOnFrom(at + 1); }
  void _advanceToRaw() { _advance(); }

  std::string_view _spelling();
  bool _isSpelled(std::string_view word);
  bool _isCall();

  double _takeNumber();

  // What exporters write most, without a look at each token. What has another form is left where it
  // begins, for the rules.

  /// A number with or without a minus, if it is plain.
  bool _takePlainNumber(double* value);
  /// Plain numbers up to the end of a list, each with the comma behind it: calls use(value).
  template <class Use>
  void _takePlainNumbers(Use use);
  /// As _takePlainNumbers, for elements of a keyword and three numbers: calls use(values).
  template <class Use>
  void _takePlainElements(std::string_view keyword, Use use);

  PlacedName _takePropertyName();
  LongText _longText();
  RawArgument _rawArgument(bool skipped);
  const CharString& _directory() const { return source->directory; }

  static bool _addPlainProperties(ObjectAST* /*object*/) { return false; }
  void _endProperty();
  void _endObject();

  /// The token that ended the last property or object.
  SourcePosition lastEnd;

 private:
  void _goOnFrom(const char* behindToken) { _goTo(_skipSpace(behindToken)); }
  void _goTo(const char* token) {
    end = nullptr;
    at = token;
  }
  const char* _behindElement(const char* element);
  const char* _skipSpace(const char* from);
  const char* _skipLongSpace(const char* from);
  const char* _skipLineComment(const char* slash);
  const char* _skipBlockComment(const char* slash);
  void _measure();
  void _measureString();
  size_t _countedLength();
  void _noteEnd() { lastEnd = _position(); }
  void _beginLine(const char* start) {
    lineStart = start;
    if (line < INT32_MAX) ++line;
  }

  SourcesReader& reader;
  ParserState& state;
  const int64_t longestString;

  const Source* source = nullptr;
  const IncludePlace* includedFrom = nullptr;
  const char* at = nullptr;    // first character of the current token
  const char* end = nullptr;   // behind it, once somebody asked
  std::string_view tokenText;  // once `end` is known
  uint64_t record[3] = {};     // once the end of a string is known
  const char* lineStart = nullptr;
  int line = 1;
};

// ---- inline, being where the time of reading goes
// ------------------------------------------------

inline TOKENTYPE TextTokens::_type() const {
  switch (classOf(*at)) {
    case CharacterClass::kIdentifier:
      return TOKEN_IDENTIFIER;
    case CharacterClass::kDigit:
      return TOKEN_NUMBER;
    case CharacterClass::kDot:
      return isDigit(at[1]) ? TOKEN_NUMBER : TOKEN_DOT;
    case CharacterClass::kQuote:
      return TOKEN_STRING;
    default:
      return kPunctuation[static_cast<uint8_t>(*at)];
  }
}

inline bool TextTokens::_at(TOKENTYPE type) const {
  switch (type) {
    case TOKEN_NUMBER:
      return isDigit(*at) || (*at == '.' && isDigit(at[1]));
    case TOKEN_DOT:
      return *at == '.' && !isDigit(at[1]);
    case TOKEN_IDENTIFIER:
      return classOf(*at) == CharacterClass::kIdentifier;
    case TOKEN_STRING:
      return *at == '"';
    default:
      return kPunctuation[static_cast<uint8_t>(*at)] == type;
  }
}

inline void TextTokens::_expect(TOKENTYPE type, Message message, const char* word) {
  if (!_at(type)) _fail(message, word);
  if (type == TOKEN_IDENTIFIER) {
    _advance();
  } else {
    _skip(type);
  }
}

inline const char* TextTokens::_skipSpace(const char* from) {
  const auto isPlain = [](char c) { return static_cast<uint8_t>(c) > ' ' && c != '/'; };
  if (isPlain(*from)) return from;
  if (*from == ' ' && isPlain(from[1])) return from + 1;
  return _skipLongSpace(from);
}

inline void TextTokens::_advance() {
  if (end == nullptr) _measure();
  _goOnFrom(end);
}

inline std::string_view TextTokens::_spelling() {
  if (end == nullptr) _measure();
  return tokenText;
}

inline bool TextTokens::_isSpelled(std::string_view word) {
  if (std::memcmp(at, word.data(), word.size()) != 0 || isInIdentifier(at[word.size()])) {
    return false;
  }
  end = at + word.size();
  return true;
}

inline double TextTokens::_takeNumber() {
  const char* behind = at;
  const double value = readNumber(&behind);
  _goOnFrom(behind);
  return value;
}

inline bool TextTokens::_takePlainNumber(double* value) {
  const char* behind = at;
  if (!readPlainNumber(&behind, value)) return false;
  _goOnFrom(behind);
  return true;
}

// Where the next element of a list, or its end, may stand; null when neither a comma nor the end
// follows at once.
inline const char* TextTokens::_behindElement(const char* element) {
  if (*element == ',') return _skipSpace(element + 1);
  return *element == ')' ? element : nullptr;
}

template <class Use>
inline void TextTokens::_takePlainNumbers(Use use) {
  const char* element = at;
  for (double value = 0;;) {
    const char* next = element;
    if (!readPlainNumber(&next, &value) || (next = _behindElement(next)) == nullptr) break;
    use(value);
    element = next;
  }
  _goTo(element);
}

template <class Use>
inline void TextTokens::_takePlainElements(std::string_view keyword, Use use) {
  const char* element = at;
  for (double values[3];;) {
    const char* next = element;
    if (!readPlainElement(&next, keyword, values) || (next = _behindElement(next)) == nullptr) {
      break;
    }
    use(values);
    element = next;
  }
  _goTo(element);
}

}  // namespace Kelp
