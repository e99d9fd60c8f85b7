// References to objects, properties and runtime values, and indexing.
#include <cstring>

#include "kelp/parser/treeparser.h"

namespace Kelp {

namespace {

struct Member {
  const char* name;
  int index;
};

// Vectors, colours and transforms share the indices.
constexpr Member kMembers[] = {{"x", 0},      {"r", 0}, {"m", 0}, {"y", 1},    {"g", 1},
                               {"offset", 1}, {"z", 2}, {"b", 2}, {"alpha", 3}};

}  // namespace

ExpressionAST* TreeParser::_parseReference() {
  // reference := object | object "::" value | object "." property { index | member }
  const CharString objectName = _affixed(_currentToken().getSpelling());
  scanAheadToken(false);
  if (_at(TOKEN_COLON)) return _parseRuntimeValue(objectName);
  if (_at(TOKEN_DOT)) return _parsePropertyReference(objectName);
  return _makeObjectReference(objectName);
}

ExpressionAST* TreeParser::_parseRuntimeValue(const CharString& objectName) {
  scanAheadToken(false);
  _expect(TOKEN_COLON, Message::kRuntimeColon);
  const CharString valueName = _parseIdentifier();
  auto_ast<RuntimeValueAST> node(new RuntimeValueAST);
  node->objectName = objectName;
  node->valueName = valueName;
  _recordReference(&node->objectName);
  return node.release();
}

ExpressionAST* TreeParser::_parsePropertyReference(const CharString& objectName) {
  scanAheadToken(false);
  const CharString propertyName = _parseIdentifier();
  auto_ast<PropertyReferenceAST> node(new PropertyReferenceAST);
  node->objectName = objectName;
  node->propertyName = propertyName;
  _recordReference(&node->objectName);
  if (!_at(TOKEN_LBRACKET) && !_at(TOKEN_DOT)) return node.release();
  return _parseIndices(node.release());
}

ExpressionAST* TreeParser::_makeObjectReference(const CharString& objectName) {
  auto_ast<ObjectReferenceAST> node(ObjectReferenceAST::pool.newElement());
  node->name = objectName;
  node->object = nullptr;
  _recordReference(&node->name);
  return node.release();
}

// Takes over the reference.
ExpressionAST* TreeParser::_parseIndices(ExpressionAST* reference) {
  // { "[" sum "]" | "." member }
  auto_ast<ExpressionAST> base(reference);
  auto_ast<ArrayExpressionAST> array(new ArrayExpressionAST);
  array->base = base.release();
  while (_at(TOKEN_LBRACKET) || _at(TOKEN_DOT)) {
    auto_ast<ExpressionAST> index(_at(TOKEN_DOT) ? _parseMember() : _parseIndex());
    array->indices.push_back(index.get());
    index.release();
  }
  return array.release();
}

ExpressionAST* TreeParser::_parseIndex() {
  scanAheadToken(false);
  auto_ast<ExpressionAST> index(parseExpression());
  _expect(TOKEN_RBRACKET, Message::kIndexEnd);
  return index.release();
}

ExpressionAST* TreeParser::_parseMember() {
  scanAheadToken(false);
  const char* spelling = _currentToken().getSpelling();  // of any kind of token
  for (const Member& member : kMembers) {
    if (std::strcmp(member.name, spelling) != 0) continue;
    scanAheadToken(false);
    return NumberExpressionAST::newNumberExpressionAST(member.index);
  }
  _fail(Message::kNoSuchMember);
}

CharString TreeParser::_parseIdentifier() {
  CharString spelling(_currentToken().getSpelling());
  _expect(TOKEN_IDENTIFIER, Message::kIdentifierExpected);
  return spelling;
}

// The name's node must be under its guard: the table may fail to grow.
void TreeParser::_recordReference(CharString* name) {
  if (collectReferenceNames != 0) referenceNames += name;
}

}  // namespace Kelp
