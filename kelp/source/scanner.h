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
  std::string sourceLine;  ///< the line, without its end
  int lineColumn = 1;  ///< of the first character in it: of a long line of a stream, only a part
                       ///< is in memory
  const IncludePlace* includedFrom = nullptr;  ///< the reader's, as long as it reads that scene
};

/// Thrown in a stream: what the next token is depends on text that is not in memory yet.
struct TextGoesOn {};

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
  /// asked. Throws InvalidSourceFile for text that no token can be made of (then failed() holds),
  /// std::bad_alloc, and TextGoesOn.
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

  // ---- for who reads a stream ----

  /// Where scanning stands, for coming back to it.
  struct Bookmark {
    SourcesReader::Bookmark reader;
    SourcePosition starts[2];
  };

  /// Notes where scanning stands, which has not failed.
  void mark(Bookmark& bookmark) const;
  /// Goes back there. Requires: no text has moved since.
  void goBack(const Bookmark& bookmark);

  /// Reads on behind the end of the text in memory, and drops what lies before the last two tokens.
  /// Throws as SourcesReader::readOn.
  void readOn();

  /// Reads on until the line of the last token (back 0) or the one before it (back 1) is in memory,
  /// if it is not too long and can be read. What lies before it is dropped.
  void readLineOf(int back);

  /// Forgets the stream's text and all included files.
  void closeStream();

  /// Drops included files that are not needed any more.
  void dropFiles() { reader->dropFiles(starts[0].source, starts[1].source); }

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
