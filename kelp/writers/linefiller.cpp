#include "kelp/writers/linefiller.h"

#include <algorithm>

namespace Kelp {

namespace {

constexpr size_t kChunk = 65536;
constexpr int kMostIndentedBrackets = 20;
constexpr size_t kLateColumn = 80;     // behind it a line rather ends than begins something long
constexpr size_t kDroppedAtOnce = 64;  // pieces

size_t widthOf(Gap gap) { return gap == Gap::kSpace || gap == Gap::kWrap ? 1 : 0; }

bool mayEndLine(Gap gap) { return gap == Gap::kWrap || gap == Gap::kOpening; }

}  // namespace

void LineFiller::add(std::string_view text, Gap gap, int level) {
  // What is longer than a line decides everything that is held back.
  const bool isLong = text.size() > kColumns;
  const std::string_view begin = isLong ? text.substr(0, kColumns + 1) : text;
  if (gap != Gap::kNone) {
    held.push_back({gap, level, begin.size()});
    heldText.append(begin);
    decide(false);
  } else if (first < held.size()) {
    held.back().width += begin.size();
    heldText.append(begin);
    if (held.back().width > kColumns) decide(false);
  } else {
    put(begin);
  }
  if (isLong) put(text.substr(begin.size()));
}

void LineFiller::startLine(size_t indent, bool afterEmptyLine) {
  decide(true);
  if (started) put(afterEmptyLine ? "\n\n" : "\n");
  output.append(indent, ' ');
  column = indent;
}

size_t LineFiller::indentWithin(int brackets) {
  return static_cast<size_t>(kIndent * (1 + std::clamp(brackets, 1, kMostIndentedBrackets)));
}

void LineFiller::addAsItIs(std::string_view text) {
  decide(true);
  put(text);
}

void LineFiller::finish() {
  decide(true);
  if (started) put("\n");
  started = false;
  if (!output.empty()) sink(output);
  output.clear();
}

// Emits all pieces about which enough is known.
void LineFiller::decide(bool noMoreComes) {
  while (first < held.size()) {
    if (first < decidedUpTo || !mayEndLine(held[first].gap)) {
      emitFirst(false);
      continue;
    }
    size_t unitEnd = first;
    const Room room = roomFor(first, noMoreComes, unitEnd);
    if (room == Room::kUnknown) break;
    if (room == Room::kYes) decidedUpTo = unitEnd;
    emitFirst(room == Room::kNo);
  }
  dropEmitted();
}

// Whether the line has room for what follows up to the next place that is not deeper. The last
// piece may still grow, so only a later one tells that it ends.
LineFiller::Room LineFiller::roomFor(size_t piece, bool noMoreComes, size_t& unitEnd) const {
  const Gap gap = held[piece].gap;
  const int level = held[piece].level;
  const size_t indent = indentWithin(level / kLevelsOfBracket);
  if (column <= indent) {
    unitEnd = piece + 1;
    return Room::kYes;
  }
  size_t width = 0;
  bool tooWide = false;
  for (unitEnd = piece; unitEnd < held.size(); ++unitEnd) {
    const Piece& next = held[unitEnd];
    if (unitEnd > piece && mayEndLine(next.gap) && next.level <= level) break;
    if (unitEnd > piece) width += widthOf(next.gap);
    width += next.width;
    tooWide = column + widthOf(gap) + width > kColumns;
    if (tooWide && (gap == Gap::kWrap || column > kLateColumn)) return Room::kNo;
    // A bracket that opens something longer than a line ends none.
    if (indent + width > kColumns) {
      unitEnd = piece + 1;
      return Room::kYes;
    }
  }
  const bool ended = unitEnd < held.size() || noMoreComes;
  if (!ended) return Room::kUnknown;
  return tooWide ? Room::kNo : Room::kYes;
}

void LineFiller::emitFirst(bool atNewLine) {
  const Piece& piece = held[first];
  if (atNewLine) {
    const size_t indent = indentWithin(piece.level / kLevelsOfBracket);
    put("\n");
    output.append(indent, ' ');
    column = indent;
  } else {
    putGap(piece.gap);
  }
  const std::string_view characters = heldText;
  put(characters.substr(firstCharacter, piece.width));
  firstCharacter += piece.width;
  ++first;
}

void LineFiller::dropEmitted() {
  if (first < held.size() && first < kDroppedAtOnce) return;
  held.erase(held.begin(), held.begin() + static_cast<std::ptrdiff_t>(first));
  heldText.erase(0, firstCharacter);
  decidedUpTo -= std::min(first, decidedUpTo);
  first = 0;
  firstCharacter = 0;
}

void LineFiller::put(std::string_view text) {
  const size_t newline = text.rfind('\n');
  column = newline == std::string_view::npos ? column + text.size() : text.size() - newline - 1;
  started = started || !text.empty();
  if (output.size() + text.size() > kChunk) {
    if (!output.empty()) sink(output);
    output.clear();
  }
  if (text.size() > kChunk) {
    sink(text);
  } else {
    output.append(text);
  }
}

void LineFiller::putGap(Gap gap) {
  if (widthOf(gap) > 0) put(" ");
}

}  // namespace Kelp
