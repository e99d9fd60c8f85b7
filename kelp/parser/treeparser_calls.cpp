// What looks like a call: builtin functions, lists, interpolation, and the table of all forms.
#include <algorithm>
#include <cstring>

#include "kelp/parser/treeparser.h"

namespace Kelp {

struct TreeParser::CallForm {
  const char* name;
  ExpressionAST* (TreeParser::*parse)(const char* name);
};

// Tried in this order, after the builtin functions.
const TreeParser::CallForm TreeParser::kCallForms[] = {
    {"List", &TreeParser::_parseList},
    {"interpolate", &TreeParser::_parseInterpolate},
    {"Vector", &TreeParser::_parseVectorValue<VALUE_VECTOR>},
    {"Color", &TreeParser::_parseVectorValue<VALUE_COLOR>},
    {"AColor", &TreeParser::_parseAColor},
    {"Matrix", &TreeParser::_parseMatrix},
    {"Transform", &TreeParser::_parseTransform},
    {"TransformHex", &TreeParser::_parseTransformHex},
    {"ListVector", &TreeParser::_parseElementList<Vector>},
    {"ListVectorHex", &TreeParser::_parseHexList<Vector>},
    {"ListInt", &TreeParser::_parseNumberList<int>},
    {"ListIntHex", &TreeParser::_parseHexList<int>},
    {"ListString", &TreeParser::_parseStringList},
    {"ListFloat", &TreeParser::_parseNumberList<float>},
    {"ListFloatHex", &TreeParser::_parseHexList<float>},
    {"ListColor", &TreeParser::_parseElementList<Color>},
    {"ListColorHex", &TreeParser::_parseHexList<Color>},
};

ExpressionAST* TreeParser::_parseCall() {
  // call := builtin function | form
  const char* name = _currentToken().getSpelling();
  int numArgs = 0;
  const int function = BuiltinFunctionAST::getBuiltinFunctionID(name, &numArgs);
  if (function != 0) return _parseBuiltinCall(function, numArgs);
  for (const CallForm& form : kCallForms) {
    if (std::strcmp(form.name, name) == 0) return (this->*form.parse)(form.name);
  }
  _fail(Message::kUnknownFunctor, name);
}

ExpressionAST* TreeParser::_parseBuiltinCall(int function, int numArgs) {
  // builtin := name "(" [ sum { "," sum } ] ")", with as many arguments as the function takes
  scanAheadToken(false);
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

ExpressionAST* TreeParser::_parseList(const char*) {
  // List := "List" "(" [ sum { "," sum } ] ")"
  scanAheadToken(false);
  _expect(TOKEN_LPAREN, Message::kListBegin);
  auto_ast<ListExpressionAST> list(new ListExpressionAST);
  if (_at(TOKEN_RPAREN)) {
    scanAheadToken(false);
    return list.release();
  }
  for (;;) {
    auto_ast<ExpressionAST> element(parseExpression());
    auto* cell = new ListCell{element.release(), nullptr};
    (list->tail != nullptr ? list->tail->next : list->head) = cell;
    list->tail = cell;
    ++list->count;
    if (!_at(TOKEN_COMMA)) break;
    scanAheadToken(false);
  }
  _expect(TOKEN_RPAREN, Message::kListEnd);
  return list.release();
}

ExpressionAST* TreeParser::_parseInterpolate(const char*) {
  // interpolate := "interpolate" "(" pair { "," pair } ")"
  scanAheadToken(false);
  _expect(TOKEN_LPAREN, Message::kInterpolateBegin);
  auto_ast<InterpolateExpressionAST> table(InterpolateExpressionAST::pool.newElement());
  table->first = nullptr;
  table->last = nullptr;
  table->count = 0;
  for (;;) {
    _parsePair(table.get());
    if (!_at(TOKEN_COMMA)) break;
    scanAheadToken(false);
  }
  _expect(TOKEN_RPAREN, Message::kInterpolateEnd);
  return table.release();
}

void TreeParser::_parsePair(InterpolateExpressionAST* table) {
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
