// LineFiller: lays pieces of scene text out in lines, as a stream.
//
// Where a line may end, and how deep that place is within brackets and operators, is said by
// whoever hands the pieces over. A line ends at such a place when what follows, up to the next
// place that is not deeper, has no room on it: so elements of a list stay whole as long as they
// fit in a line. Never more than two lines are held back.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "kelp/writers/textbuffer.h"

namespace Kelp {

/// What stands between a piece and the one before it.
enum class Gap {
  kNone,
  kSpace,
  kWrap,     ///< a space or the end of the line
  kOpening,  ///< nothing or the end of the line: behind an opening bracket
};

class LineFiller {
 public:
  static constexpr size_t kColumns = 100;
  static constexpr int kIndent = 2;
  /// Levels of each pair of brackets: of commas, of sums, of products.
  static constexpr int kLevelsOfBracket = 3;

  explicit LineFiller(TextSink textSink) : sink(std::move(textSink)) {}

  /// The next piece. `level` counts for gaps where the line may end.
  void add(std::string_view text, Gap gap = Gap::kNone, int level = 0);

  /// Ends the line and begins one with that many blanks, with an empty line between if wished.
  void startLine(size_t indent, bool afterEmptyLine = false);

  /// The indent of a line that goes on within so many brackets.
  static size_t indentWithin(int brackets);

  /// Writes as it is and ends in the same line: for what is not laid out.
  void addAsItIs(std::string_view text);

  /// Nothing has been written yet.
  bool isAtStart() const { return !started; }

  /// Hands on all that was held back, with the end of the last line.
  void finish();

 private:
  struct Piece {
    Gap gap;
    int level;
    size_t width;
  };
  enum class Room { kYes, kNo, kUnknown };

  void decide(bool noMoreComes);
  Room roomFor(size_t piece, bool noMoreComes, size_t& unitEnd) const;
  void emitFirst(bool atNewLine);
  void dropEmitted();
  void put(std::string_view text);
  void putGap(Gap gap);

  TextSink sink;
  std::string output;
  size_t column = 0;
  bool started = false;

  std::vector<Piece> held;  // from `first` on
  std::string heldText;     // from `firstCharacter` on
  size_t first = 0;
  size_t firstCharacter = 0;
  size_t decidedUpTo = 0;  // pieces before that stay on the line
};

}  // namespace Kelp
