// Typed lists: constants, collected in the scratch sequences and copied once at their exact
// number; and the hexadecimal forms, whose text is only referred to.
#pragma once

#include <algorithm>
#include <climits>
#include <string_view>
#include <type_traits>
#include <utility>

#include "kelp/parser/grammar.h"

namespace Kelp {

// Toward zero. What an int cannot hold, and not-a-number, becomes INT_MIN on every machine.
inline int truncated(double value) {
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
_Sequence<T>& sequenceOf(ParserState::ListScratch& scratch) {
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

template <class Tokens>
template <class T>
ExpressionAST* Grammar<Tokens>::_parseNumberList(const char* name) {
  // ( "ListInt" | "ListFloat" ) "(" [ number { "," number } [ "," ] ] ")"
  _advance();
  _expect(TOKEN_LPAREN, Message::kValueBegin, name);
  auto_ast<ListTypeExpressionAST<T>> list(new ListTypeExpressionAST<T>);
  _Sequence<T>& values = sequenceOf<T>(_state().scratch);
  values.restart();
  const auto append = [&values](double value) { *values.newElement() = converted<T>(value); };
  for (;;) {
    this->_takePlainNumbers(append);
    if (_at(TOKEN_RPAREN)) break;
    append(parseSimpleNumber());
    if (!_at(TOKEN_COMMA)) break;
    _skip(TOKEN_COMMA);
  }
  _expect(TOKEN_RPAREN, Message::kListClose);
  copyElements(values, list->elements);
  return list.release();
}

template <class Tokens>
template <class T>
ExpressionAST* Grammar<Tokens>::_parseElementList(const char* name) {
  // "ListVector" "(" [ element { "," element } [ "," ] ] ")", and the same with Color
  // element := "Vector" "(" number "," number "," number ")"
  using Form = ElementForm<T>;
  _advance();
  _expect(TOKEN_LPAREN, Message::kValueBegin, name);
  auto_ast<ListTypeExpressionAST<T>> list(new ListTypeExpressionAST<T>);
  _Sequence<T>& values = sequenceOf<T>(_state().scratch);
  values.restart();
  const auto append = [&values](const double(&components)[3]) {
    *values.newElement() = T{static_cast<float>(components[0]), static_cast<float>(components[1]),
                             static_cast<float>(components[2])};
  };
  for (;;) {
    this->_takePlainElements(Form::kKeyword, append);
    if (_at(TOKEN_RPAREN)) break;
    if (!this->_isSpelled(Form::kKeyword)) _fail(Form::kKeywordMissing);
    _advance();
    _expect(TOKEN_LPAREN, Message::kElementBegin, Form::kKeyword);
    double components[3];
    components[0] = parseSimpleNumber();
    _expect(TOKEN_COMMA, Message::kElementComma);
    components[1] = parseSimpleNumber();
    _expect(TOKEN_COMMA, Message::kElementComma);
    components[2] = parseSimpleNumber();
    _expect(TOKEN_RPAREN, Message::kElementEnd);
    append(components);
    if (!_at(TOKEN_COMMA)) break;
    _skip(TOKEN_COMMA);
  }
  _expect(TOKEN_RPAREN, Message::kElementListClose);
  copyElements(values, list->elements);
  return list.release();
}

template <class Tokens>
template <class T>
ExpressionAST* Grammar<Tokens>::_parseHexList(const char* name) {
  // ( "ListVectorHex" | ... ) "(" token ")"; the token is meant to be a string, but nobody asks
  this->_advanceToRaw();
  _expect(TOKEN_LPAREN, Message::kValueBegin, name);
  const auto argument = this->_rawArgument(true);
  auto_ast<ListTypeExpressionAST<T>> list(new ListTypeExpressionAST<T>);
  for (int i = 0; i < 3; ++i) list->textRef[i] = argument.record[i];
  list->textLength = argument.copied;
  list->parsedForm = 0;
  _advance();
  _expect(TOKEN_RPAREN, Message::kValueEnd, name);
  return list.release();
}

template <class Tokens>
ExpressionAST* Grammar<Tokens>::_parseStringList(const char* name) {
  // "ListString" "(" [ string { "," string } ] ")"
  _advance();
  _expect(TOKEN_LPAREN, Message::kValueBegin, name);
  auto_ast<ListTypeExpressionAST<CharString>> list(new ListTypeExpressionAST<CharString>);
  list->sourceDir = this->_directory();
  const ScratchStrings releaseAfterwards(_state().scratch.strings);
  if (_at(TOKEN_RPAREN)) {
    _skip(TOKEN_RPAREN);
    return list.release();
  }
  for (;;) {
    if (!_at(TOKEN_STRING)) _fail(Message::kExpectedString);
    CharString text(_spelling());
    *_state().scratch.strings.newElement() = std::move(text);
    _advance();
    if (!_at(TOKEN_COMMA)) break;
    _skip(TOKEN_COMMA);
  }
  _expect(TOKEN_RPAREN, Message::kListClose);
  copyElements(_state().scratch.strings, list->elements);
  return list.release();
}

}  // namespace Kelp
