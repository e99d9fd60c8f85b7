// ParserState: what a parser is told before a parse, and what it collects in one.
#pragma once

#include <cstdint>
#include <functional>

#include "kelp/ast/mathvalues.h"
#include "kelp/parser/errorinfo.h"
#include "kelp/parser/sharedspellings.h"
#include "kelp/utils/pool.h"
#include "kelp/utils/table.h"

namespace Kelp {

/// The part of a parser that does not depend on how it gets its tokens.
struct ParserState {
  // (declared in the order in which a host that maps a parser expects its fields)

  int32_t collectReferenceNames = 0;  ///< non-zero: `referenceNames` is filled
  CharString nameAffix;               ///< joined to object names and references; null or "": none
  bool affixIsSuffix = false;         ///< false: before the name, true: behind it

  /// What a typed list is collected in until its length is known; blocks are reused.
  struct ListScratch {
    _Sequence<Vector> vectors;
    _Sequence<Color> colors;
    _Sequence<int> ints;
    _Sequence<float> floats;
    _Sequence<CharString> strings;
  };
  ListScratch scratch;

  /// The names held by the references of parsed programs, in text order. They point into the
  /// nodes and are good as long as those live; a failed parse takes its own back.
  Table<CharString*, 100> referenceNames;

  ErrorInfo errorInfo;

  /// How many brackets deep expressions may nest; 0: no count, only the thread's stack counts.
  int32_t maxNestingDepth = 10000;

  /// How many objects a text may hold, those that are merged into others included; 0: no limit.
  int64_t maxObjects = 0;

  /// Plain text is read straight from its characters where the scanner is no class of the host's
  /// own. False: token by token, which is slower and gives the same.
  bool readsPlainText = true;

  /// Called between objects, at least once for every kObjectsAtATime of them, with the bytes of
  /// text read so far. What it throws ends the parse and passes through.
  std::function<void(int64_t bytes)> onProgress;
  static constexpr int64_t kObjectsAtATime = 1000;

  /// Expressions being parsed, the outermost one not counted.
  int32_t nestingDepth = 0;

  /// Names that the text has given lately; nodes of the same name share their characters.
  SharedSpellings spellings;
};

}  // namespace Kelp
