#include "kelp/writers/sceneformat.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <iterator>

#include "kelp/source/characterclass.h"
#include "kelp/writers/lexemereader.h"

namespace Kelp {

namespace {

constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";

// Their bracket holds one token of any kind.
constexpr std::string_view kHexForms[] = {"TransformHex", "ListVectorHex", "ListIntHex",
                                          "ListFloatHex", "ListColorHex"};

enum MarkKind : uint8_t {
  kOpens = 1,      // ( [
  kCloses = 2,     // ) ]
  kOperator = 4,   // + - * /
  kSign = 8,       // + -
  kClings = 16,    // no blank before it
  kJoins = 32,     // nor behind it
  kEndsList = 64,  // stands without a blank even behind a comment
};

constexpr auto kMarkKinds = [] {
  std::array<uint8_t, 256> kinds{};
  const auto set = [&kinds](std::string_view marks, MarkKind kind) {
    for (const char c : marks) kinds[static_cast<uint8_t>(c)] |= kind;
  };
  set("([", kOpens);
  set(")]", kCloses);
  set("+-*/", kOperator);
  set("+-", kSign);
  set(",;)].:[", kClings);
  set(".:", kJoins);
  set(",;)]", kEndsList);
  return kinds;
}();

bool is(const Lexeme& lexeme, MarkKind kind) {
  return (kMarkKinds[static_cast<uint8_t>(lexeme.mark())] & kind) != 0;
}

bool isHexForm(const Lexeme& lexeme) {
  return lexeme.kind == Lexeme::kWord && lexeme.text.ends_with("Hex") &&
         std::find(std::begin(kHexForms), std::end(kHexForms), lexeme.text) != std::end(kHexForms);
}

// Whether the two would make a number of a point that is none without a blank between.
bool needBlank(const Lexeme& before, const Lexeme& behind) {
  if (behind.mark() == '.') return before.kind == Lexeme::kNumber;
  return before.mark() == '.' && behind.kind == Lexeme::kNumber;
}

class Layout {
 public:
  explicit Layout(const TextSink& sink) : filler(sink) {}

  void add(const Lexeme& lexeme) {
    if (lexeme.isComment()) {
      addComment(lexeme);
    } else if (lexeme.kind == Lexeme::kInclude) {
      startLine(lexeme);
      filler.addAsItIs(lexeme.text);
      mustEndLine = true;
    } else {
      addToken(lexeme);
    }
  }
  void finish() { filler.finish(); }

 private:
  void startLine(const Lexeme& lexeme);
  void addComment(const Lexeme& comment);
  void addToken(const Lexeme& token);
  void beginStatement(const Lexeme& token);
  void continueStatement(const Lexeme& token);
  void endBlock(const Lexeme& token);
  void noteToken(const Lexeme& token);
  Gap gapBefore(const Lexeme& token) const;
  int levelOf(const Lexeme& token) const;
  bool isBinaryOperator(const Lexeme& token) const {
    return is(token, kOperator) && previousEndsValue;
  }

  LineFiller filler;

  // Of the text so far.
  bool inBody = false;        // within the braces of an object
  bool atStatement = true;    // a property, an object or a closing brace comes next
  int brackets = 0;           // open ones of this statement
  bool nextIsOpaque = false;  // whatever it is, it is a value
  Lexeme previous;            // token
  bool previousIsHexForm = false;
  bool previousEndsValue = false;
  bool previousIsSign = false;

