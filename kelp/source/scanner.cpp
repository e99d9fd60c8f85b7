#include "kelp/source/scanner.h"

#include <algorithm>
#include <cstring>

#include "kelp/source/lexemes.h"
#include "kelp/utils/exceptions.h"

namespace Kelp {

namespace {

// Behind the blanks at `at` and the block comments between them that end on the same line.
const char* skipCommentsOnLine(const char* at) {
  for (;;) {
    while (isBlank(*at)) ++at;
    if (at[0] != '/' || at[1] != '*') return at;
    const char* end = std::strstr(at + 2, "*/");
    if (end == nullptr) return at;
    if (std::memchr(at, '\n', static_cast<size_t>(end - at)) != nullptr) return at;
    at = end + 2;
  }
}

std::string onLine(int line) { return " on line " + std::to_string(line); }

// The most characters from the end of a token to the last one that decides where it ends: `1e+-`
// and `#include` and what follows them.
constexpr int64_t kFarthestLook = 16;

constexpr int kNodeTextLimit = 1023;  // longer strings are held by their record

}  // namespace

void Scanner::scan(Token& token) { _scanToken(token, true); }

void Scanner::skipScan(Token& token) { _scanToken(token, false); }

void Scanner::_scanToken(Token& token, bool copyStrings) {
  token.reset();
  failure = false;
  _skipToToken();
  starts[1] = starts[0];
  starts[0] = reader->position;
  switch (classOf(*reader->position.at)) {
    case CharacterClass::kEnd:
      return;  // the end of the scene: the slot says so already
    case CharacterClass::kIdentifier:
      return _scanIdentifier(token);
    case CharacterClass::kDigit:
      return _scanNumber(token);
    case CharacterClass::kDot:
      return isDigit(reader->position.at[1]) ? _scanNumber(token) : _scanPunctuation(token);
    case CharacterClass::kQuote:
      return _scanString(token, copyStrings);
    default:
      return _scanPunctuation(token);
  }
}

// ---- between tokens ----------------------------------------------------------------------------

void Scanner::_skipToToken() {
  SourcePosition& position = reader->position;
  for (;;) {
    const char* at = position.at;
    switch (classOf(*at)) {
      case CharacterClass::kBlank:
        do ++at;
        while (isBlank(*at));
        position.at = at;
        break;
      case CharacterClass::kNewline:
        position.at = at + 1;
        position.beginLine(at + 1);
        break;
      case CharacterClass::kSlash:
        if (at[1] == '/') {
          _skipLineComment();
        } else if (at[1] == '*') {
          _skipBlockComment();
        } else {
          return;
        }
        break;
      case CharacterClass::kHash:
        if (!_skipInclude()) return;
        break;
      case CharacterClass::kEnd:
        if (at != position.source->end) _fail(position, "NUL byte" + onLine(position.line));
        if (position.source->goesOn) throw TextGoesOn();
        if (!reader->leaveInclude()) return;
        break;
      default:
        return;
    }
  }
}

void Scanner::_skipLineComment() {
  SourcePosition& position = reader->position;
  const char* end = position.source->end;
  const auto left = static_cast<size_t>(end - position.at);
  const void* newline = std::memchr(position.at, '\n', left);
  const char* stop = newline != nullptr ? static_cast<const char*>(newline) : end;
  if (std::memchr(position.at, '\0', static_cast<size_t>(stop - position.at)) != nullptr) {
    _fail(position, "NUL byte" + onLine(position.line));
  }
  position.at = stop;
}

void Scanner::_skipBlockComment() {
  const SourcePosition start = reader->position;
  SourcePosition& position = reader->position;
  for (const char* at = start.at + 2;; ++at) {
    if (*at == '\n') {
      position.beginLine(at + 1);
    } else if (*at == '*' && at[1] == '/') {
      position.at = at + 2;
      return;
    } else if (*at == '\0') {
      if (at != start.source->end) _fail(start, "NUL byte" + onLine(position.line));
      if (start.source->goesOn) throw TextGoesOn();
      _fail(start, "The comment that begins" + onLine(start.line) + " never ends");
    }
  }
}

// Follows an #include line. False when the mark at the position does not start one.
bool Scanner::_skipInclude() {
  static constexpr char kWord[] = "#include";
  constexpr size_t kWordLength = sizeof kWord - 1;
  SourcePosition& position = reader->position;
  if (std::strncmp(position.at, kWord, kWordLength) != 0) return false;
  // Before the look back: words behind a wide indent would each walk over it.
  const SourcePosition& last = starts[0];
  if (last.lineStart == position.lineStart && last.at < position.at) return false;
  for (const char* before = position.lineStart; before < position.at; ++before) {
    if (!isBlank(*before)) return false;
  }
  const char* quote = position.at + kWordLength;
  if (isInIdentifier(*quote)) return false;
  if (position.source->goesOn) {
    const auto left = static_cast<size_t>(position.source->end - quote);
    if (std::memchr(quote, '\n', left) == nullptr) throw TextGoesOn();
  }
  while (isBlank(*quote)) ++quote;
  const char* path = *quote == '"' ? quote + 1 : quote;
  const char* pathEnd = path;
  while (path != quote && *pathEnd != '"' && *pathEnd != '\n' && *pathEnd != '\0') ++pathEnd;
  if (path == quote || *pathEnd != '"') {
    const bool nul = *pathEnd == '\0' && pathEnd != position.source->end;
    _fail(position, (nul ? "NUL byte" : "#include needs the name of a file in double quotes") +
                        onLine(position.line));
  }
  const char* rest = skipCommentsOnLine(pathEnd + 1);
  const bool comment = rest[0] == '/' && (rest[1] == '/' || rest[1] == '*');
  if (*rest != '\n' && *rest != '\0' && !comment) {
    _fail(position, "Text after the file name of #include" + onLine(position.line));
  }
  const SourcePosition start = position;
  position.at = pathEnd + 1;
  try {
    reader->enterInclude(std::string(path, pathEnd));
  } catch (const InvalidSourceFile&) {
    _noteFailure(start);
    throw;
  }
  return true;
}

// ---- tokens ------------------------------------------------------------------------------------

void Scanner::_take(Token& token, TOKENTYPE type, const char* end) {
  const char* begin = reader->position.at;
  const Source& source = *reader->position.source;
  if (source.goesOn && source.end - end < kFarthestLook) throw TextGoesOn();
  token.text.append(begin, end - begin);
  token.type = type;
  reader->position.at = end;
}

void Scanner::_scanIdentifier(Token& token) {
  const char* begin = reader->position.at;
  const char* end = skipIdentifier(begin);
  const bool isNan = end - begin == 3 && std::memcmp(begin, "nan", 3) == 0;
  _take(token, isNan ? TOKEN_NUMBER : TOKEN_IDENTIFIER, end);
}

void Scanner::_scanNumber(Token& token) {
  _take(token, TOKEN_NUMBER, skipNumber(reader->position.at));
}

void Scanner::_scanPunctuation(Token& token) {
  const char* begin = reader->position.at;
  _take(token, kPunctuation[static_cast<uint8_t>(*begin)], begin + 1);
}

void Scanner::_scanString(Token& token, bool copyText) {
  const SourcePosition start = reader->position;
  SourcePosition& position = reader->position;
  const char* begin = start.at + 1;
  bool escaped = false;
  const char* stop = findStringStop(begin);
  for (; *stop != '"'; stop = findStringStop(stop)) {
    if (*stop == '\\') {
      escaped = escaped || isEscape(stop);
      stop += isEscape(stop) ? 2 : 1;
    } else if (*stop == '\n') {
      position.beginLine(++stop);
    } else {
      if (stop != start.source->end) _fail(start, "NUL byte" + onLine(position.line));
      if (start.source->goesOn) throw TextGoesOn();
      _fail(start, "The string that begins" + onLine(start.line) + " never ends");
    }
  }
  auto length = static_cast<size_t>(stop - begin);
  const int64_t longest = reader->limits.maxStringLength;
  if (static_cast<int64_t>(length) > longest) {
    _fail(start, "The string that begins" + onLine(start.line) + " has more than " +
                     std::to_string(longest) + " characters");
  }
  if (escaped) begin = _decodeString(begin, stop, &length);
  if (copyText) token.text.append(begin, static_cast<int64_t>(length));
  token.type = TOKEN_STRING;
  token.overflow[0] = reinterpret_cast<uintptr_t>(begin);
  token.overflow[1] = length;
  token.overflow[2] = reinterpret_cast<uintptr_t>(start.source);
  if (length > kNodeTextLimit) {
    token.overflowCount = static_cast<int32_t>(static_cast<uint32_t>(length) - kNodeTextLimit);
  }
  position.at = stop + 1;
}

const char* Scanner::_decodeString(const char* begin, const char* end, size_t* length) {
  char* decoded = reader->keepText(*length);
  *length = static_cast<size_t>(decodeString(begin, end, decoded) - decoded);
  return decoded;
}

// ---- places ------------------------------------------------------------------------------------

// Reading stops where the text went wrong, so the reader reports the line it began on. A string is
// among the last tokens already when it turns out to be none.
void Scanner::_noteFailure(SourcePosition place) {
  reader->position = place;
  if (starts[0].at != place.at) starts[1] = starts[0];
  starts[0] = place;
  failure = true;
}

void Scanner::_fail(const SourcePosition& place, const std::string& message) {
  _noteFailure(place);
  throw InvalidSourceFile(CharString(message.c_str()));
}

void Scanner::resumeAt(const SourcePosition& token) {
  reader->position = token;
  starts[0] = starts[1] = {};
  failure = false;
}

SourceLocation Scanner::locate(int back) const {
  SourceLocation location;
  const SourcePosition& start = starts[back];
  if (start.source == nullptr) return location;
  location.file = start.source->name;
  location.line = start.line;
  location.includedFrom = start.includedFrom;
  if (start.lineStart == start.source->begin) {
    location.lineColumn =
        static_cast<int>(std::min<int64_t>(start.source->cutCharacters, INT32_MAX - 1)) + 1;
  }
  location.column = location.lineColumn;
  for (const char* at = start.lineStart; at < start.at; ++at) {
    // Every byte but the continuation bytes 10xxxxxx starts a character.
    const bool begins = (static_cast<unsigned char>(*at) & 0xC0U) != 0x80U;
    if (begins && location.column < INT32_MAX) ++location.column;
  }
  const char* end = start.at;
  while (end < start.source->end && *end != '\n') ++end;
  if (end > start.lineStart && end[-1] == '\r') --end;
  location.sourceLine.assign(start.lineStart, end);
  return location;
}

// ---- streams -----------------------------------------------------------------------------------

void Scanner::mark(Bookmark& bookmark) const {
  reader->mark(bookmark.reader);
  std::copy_n(starts, 2, bookmark.starts);
}

void Scanner::goBack(const Bookmark& bookmark) {
  reader->goBack(bookmark.reader);
  std::copy_n(bookmark.starts, 2, starts);
}

void Scanner::readOn() { reader->readOn(starts[0], starts[1]); }

void Scanner::closeStream() {
  starts[0] = starts[1] = {};
  reader->closeStream();
}

void Scanner::readLineOf(int back) {
  const SourcePosition& start = starts[back];
  const auto isWhole = [&start] {
    const Source* source = start.source;
    if (source == nullptr || !source->goesOn) return true;
    const auto left = source->end - start.at;
    return left >= SourcesReader::kLineContext ||
           std::memchr(start.at, '\n', static_cast<size_t>(left)) != nullptr;
  };
  try {
    while (!isWhole()) readOn();
  } catch (const InvalidSourceFile&) {
    // The line ends where it can no longer be read.
  }
}

}  // namespace Kelp
