#include "kelp/writers/lexemereader.h"

#include <algorithm>

#include "kelp/source/characterclass.h"
#include "kelp/utils/exceptions.h"

namespace Kelp {

namespace {

constexpr std::string_view kIncludeWord = "#include";

bool isBlank(char c) { return classOf(c) == CharacterClass::kBlank; }

}  // namespace

Lexeme LexemeReader::next() {
  const int newlines = skipBlanks();
  const char first = at(position);
  Lexeme lexeme;
  if (position == text.size()) {
    // The end.
  } else if (first == '\0') {
    fail("NUL byte");
  } else if (classOf(first) == CharacterClass::kIdentifier) {
    size_t end = position + 1;
    while (isInIdentifier(at(end))) ++end;
    lexeme = take(Lexeme::kWord, end);
  } else if (isDigit(first) || (first == '.' && isDigit(at(position + 1)))) {
    lexeme = take(Lexeme::kNumber, numberEnd());
  } else if (first == '"') {
    lexeme = takeString();
  } else if (first == '/' && at(position + 1) == '/') {
    lexeme = takeLineComment();
  } else if (first == '/' && at(position + 1) == '*') {
    lexeme = takeBlockComment();
  } else if (isInclude()) {
    lexeme = takeInclude();
  } else {
    lexeme = take(Lexeme::kPunctuation, position + 1);
  }
  lexeme.newlinesBefore = newlines;
  checkBehindInclude(lexeme);
  return lexeme;
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

Lexeme LexemeReader::take(Lexeme::Kind kind, size_t end) {
  const Lexeme lexeme{kind, text.substr(position, end - position), 0};
  const size_t newline = lexeme.text.rfind('\n');
  if (newline != std::string_view::npos) lineStart = position + newline + 1;
  position = end;
  return lexeme;
}

// Only as the first thing on a line.
bool LexemeReader::isInclude() const {
  if (!text.substr(position).starts_with(kIncludeWord)) return false;
  if (isInIdentifier(at(position + kIncludeWord.size()))) return false;
  const std::string_view before = text.substr(lineStart, position - lineStart);
  return std::all_of(before.begin(), before.end(), isBlank);
}

Lexeme LexemeReader::takeInclude() {
  size_t quote = position + kIncludeWord.size();
  while (isBlank(at(quote))) ++quote;
  const size_t end = at(quote) == '"' ? text.find_first_of("\"\n", quote + 1) : quote;
  if (end == quote || at(end) != '"') {
    fail("#include needs the name of a file in double quotes");
  }
  includeAt = position;
  return take(Lexeme::kInclude, end + 1);
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

Lexeme LexemeReader::takeLineComment() {
  const size_t lineEnd = std::min(text.find('\n', position), text.size());
  if (text.substr(position, lineEnd - position).find('\0') != std::string_view::npos) {
    fail("NUL byte");
  }
  size_t end = lineEnd;
  while (isBlank(text[end - 1])) --end;
  return take(Lexeme::kLineComment, end);
}

Lexeme LexemeReader::takeBlockComment() {
  const size_t end = text.find("*/", position + 2);
  if (end == std::string_view::npos) fail("The comment that begins", " never ends");
  if (text.substr(position, end - position).find('\0') != std::string_view::npos) fail("NUL byte");
  return take(Lexeme::kBlockComment, end + 2);
}

Lexeme LexemeReader::takeString() {
  constexpr std::string_view kStops("\"\\\0", 3);
  size_t end = text.find_first_of(kStops, position + 1);
  while (end < text.size() && text[end] == '\\') {
    const bool escape = at(end + 1) == '"' || at(end + 1) == '\\';
    end = text.find_first_of(kStops, end + (escape ? 2 : 1));
  }
  if (end >= text.size()) fail("The string that begins", " never ends");
  if (text[end] == '\0') fail("NUL byte");
  return take(Lexeme::kString, end + 1);
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