  // Of the line so far.
  bool mustEndLine = false;  // nothing but comments can follow on it
  bool isOnlyComments = false;
  bool commentBehindToken = false;
  bool mayBeEmptyLine = false;  // before what follows
  bool isEmptyBlock = false;    // nothing stands behind the opening brace
};

void Layout::startLine(const Lexeme& lexeme) {
  size_t indent = LineFiller::indentWithin(brackets);
  if (atStatement) indent = inBody ? LineFiller::kIndent : 0;
  filler.startLine(indent, atStatement && mayBeEmptyLine && lexeme.newlinesBefore > 1);
  mustEndLine = false;
  isOnlyComments = false;
  mayBeEmptyLine = true;
  isEmptyBlock = false;
}

void Layout::addComment(const Lexeme& comment) {
  const bool isBlock = comment.kind == Lexeme::kBlockComment;
  if (comment.newlinesBefore > 0 || filler.isAtStart()) {
    startLine(comment);
    filler.addAsItIs(comment.text);
    isOnlyComments = isBlock;
  } else if (isBlock && !atStatement && !mustEndLine) {
    filler.add(comment.text, Gap::kSpace);
  } else {
    filler.addAsItIs(isBlock ? " " : "  ");
    filler.addAsItIs(comment.text);
    isOnlyComments = isOnlyComments && isBlock;
  }
  mustEndLine = mustEndLine || !isBlock;
  commentBehindToken = true;
  isEmptyBlock = false;
}

void Layout::addToken(const Lexeme& token) {
  if (atStatement) {
    beginStatement(token);
  } else {
    continueStatement(token);
  }
  commentBehindToken = false;
  isOnlyComments = false;
}

void Layout::beginStatement(const Lexeme& token) {
  const bool staysOnLine = isOnlyComments && token.newlinesBefore == 0;
  if (token.mark() == '}') return endBlock(token);
  if (staysOnLine) {
    filler.addAsItIs(" ");
  } else {
    startLine(token);
  }
  filler.add(token.text);
  atStatement = false;
  brackets = 0;
  if (inBody) {
    // A property's name may be any token.
    previous = token;
    previousIsHexForm = previousIsSign = previousEndsValue = false;
  } else {
    noteToken(token);
  }
}

void Layout::continueStatement(const Lexeme& token) {
  if (token.mark() == '}' && !nextIsOpaque) return endBlock(token);
  if (mustEndLine || (isOnlyComments && token.newlinesBefore > 0)) {
    startLine(token);
    filler.add(token.text);
  } else {
    filler.add(token.text, isOnlyComments ? Gap::kSpace : gapBefore(token), levelOf(token));
  }
  noteToken(token);
}

void Layout::endBlock(const Lexeme& token) {
  const bool staysOnLine = isEmptyBlock || (isOnlyComments && token.newlinesBefore == 0);
  if (!staysOnLine) filler.startLine(0);
  filler.add(token.text, staysOnLine ? Gap::kSpace : Gap::kNone);
  inBody = false;
  atStatement = true;
  mustEndLine = true;
  mayBeEmptyLine = true;
  isEmptyBlock = false;
  brackets = 0;
}

// What a token means for those that follow.
void Layout::noteToken(const Lexeme& token) {
  const bool opaque = nextIsOpaque;
  const bool opens = !opaque && is(token, kOpens);
  nextIsOpaque = !opaque && previousIsHexForm && token.mark() == '(';
  previousIsHexForm = !opaque && isHexForm(token);
  previousIsSign = is(token, kSign) && !previousEndsValue;
  previousEndsValue = token.kind != Lexeme::kPunctuation || is(token, kCloses);
  // Field by field: a copy of the whole would wait for what was just stored in parts of it.
  previous.kind = token.kind;
  previous.text = token.text;
  if (opaque) return;
  if (opens) ++brackets;
  if (is(token, kCloses) && brackets > 0) --brackets;
  if (token.mark() == '{' || token.mark() == ';') {
    inBody = inBody || token.mark() == '{';
    atStatement = true;
    mustEndLine = true;
    isEmptyBlock = token.mark() == '{';
    mayBeEmptyLine = !isEmptyBlock;
    brackets = 0;
  }
}

Gap Layout::gapBefore(const Lexeme& token) const {
  const auto gap = [&] {
    if (nextIsOpaque) return Gap::kOpening;
    if (is(token, kClings)) return Gap::kNone;
    if (token.mark() == '(' &&
        (previous.kind == Lexeme::kWord || previous.kind == Lexeme::kString)) {
      return Gap::kNone;
    }
    if (previousIsSign) return Gap::kNone;
    if (isBinaryOperator(token) || previous.mark() == ',') return Gap::kWrap;
    if (previousEndsValue || token.mark() == '=') return Gap::kSpace;
    if (is(previous, kOpens)) return Gap::kOpening;
    return is(previous, kJoins) ? Gap::kNone : Gap::kSpace;
  }();
  if (gap == Gap::kOpening && commentBehindToken) return Gap::kWrap;
  if (gap != Gap::kNone) return gap;
  const bool apart = commentBehindToken ? !is(token, kEndsList) : needBlank(previous, token);
  return apart ? Gap::kSpace : Gap::kNone;
}

int Layout::levelOf(const Lexeme& token) const {
  const int level = brackets * LineFiller::kLevelsOfBracket;
  if (!isBinaryOperator(token)) return level;
  return level + (is(token, kSign) ? 1 : 2);
}

}  // namespace

void formatText(std::string_view text, const TextSink& sink) {
  const bool marked = text.starts_with(kByteOrderMark);
  if (marked) {
    sink(kByteOrderMark);
    text.remove_prefix(kByteOrderMark.size());
  }
  LexemeReader reader(text);
  Layout layout(sink);
  Lexeme lexeme;
  reader.next(lexeme);
  // A name that would be taken for a mark at the very start.
  if (!marked && lexeme.text.starts_with(kByteOrderMark)) sink("\n");
  for (; lexeme.kind != Lexeme::kEnd; reader.next(lexeme)) layout.add(lexeme);
  layout.finish();
}

std::string formatText(std::string_view text) {
  std::string formatted;
  formatText(text, [&formatted](std::string_view piece) { formatted += piece; });
  return formatted;
}

}  // namespace Kelp
