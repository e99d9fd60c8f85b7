// What looks like a call: builtin functions, lists, interpolation, and the table of all forms.
#pragma once

#include <algorithm>
#include <string_view>

#include "kelp/parser/grammar.h"

namespace Kelp {

template <class Tokens>
struct Grammar<Tokens>::CallForm {
  std::string_view name;
  ExpressionAST* (Grammar::*parse)(const char* name);
};

// Tried in this order, after the builtin functions.
template <class Tokens>
const typename Grammar<Tokens>::CallForm Grammar<Tokens>::kCallForms[] = {
    {"List", &Grammar::_parseList},
    {"interpolate", &Grammar::_parseInterpolate},
    {"Vector", &Grammar::_parseVectorValue<VALUE_VECTOR>},
    {"Color", &Grammar::_parseVectorValue<VALUE_COLOR>},
    {"AColor", &Grammar::_parseAColor},
    {"Matrix", &Grammar::_parseMatrix},
    {"Transform", &Grammar::_parseTransform},
    {"TransformHex", &Grammar::_parseTransformHex},
    {"ListVector", &Grammar::_parseElementList<Vector>},
    {"ListVectorHex", &Grammar::_parseHexList<Vector>},
    {"ListInt", &Grammar::_parseNumberList<int>},
    {"ListIntHex", &Grammar::_parseHexList<int>},
    {"ListString", &Grammar::_parseStringList},
    {"ListFloat", &Grammar::_parseNumberList<float>},
    {"ListFloatHex", &Grammar::_parseHexList<float>},
    {"ListColor", &Grammar::_parseElementList<Color>},
    {"ListColorHex", &Grammar::_parseHexList<Color>},
};

template <class Tokens>
ExpressionAST* Grammar<Tokens>::_parseCall() {
  // call := builtin function | form
  const std::string_view name = _spelling();
  if (const BuiltinFunction* function = BuiltinFunctionAST::findFunction(name)) {
    return _parseBuiltinCall(function->id, function->numArgs);
  }
  for (const CallForm& form : kCallForms) {
    if (form.name == name) return (this->*form.parse)(form.name.data());
  }
  _fail(Message::kUnknownFunctor, name.data());
}

template <class Tokens>
ExpressionAST* Grammar<Tokens>::_parseBuiltinCall(int function, int numArgs) {
  // builtin := name "(" [ sum { "," sum } ] ")", with as many arguments as the function takes
  _advance();
  _expect(TOKEN_LPAREN, Message::kFunctionBegin);
  auto_ast<BuiltinFunctionAST> node(new BuiltinFunctionAST);
  node->funcID = function;
  // Whatever a table of functions says: the node has room for no more.
  numArgs = std::clamp(numArgs, 0, BuiltinFunctionAST::kMaxArgs);
  if (function == BuiltinFunctionAST::kRandom || function == BuiltinFunctionAST::kRandomInt) {
    node->seed = BuiltinFunctionAST::rndGen.drawSeed();
  }
  for (int i = 0; i < numArgs; ++i) {
    ExpressionAST* argument = parseExpression();
    node->args[node->numArgs] = argument;
    ++node->numArgs;
    if (i + 1 < numArgs) _expect(TOKEN_COMMA, Message::kFunctionComma);
  }
  _expect(TOKEN_RPAREN, Message::kFunctionEnd);
  return node.release();
}

template <class Tokens>
ExpressionAST* Grammar<Tokens>::_parseList(const char*) {
  // List := "List" "(" [ sum { "," sum } ] ")"
  _advance();
  _expect(TOKEN_LPAREN, Message::kListBegin);
  auto_ast<ListExpressionAST> list(new ListExpressionAST);
  if (_at(TOKEN_RPAREN)) {
    _skip(TOKEN_RPAREN);
    return list.release();
  }
  for (;;) {
    auto_ast<ExpressionAST> element(parseExpression());
    auto* cell = new ListCell{element.release(), nullptr};
    (list->tail != nullptr ? list->tail->next : list->head) = cell;
    list->tail = cell;
    ++list->count;
    if (!_at(TOKEN_COMMA)) break;
    _skip(TOKEN_COMMA);
  }
  _expect(TOKEN_RPAREN, Message::kListEnd);
  return list.release();
}

template <class Tokens>
ExpressionAST* Grammar<Tokens>::_parseInterpolate(const char*) {
  // interpolate := "interpolate" "(" pair { "," pair } ")"
  _advance();
  _expect(TOKEN_LPAREN, Message::kInterpolateBegin);
  auto_ast<InterpolateExpressionAST> table(InterpolateExpressionAST::pool.newElement());
  table->first = nullptr;
  table->last = nullptr;
  table->count = 0;
  for (;;) {
    _parsePair(table.get());
    if (!_at(TOKEN_COMMA)) break;
    _skip(TOKEN_COMMA);
  }
  _expect(TOKEN_RPAREN, Message::kInterpolateEnd);
  return table.release();
}

template <class Tokens>
void Grammar<Tokens>::_parsePair(InterpolateExpressionAST* table) {
  // pair := "(" sum "," sum ")"
  _expect(TOKEN_LPAREN, Message::kPairBegin);
  auto_ast<ExpressionAST> key(parseExpression());
  _expect(TOKEN_COMMA, Message::kPairComma);
  auto_ast<ExpressionAST> value(parseExpression());
  _expect(TOKEN_RPAREN, Message::kPairEnd);
  KeyList* pair = KeyList::pool.newElement();
  pair->key = key.release();
  pair->value = value.release();
  pair->next = nullptr;
  (table->last != nullptr ? table->last->next : table->first) = pair;
  table->last = pair;
  ++table->count;
}

}  // namespace Kelp
