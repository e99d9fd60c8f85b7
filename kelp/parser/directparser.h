// DirectParser: reads plain stretches of a scene without making tokens, for a parser that does.
#pragma once

#include "kelp/parser/grammar.h"
#include "kelp/parser/texttokens.h"
#include "kelp/parser/tokenring.h"

namespace Kelp {

/// Takes over from a token ring at the start of an object or a property, reads as many of them as
/// are plain, and hands back: the ring then stands as if it had read them itself. What is not plain
/// leaves no trace and is the ring's to read.
class DirectParser : public Grammar<TextTokens> {
 public:
  /// For a ring that can take part; see isPossible.
  explicit DirectParser(TokenRing& tokenRing);

  /// Whether the ring's tokens come straight from the characters of one source.
  static bool isPossible(TokenRing& tokenRing);

  /// The next object, the caller's; null when it is not plain, and nothing can be read any more.
  ObjectAST* nextObject();

  /// The next property, the caller's; null when it is not plain or there is none, and nothing can
  /// be read any more.
  PropertyAST* nextProperty();

  /// As nextObject, but only an object that another one follows: what the ring would find behind it
  /// can then be read.
  ObjectAST* nextFollowedObject();

  /// Lets the ring go on behind what was read. Throws what Scanner::scan throws.
  void handBack();

  /// As handBack, but for the calls of the ring's scanAheadToken(false) in which it passes the last
  /// token that was read; so many are still to be made. 0: nothing was read, and the ring stands as
  /// before.
  int handBackUnscanned();

  /// Whether nothing more can be read because the text is not in memory any further.
  bool textGoesOn() const { return stoppedAt == _source().end && _source().goesOn; }

 private:
  bool _isObjectAhead();
  template <class Node, class Read>
  Node* _next(Read read);

  TokenRing& ring;
  SourcePosition lastRead;          // what ended the last object or property that was read
  const char* stoppedAt = nullptr;  // where it was given up
  bool goesOn = true;
};

extern template class Grammar<TextTokens>;

}  // namespace Kelp
