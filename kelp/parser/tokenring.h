// TokenRing: the frame that the rules stand on when they read token by token.
#pragma once

#include <cstdint>
#include <string_view>

#include "kelp/parser/messages.h"
#include "kelp/parser/parserstate.h"
#include "kelp/source/scanner.h"

namespace Kelp {

class ObjectAST;

/// The current token and the one behind it. Anything that is a Scanner can deliver them.
// (declared in the order in which a host that maps a parser expects its fields)
struct TokenSlots {
  Scanner* scanner;        ///< the caller's; outlives the use of the parser
  Token tokens[2];         ///< a ring of the current token and the one behind it
  int32_t current = 0;     ///< slot of the current token
  int32_t lookahead = -1;  ///< slot of the token behind it; -1: no look-ahead is buffered
};

/// Tokens from a scanner, one read ahead.
class TokenRing : public TokenSlots, public ParserState {
 public:
  explicit TokenRing(Scanner* tokenSource) : TokenSlots{tokenSource, {}} {}
  TokenRing(const TokenRing&) = delete;
  TokenRing& operator=(const TokenRing&) = delete;

  /// Moves to the next token and reads the one behind it, unless the input has ended. With
  /// `skipScanAhead` the text of a string behind it is not copied.
  void scanAheadToken(bool skipScanAhead);

  /// 1 when the current token is of that type, and moves past it; else 0.
  int _accept(TOKENTYPE type);

  /// Moves past a token of that type or fails with the message.
  void _expect(TOKENTYPE type, Message message, const char* word = nullptr);

  [[noreturn]] void _fail(Message message, const char* word = nullptr);

  Token& _currentToken() { return tokens[current]; }
  bool _at(TOKENTYPE type) const { return tokens[current].type == type; }

  /// The value of a number literal's text. Never fails: reading stops at the first character that
  /// does not fit, and a text that is no number gives 0. Not correctly rounded: digits are summed
  /// up in double, so that values agree with the rest of the library to the last bit.
  static double parseNum(const char* text);

 protected:
  // ---- what the rules ask of every source of tokens ---------------------------------------------

  /// A name, and where the reader stood behind the token that follows it.
  struct PlacedName {
    CharString name;
    CharString file;
    int line;
  };

  /// How much of a string is too long for a node, and the record of where its text lies.
  struct LongText {
    int32_t overflowCount;   // 0: the text is short
    const uint64_t* record;  // three words
  };

  /// The record of an argument that is kept undecoded, and how much of it was copied.
  struct RawArgument {
    const uint64_t* record;  // three words
    int32_t copied;
  };

  ParserState& _state() { return *this; }
  double _readerParam1() const { return scanner->reader->readerParam1; }
  double _readerParam2() const { return scanner->reader->readerParam2; }

  TOKENTYPE _type() const { return tokens[current].type; }
  void _advance() { scanAheadToken(false); }
  /// As _advance, for a token that is known to be of that type.
  void _skip(TOKENTYPE) { scanAheadToken(false); }
  /// As _advance; a string behind the next token will be taken as a raw argument.
  void _advanceToRaw() { scanAheadToken(true); }

  /// NUL-terminated; good until the next token but one.
  std::string_view _spelling() { return _currentToken().getSpelling(); }
  bool _isSpelled(std::string_view word) { return _spelling() == word; }
  bool _isCall() const { return lookahead >= 0 && tokens[lookahead].type == TOKEN_LPAREN; }

  /// The value of the current number; moves past it.
  double _takeNumber();

  // Tokens have no plain forms; all of them go by the rules.
  static bool _takePlainNumber(double* /*value*/) { return false; }
  template <class Use>
  static void _takePlainNumbers(Use /*use*/) {}
  template <class Use>
  static void _takePlainElements(std::string_view /*keyword*/, Use /*use*/) {}

  /// The current token, whatever it is, as a property's name; moves past it.
  PlacedName _takePropertyName();
  LongText _longText() const { return {tokens[current].overflowCount, tokens[current].overflow}; }
  RawArgument _rawArgument(bool /*skipped*/) const {
    return {tokens[current].overflow, tokens[current].text.count};
  }
  CharString _directory() const { return scanner->reader->getCurrentFileDir(); }

  /// Adds the next properties to the object as long as they are plain text; false: the next is not.
  bool _addPlainProperties(ObjectAST* object);
  void _endProperty() {
    if (!_at(TOKEN_SEMICOLON)) _fail(Message::kPropertyEnd);
    _skip(TOKEN_SEMICOLON);
  }
  void _endObject() { scanAheadToken(false); }
};

}  // namespace Kelp
