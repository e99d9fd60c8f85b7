// References to objects, properties and runtime values, and indexing.
#pragma once

#include <string_view>

#include "kelp/parser/grammar.h"

namespace Kelp {

struct Member {
  std::string_view name;
  int index;
};

// Vectors, colours and transforms share the indices.
inline constexpr Member kMembers[] = {{"x", 0},      {"r", 0}, {"m", 0}, {"y", 1},    {"g", 1},
                                      {"offset", 1}, {"z", 2}, {"b", 2}, {"alpha", 3}};

template <class Tokens>
ExpressionAST* Grammar<Tokens>::_parseReference() {
  // reference := object | object "::" value | object "." property { index | member }
  const CharString objectName = _affixed(_spelling());
  _advance();
  if (_at(TOKEN_COLON)) return _parseRuntimeValue(objectName);
  if (_at(TOKEN_DOT)) return _parsePropertyReference(objectName);
  return _makeObjectReference(objectName);
}

// An object's name as the program knows it.
template <class Tokens>
CharString Grammar<Tokens>::_affixed(std::string_view spelling) {
  const CharString& affix = _state().nameAffix;
  if (affix.isEmpty()) return _state().spellings.share(spelling);
  const CharString plain(spelling);
  CharString name;
  if (_state().affixIsSuffix) {
    name.set(plain.chars(), affix.chars());
  } else {
    name.set(affix.chars(), plain.chars());
  }
  return name;
}

template <class Tokens>
ExpressionAST* Grammar<Tokens>::_parseRuntimeValue(const CharString& objectName) {
  _skip(TOKEN_COLON);
  _expect(TOKEN_COLON, Message::kRuntimeColon);
  const CharString valueName = _parseIdentifier();
  auto_ast<RuntimeValueAST> node(new RuntimeValueAST);
  node->objectName = objectName;
  node->valueName = valueName;
  _recordReference(&node->objectName);
  return node.release();
}

template <class Tokens>
ExpressionAST* Grammar<Tokens>::_parsePropertyReference(const CharString& objectName) {
  _skip(TOKEN_DOT);
  const CharString propertyName = _parseIdentifier();
  auto_ast<PropertyReferenceAST> node(new PropertyReferenceAST);
  node->objectName = objectName;
  node->propertyName = propertyName;
  _recordReference(&node->objectName);
  if (!_at(TOKEN_LBRACKET) && !_at(TOKEN_DOT)) return node.release();
  return _parseIndices(node.release());
}

template <class Tokens>
ExpressionAST* Grammar<Tokens>::_makeObjectReference(const CharString& objectName) {
  auto_ast<ObjectReferenceAST> node(ObjectReferenceAST::pool.newElement());
  node->name = objectName;
  node->object = nullptr;
  _recordReference(&node->name);
  return node.release();
}

// Takes over the reference.
template <class Tokens>
ExpressionAST* Grammar<Tokens>::_parseIndices(ExpressionAST* reference) {
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

template <class Tokens>
ExpressionAST* Grammar<Tokens>::_parseIndex() {
  _skip(TOKEN_LBRACKET);
  auto_ast<ExpressionAST> index(parseExpression());
  _expect(TOKEN_RBRACKET, Message::kIndexEnd);
  return index.release();
}

template <class Tokens>
ExpressionAST* Grammar<Tokens>::_parseMember() {
  _skip(TOKEN_DOT);
  const std::string_view spelling = _spelling();  // of any kind of token
  for (const Member& member : kMembers) {
    if (member.name != spelling) continue;
    _advance();
    return NumberExpressionAST::newNumberExpressionAST(member.index);
  }
  _fail(Message::kNoSuchMember);
}

template <class Tokens>
CharString Grammar<Tokens>::_parseIdentifier() {
  CharString spelling = _state().spellings.share(_spelling());
  _expect(TOKEN_IDENTIFIER, Message::kIdentifierExpected);
  return spelling;
}

// The name's node must be under its guard: the table may fail to grow.
template <class Tokens>
void Grammar<Tokens>::_recordReference(CharString* name) {
  if (_state().collectReferenceNames != 0) _state().referenceNames += name;
}

}  // namespace Kelp
