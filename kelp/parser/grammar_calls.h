// What looks like a call: builtin functions, lists, interpolation, and the table of all forms.
#pragma once

#include <algorithm>
#include <string_view>

#include "kelp/ast/builtinfunctions.h"
#include "kelp/parser/callforms.h"
#include "kelp/parser/grammar.h"

namespace Kelp {

template <class Tokens>
ExpressionAST* Grammar<Tokens>::_parseCall() {
  // call := builtin function | form
  const std::string_view name = _spelling();
  if (const BuiltinFunction* function = BuiltinFunctionAST::findFunction(name)) {
    return _parseBuiltinCall(function->id, function->numArgs);
  }
  const int form = kCallForms.find(name);
  if (form < 0) _fail(Message::kUnknownFunctor, name.data());
  return _parseForm(static_cast<CallForm>(form));
}

template <class Tokens>
ExpressionAST* Grammar<Tokens>::_parseForm(CallForm form) {
  const char* name = kCallFormNames[static_cast<size_t>(form)].data();
  switch (form) {
    case CallForm::kList:
      return _parseList();
    case CallForm::kInterpolate:
      return _parseInterpolate();
    case CallForm::kVector:
      return _parseVectorValue<VALUE_VECTOR>(name);
    case CallForm::kColor:
      return _parseVectorValue<VALUE_COLOR>(name);
    case CallForm::kAColor:
      return _parseAColor(name);
    case CallForm::kMatrix:
      return _parseMatrix(name);
    case CallForm::kTransform:
      return _parseTransform(name);
    case CallForm::kTransformHex:
      return _parseTransformHex(name);
    case CallForm::kListVector:
      return _parseElementList<Vector>(name);
    case CallForm::kListVectorHex:
      return _parseHexList<Vector>(name);
    case CallForm::kListInt:
      return _parseNumberList<int>(name);
    case CallForm::kListIntHex:
      return _parseHexList<int>(name);
    case CallForm::kListString:
      return _parseStringList(name);
    case CallForm::kListFloat:
      return _parseNumberList<float>(name);
    case CallForm::kListFloatHex:
      return _parseHexList<float>(name);
    case CallForm::kListColor:
      return _parseElementList<Color>(name);
    case CallForm::kListColorHex:
      break;
  }
  return _parseHexList<Color>(name);
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
ExpressionAST* Grammar<Tokens>::_parseList() {
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
ExpressionAST* Grammar<Tokens>::_parseInterpolate() {
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
