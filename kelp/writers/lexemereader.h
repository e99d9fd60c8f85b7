// LexemeReader: the tokens of one scene text with all that stands between them.
#pragma once

#include <string>
#include <string_view>

namespace Kelp {

/// A token as it is spelled, a comment, or an #include up to its closing quote.
struct Lexeme {
  enum Kind {
    kEnd,
    kWord,
    kNumber,
    kString,
    kPunctuation,
    kLineComment,  ///< without blanks at its end
    kBlockComment,
    kInclude,
  };

  Kind kind = kEnd;
  std::string_view text;
  int newlinesBefore = 0;  ///< since the lexeme before it

  bool isComment() const { return kind == kLineComment || kind == kBlockComment; }
  /// The character that is a token by itself, NUL for all else.
  char mark() const { return kind == kPunctuation ? text[0] : '\0'; }
};

/// Cuts a text at the same places as the Scanner, without following includes. The text stays the
/// caller's and outlives the lexemes.
class LexemeReader {
 public:
  explicit LexemeReader(std::string_view wholeText) : text(wholeText) {}

  /// Reads the next one, at the end kEnd. Throws InvalidSourceFile in the Scanner's words.
  void next(Lexeme& lexeme);

 private:
  char at(size_t index) const { return index < text.size() ? text[index] : '\0'; }
  int skipBlanks();
  bool isInclude() const;
  void take(Lexeme& lexeme, Lexeme::Kind kind, size_t end);
  void takeInclude(Lexeme& lexeme);
  void takeLineComment(Lexeme& lexeme);
  void takeBlockComment(Lexeme& lexeme);
  void takeString(Lexeme& lexeme);
  size_t numberEnd() const;
  void checkBehindInclude(const Lexeme& lexeme);
  [[noreturn]] void fail(const std::string& before, const std::string& behind = "") const;

  std::string_view text;
  size_t position = 0;
  size_t lineStart = 0;
  size_t includeAt = 0;        // the last #include, while its line goes on
  bool onIncludeLine = false;  // only comments may follow
};

}  // namespace Kelp
