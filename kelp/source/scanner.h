// Scanner: cuts the text that a SourcesReader holds into tokens.
#pragma once

#include <string>

#include "kelp/source/sourcesreader.h"
#include "kelp/source/token.h"

namespace Kelp {

/// A place to show to a person.
struct SourceLocation {
  CharString file;         ///< null for a text without a name
  int line = 0;            ///< from 1; 0: no place is known
  int column = 0;          ///< from 1, in characters of UTF-8
  std::string sourceLine;  ///< the whole line, without its end
};

/// Reads tokens one after the other. Comments and white space separate tokens; #include lines are
/// followed here, so that the tokens of the included file stand in their place.
class Scanner {
 public:
  explicit Scanner(SourcesReader* source) : reader(source) {}
  Scanner(const Scanner&) = delete;
  Scanner& operator=(const Scanner&) = delete;
  virtual ~Scanner() = default;

  SourcesReader* reader;  ///< borrowed; the parser reaches the reader through its scanner only

  /// Reads the next token into the slot; at the end of all input TOKEN_END, as often as it is
  /// asked. Throws InvalidSourceFile for text that no token can be made of (then failed() holds)
  /// and std::bad_alloc.
  virtual void scan(Token& token);

  /// As scan, but the text of a string is not copied: `text` stays empty, the record in `overflow`
  /// says where it lies.
  virtual void skipScan(Token& token);

  /// Where the last token (back 0) or the one before it (back 1) began; after a failure back 0 is
  /// where the string, comment or #include began that failed.
  SourceLocation locate(int back) const;

  /// The same as a position; its source is null when there was no such token.
  const SourcePosition& startOf(int back) const { return starts[back]; }

  /// Goes on with the token at that position; what is before it somebody else has read.
  void resumeAt(const SourcePosition& token);

  /// True when the last scan threw InvalidSourceFile.
  bool failed() const { return failure; }

 private:
  void _scanToken(Token& token, bool copyStrings);
  void _skipToToken();
  void _skipLineComment();
  void _skipBlockComment();
  bool _skipInclude();
  void _scanIdentifier(Token& token);
  void _scanNumber(Token& token);
  void _scanString(Token& token, bool copyText);
  void _scanPunctuation(Token& token);
  const char* _decodeString(const char* begin, const char* end, size_t* length);
  void _take(Token& token, TOKENTYPE type, const char* end);
  void _noteFailure(SourcePosition place);
  [[noreturn]] void _fail(const SourcePosition& place, const std::string& message);

  SourcePosition starts[2];  // of the last token and the one before it
  bool failure = false;
};

}  // namespace Kelp
