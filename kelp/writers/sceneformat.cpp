#include "kelp/writers/sceneformat.h"

#include <algorithm>
#include <iterator>

#include "kelp/source/characterclass.h"
#include "kelp/writers/lexemereader.h"

namespace Kelp {

namespace {

constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";

// Their bracket holds one token of any kind.
constexpr std::string_view kHexForms[] = {"TransformHex", "ListVectorHex", "ListIntHex",
                                          "ListFloatHex", "ListColorHex"};

bool isOneOf(const Lexeme& lexeme, std::string_view characters) {
  return lexeme.kind == Lexeme::kPunctuation &&
         characters.find(lexeme.text[0]) != std::string_view::npos;
}

// Whether the two would not be the same tokens without a blank between.
bool needBlank(std::string_view before, std::string_view behind) {
  const char last = before.back();
  const char first = behind.front();
  if (isInIdentifier(last) && isInIdentifier(first)) return true;
  if (first == '.' || first == '#') return isDigit(before[0]) || before[0] == '.';
  if (last == '/') return first == '/' || first == '*';
  return last == '#' || (last == '.' && isInIdentifier(first) && before.size() > 1) ||
         (last == '.' && isDigit(first));
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
    return isOneOf(token, "+-*/") && previousEndsValue;
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
  if (token.is('}')) return endBlock(token);
  if (staysOnLine) {
    filler.addAsItIs(" ");
    isEmptyBlock = false;
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
  if (token.is('}') && !nextIsOpaque) return endBlock(token);
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
  previous = token;
}

// What a token means for those that follow.
void Layout::noteToken(const Lexeme& token) {
  const bool opaque = nextIsOpaque;
  const bool opens = !opaque && isOneOf(token, "([");
  nextIsOpaque = !opaque && previousIsHexForm && token.is('(');
  previousIsHexForm =
      !opaque && token.kind == Lexeme::kWord &&
      std::find(std::begin(kHexForms), std::end(kHexForms), token.text) != std::end(kHexForms);
  previousIsSign = !opaque && isOneOf(token, "+-") && !previousEndsValue;
  previousEndsValue = opaque || token.kind != Lexeme::kPunctuation || isOneOf(token, ")]");
  previous = token;
  if (opaque) return;
  if (opens) ++brackets;
  if (isOneOf(token, ")]") && brackets > 0) --brackets;
  if (token.is('{') || token.is(';')) {
    inBody = inBody || token.is('{');
    atStatement = true;
    mustEndLine = true;
    isEmptyBlock = token.is('{');
    mayBeEmptyLine = !isEmptyBlock;
    brackets = 0;
  }
}

Gap Layout::gapBefore(const Lexeme& token) const {
  const auto gap = [&] {
    if (nextIsOpaque) return Gap::kOpening;
    if (isOneOf(token, ",;)].:[")) return Gap::kNone;
    if (token.is('(') && (previous.kind == Lexeme::kWord || previous.kind == Lexeme::kString)) {
      return Gap::kNone;
    }
    if (previousIsSign) return Gap::kNone;
    if (isBinaryOperator(token) || previous.is(',')) return Gap::kWrap;
    if (previousEndsValue || token.is('=')) return Gap::kSpace;
    if (isOneOf(previous, "([")) return Gap::kOpening;
    return isOneOf(previous, ".:") ? Gap::kNone : Gap::kSpace;
  }();
  if (gap == Gap::kOpening && commentBehindToken) return Gap::kWrap;
  if (gap != Gap::kNone) return gap;
  const bool apart =
      commentBehindToken ? !isOneOf(token, ",;)]") : needBlank(previous.text, token.text);
  return apart ? Gap::kSpace : Gap::kNone;
}

int Layout::levelOf(const Lexeme& token) const {
  const int level = brackets * LineFiller::kLevelsOfBracket;
  if (!isBinaryOperator(token)) return level;
  return level + (isOneOf(token, "+-") ? 1 : 2);
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
  Lexeme lexeme = reader.next();
  // A name that would be taken for a mark at the very start.
  if (!marked && lexeme.text.starts_with(kByteOrderMark)) sink("\n");
  for (; lexeme.kind != Lexeme::kEnd; lexeme = reader.next()) layout.add(lexeme);
  layout.finish();
}

std::string formatText(std::string_view text) {
  std::string formatted;
  formatText(text, [&formatted](std::string_view piece) { formatted += piece; });
  return formatted;
}

}  // namespace Kelp
