// Typed lists: constants, collected in the scratch sequences and copied once at their exact
// number; and the hexadecimal forms, whose text is only referred to.
#include <algorithm>
#include <climits>
#include <cstring>
#include <type_traits>
#include <utility>

#include "kelp/parser/treeparser.h"

namespace Kelp {

namespace {

// Toward zero. What an int cannot hold, and not-a-number, becomes INT_MIN on every machine.
int truncated(double value) {
  const bool fits = value > -2147483649.0 && value < 2147483648.0;
  return fits ? static_cast<int>(value) : INT_MIN;
}

template <class T>
T converted(double value) {
  if constexpr (std::is_same_v<T, int>) {
    return truncated(value);
  } else {
    return static_cast<T>(value);
  }
}

// What differs between ListVector and ListColor.
template <class T>
struct ElementForm;

template <>
struct ElementForm<Vector> {
  static constexpr const char* kKeyword = "Vector";
  static constexpr Message kKeywordMissing = Message::kVectorKeyword;
};

template <>
struct ElementForm<Color> {
  static constexpr const char* kKeyword = "Color";
  static constexpr Message kKeywordMissing = Message::kColorKeyword;
};

template <class T>
_Sequence<T>& sequenceOf(TreeParser::ListScratch& scratch) {
  if constexpr (std::is_same_v<T, Vector>) {
    return scratch.vectors;
  } else if constexpr (std::is_same_v<T, Color>) {
    return scratch.colors;
  } else if constexpr (std::is_same_v<T, int>) {
    return scratch.ints;
  } else {
    return scratch.floats;
  }
}

template <class T>
void copyElements(const _Sequence<T>& sequence, PtrArray<T>& elements) {
  elements.allocArray(sequence.liveCount());
  T* out = elements.data;
  sequence.forEachRun([&out](const T* run, int number) { out = std::copy_n(run, number, out); });
}

// Strings in the scratch would live as long as the parser; this lets go of them with their list.
class ScratchStrings {
 public:
  explicit ScratchStrings(_Sequence<CharString>& strings) : sequence(strings) {
    sequence.restart();
  }
  ScratchStrings(const ScratchStrings&) = delete;
  ScratchStrings& operator=(const ScratchStrings&) = delete;
  ~ScratchStrings() {
    sequence.forEachRun([](CharString* run, int number) {
      std::for_each_n(run, number, [](CharString& text) { text.freeMem(); });
    });
  }

 private:
  _Sequence<CharString>& sequence;
};

}  // namespace

template <class T>
ExpressionAST* TreeParser::_parseNumberList(const char* name) {
  // ( "ListInt" | "ListFloat" ) "(" [ number { "," number } [ "," ] ] ")"
  scanAheadToken(false);
  _expect(TOKEN_LPAREN, Message::kValueBegin, name);
  auto_ast<ListTypeExpressionAST<T>> list(new ListTypeExpressionAST<T>);
  _Sequence<T>& values = sequenceOf<T>(scratch);
  values.restart();
  while (!_at(TOKEN_RPAREN)) {
    const T value = converted<T>(parseSimpleNumber());
    *values.newElement() = value;
    if (!_at(TOKEN_COMMA)) break;
    scanAheadToken(false);
  }
  _expect(TOKEN_RPAREN, Message::kListClose);
  copyElements(values, list->elements);
  return list.release();
}

template <class T>
ExpressionAST* TreeParser::_parseElementList(const char* name) {
  // "ListVector" "(" [ element { "," element } [ "," ] ] ")", and the same with Color
  // element := "Vector" "(" number "," number "," number ")"
  using Form = ElementForm<T>;
  scanAheadToken(false);
  _expect(TOKEN_LPAREN, Message::kValueBegin, name);
  auto_ast<ListTypeExpressionAST<T>> list(new ListTypeExpressionAST<T>);
  _Sequence<T>& values = sequenceOf<T>(scratch);
  values.restart();
  while (!_at(TOKEN_RPAREN)) {
    const bool keyword = std::strcmp(_currentToken().getSpelling(), Form::kKeyword) == 0;
    if (!keyword) _fail(Form::kKeywordMissing);
    scanAheadToken(false);
    _expect(TOKEN_LPAREN, Message::kElementBegin, Form::kKeyword);
    const auto first = static_cast<float>(parseSimpleNumber());
    _expect(TOKEN_COMMA, Message::kElementComma);
    const auto second = static_cast<float>(parseSimpleNumber());
    _expect(TOKEN_COMMA, Message::kElementComma);
    const auto third = static_cast<float>(parseSimpleNumber());
    _expect(TOKEN_RPAREN, Message::kElementEnd);
    *values.newElement() = T{first, second, third};
    if (!_at(TOKEN_COMMA)) break;
    scanAheadToken(false);
  }
  _expect(TOKEN_RPAREN, Message::kElementListClose);
  copyElements(values, list->elements);
  return list.release();
}

template <class T>
ExpressionAST* TreeParser::_parseHexList(const char* name) {
  // ( "ListVectorHex" | ... ) "(" token ")"; the token is meant to be a string, but nobody asks
  scanAheadToken(true);
  _expect(TOKEN_LPAREN, Message::kValueBegin, name);
  const Token& token = _currentToken();
  auto_ast<ListTypeExpressionAST<T>> list(new ListTypeExpressionAST<T>);
  for (int i = 0; i < 3; ++i) list->textRef[i] = token.overflow[i];
  list->textLength = token.text.count;
  list->parsedForm = 0;
  scanAheadToken(false);
  _expect(TOKEN_RPAREN, Message::kValueEnd, name);
  return list.release();
}

ExpressionAST* TreeParser::_parseStringList(const char* name) {
  // "ListString" "(" [ string { "," string } ] ")"
  scanAheadToken(false);
  _expect(TOKEN_LPAREN, Message::kValueBegin, name);
  auto_ast<ListTypeExpressionAST<CharString>> list(new ListTypeExpressionAST<CharString>);
  list->sourceDir = scanner->reader->getCurrentFileDir();
  const ScratchStrings releaseAfterwards(scratch.strings);
  if (_at(TOKEN_RPAREN)) {
    scanAheadToken(false);
    return list.release();
  }
  for (;;) {
    if (!_at(TOKEN_STRING)) _fail(Message::kExpectedString);
    CharString text(_currentToken().getSpelling());
    *scratch.strings.newElement() = std::move(text);
    scanAheadToken(false);
    if (!_at(TOKEN_COMMA)) break;
    scanAheadToken(false);
  }
  _expect(TOKEN_RPAREN, Message::kListClose);
  copyElements(scratch.strings, list->elements);
  return list.release();
}

template ExpressionAST* TreeParser::_parseNumberList<int>(const char* name);
template ExpressionAST* TreeParser::_parseNumberList<float>(const char* name);
template ExpressionAST* TreeParser::_parseElementList<Vector>(const char* name);
template ExpressionAST* TreeParser::_parseElementList<Color>(const char* name);
template ExpressionAST* TreeParser::_parseHexList<Vector>(const char* name);
template ExpressionAST* TreeParser::_parseHexList<int>(const char* name);
template ExpressionAST* TreeParser::_parseHexList<float>(const char* name);
template ExpressionAST* TreeParser::_parseHexList<Color>(const char* name);

}  // namespace Kelp
