#include "kelp/writers/lexemereader.h"

#include <algorithm>

#include "kelp/source/characterclass.h"
#include "kelp/utils/exceptions.h"

namespace Kelp {

namespace {

constexpr std::string_view kIncludeWord = "#include";

bool isBlank(char c) { return classOf(c) == CharacterClass::kBlank; }

}  // namespace

void LexemeReader::next(Lexeme& lexeme) {
  const int newlines = skipBlanks();
  const char first = at(position);
  lexeme.newlinesBefore = newlines;
  if (position == text.size()) {
    take(lexeme, Lexeme::kEnd, position);
  } else if (first == '\0') {
    fail("NUL byte");
  } else if (classOf(first) == CharacterClass::kIdentifier) {
    size_t end = position + 1;
    while (isInIdentifier(at(end))) ++end;
    take(lexeme, Lexeme::kWord, end);
  } else if (isDigit(first) || (first == '.' && isDigit(at(position + 1)))) {
    take(lexeme, Lexeme::kNumber, numberEnd());
  } else if (first == '"') {
    takeString(lexeme);
  } else if (first == '/' && at(position + 1) == '/') {
    takeLineComment(lexeme);
  } else if (first == '/' && at(position + 1) == '*') {
    takeBlockComment(lexeme);
  } else if (first == '#' && isInclude()) {
    takeInclude(lexeme);
  } else {
    take(lexeme, Lexeme::kPunctuation, position + 1);
  }
  checkBehindInclude(lexeme);
}

int LexemeReader::skipBlanks() {
  int newlines = 0;
  for (;; ++position) {
    const char c = at(position);
    if (c == '\n') {
      if (newlines < 2) ++newlines;  // more make no difference
      lineStart = position + 1;
    } else if (!isBlank(c)) {
      return newlines;
    }
  }
}

void LexemeReader::take(Lexeme& lexeme, Lexeme::Kind kind, size_t end) {
  lexeme.kind = kind;
  lexeme.text = text.substr(position, end - position);
  if (kind == Lexeme::kString || kind == Lexeme::kBlockComment) {
    const size_t newline = lexeme.text.rfind('\n');
    if (newline != std::string_view::npos) lineStart = position + newline + 1;
  }
  position = end;
}

// Only as the first thing on a line.
bool LexemeReader::isInclude() const {
  if (!text.substr(position).starts_with(kIncludeWord)) return false;
  if (isInIdentifier(at(position + kIncludeWord.size()))) return false;
  const std::string_view before = text.substr(lineStart, position - lineStart);
  return std::all_of(before.begin(), before.end(), isBlank);
}

void LexemeReader::takeInclude(Lexeme& lexeme) {
  size_t quote = position + kIncludeWord.size();
  while (isBlank(at(quote))) ++quote;
  const size_t end = at(quote) == '"' ? text.find_first_of("\"\n", quote + 1) : quote;
  if (end == quote || at(end) != '"') {
    fail("#include needs the name of a file in double quotes");
  }
  includeAt = position;
  take(lexeme, Lexeme::kInclude, end + 1);
}

void LexemeReader::checkBehindInclude(const Lexeme& lexeme) {
  if (lexeme.kind == Lexeme::kInclude) {
    onIncludeLine = true;
  } else if (onIncludeLine) {
    const bool lineEnds = lexeme.newlinesBefore > 0 || lexeme.kind == Lexeme::kEnd;
    if (!lineEnds && !lexeme.isComment()) {
      position = includeAt;
      fail("Text after the file name of #include");
    }
    onIncludeLine = !lineEnds && lexeme.text.find('\n') == std::string_view::npos;
  }
}

void LexemeReader::takeLineComment(Lexeme& lexeme) {
  const size_t lineEnd = std::min(text.find('\n', position), text.size());
  if (text.substr(position, lineEnd - position).find('\0') != std::string_view::npos) {
    fail("NUL byte");
  }
  size_t end = lineEnd;
  while (isBlank(text[end - 1])) --end;
  take(lexeme, Lexeme::kLineComment, end);
}

void LexemeReader::takeBlockComment(Lexeme& lexeme) {
  const size_t end = text.find("*/", position + 2);
  if (end == std::string_view::npos) fail("The comment that begins", " never ends");
  if (text.substr(position, end - position).find('\0') != std::string_view::npos) fail("NUL byte");
  take(lexeme, Lexeme::kBlockComment, end + 2);
}

void LexemeReader::takeString(Lexeme& lexeme) {
  constexpr std::string_view kStops("\"\\\0", 3);
  size_t end = text.find_first_of(kStops, position + 1);
  while (end < text.size() && text[end] == '\\') {
    const bool escape = at(end + 1) == '"' || at(end + 1) == '\\';
    end = text.find_first_of(kStops, end + (escape ? 2 : 1));
  }
  if (end >= text.size()) fail("The string that begins", " never ends");
  if (text[end] == '\0') fail("NUL byte");
  take(lexeme, Lexeme::kString, end + 1);
}

size_t LexemeReader::numberEnd() const {
  const auto digitsFrom = [this](size_t index) {
    while (isDigit(at(index))) ++index;
    return index;
  };
  size_t end = digitsFrom(position);
  const bool point = at(end) == '.';
  if (point) end = digitsFrom(end + 1);
  if (at(end) == 'e' || at(end) == 'E') {
    size_t digits = end + 1;
    if (at(digits) == '+') ++digits;
    if (at(digits) == '-') ++digits;
    if (isDigit(at(digits))) return digitsFrom(digits);
  }
  if (!point || at(end) != '#' || !isLetter(at(end + 1))) return end;
  ++end;
  while (isLetter(at(end))) ++end;
  return end;
}

void LexemeReader::fail(const std::string& before, const std::string& behind) const {
  const auto line =
      1 + std::count(text.begin(), text.begin() + static_cast<std::ptrdiff_t>(position), '\n');
  throw InvalidSourceFile(
      CharString((before + " on line " + std::to_string(line) + behind).c_str()));
}

}  // namespace Kelp
