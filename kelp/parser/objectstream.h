// ObjectStream: the objects of a scene one by one, with only a part of the text in memory.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "kelp/parser/directparser.h"
#include "kelp/parser/treeparser.h"

namespace Kelp {

/// Reads the objects that TreeParser::parseProgram would add to a program, with the same errors at
/// the same places. Where an object does not end in the text that is in memory, what was read of it
/// is taken back, more text is read, and it is read again. So text moves between objects only.
class ObjectStream {
 public:
  /// The text could not be read any further.
  struct Unreadable {
    CharString message;
  };

  /// Over a parser that has not read anything, whose reader has opened a stream. Both outlive it.
  explicit ObjectStream(TreeParser& treeParser);

  /// The next object, null at the end of the scene. It is to be given to drop or keep before the
  /// next call: the text behind it may move then. Throws InvalidSyntaxException and
  /// InvalidSourceFile for errors of the scene, Unreadable and what the input throws, ExceptionMsg
  /// and std::bad_alloc.
  ObjectAST* next();

  /// Releases the object that was read last, and its texts.
  void drop(ObjectAST* object) noexcept;

  /// Adds the object that was read last to a program as ProgramAST::addObject does. Its long texts
  /// are copied, to live as long as the reader. Throws ExceptionMsg and std::bad_alloc; the object
  /// is gone then, or the program's.
  void keep(ObjectAST* object, ProgramAST* program);

 private:
  // A token that was scanned but not used yet.
  struct NotedToken {
    TOKENTYPE type = TOKEN_END;
    int32_t overflowCount = 0;
    std::string text;
  };

  ObjectAST* _nextPlain();
  ObjectAST* _nextByTokens();
  void _mark();
  void _goBack();
  void _readOn();

  TreeParser& parser;
  Scanner& scanner;
  SourcesReader& reader;
  const int64_t mostObjects;

  int64_t objects = 0;
  int scansDue = 1;                    // of the parser's tokens
  bool isPlain = true;                 // what follows may be plain text
  std::optional<DirectParser> direct;  // while it reads

  // The state between two objects, for coming back to it.
  Scanner::Bookmark bookmark;
  NotedToken tokens[2];
  int32_t current = 0;
  int32_t lookahead = -1;
  RandomGenerator seeds;
  size_t texts = 0;    // kept by the reader
  int references = 0;  // recorded
};

}  // namespace Kelp
