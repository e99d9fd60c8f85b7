// Objects and properties.
#pragma once

#include <string_view>
#include <utility>

#include "kelp/parser/grammar.h"
#include "kelp/parser/referencerollback.h"

namespace Kelp {

template <class Tokens>
ObjectAST* Grammar<Tokens>::parseObject() {
  // object := head { property } "}"
  ReferenceRollback references(_state().referenceNames);
  auto_ast<ObjectAST> object(_parseObjectHead());
  while (!_at(TOKEN_RBRACE)) {
    if (_at(TOKEN_END)) _fail(Message::kObjectEnd);
    if (this->_addPlainProperties(object.get())) continue;
    PropertyAST* property = parseProperty();
    object->addProperty(property, this->_readerParam1(), this->_readerParam2());
  }
  this->_endObject();
  references.keep();
  return object.release();
}

template <class Tokens>
ObjectAST* Grammar<Tokens>::_parseObjectHead() {
  // head := type [ name ] "{"
  auto_ast<ObjectAST> object(ObjectAST::pool.newElement());
  object->firstProperty = nullptr;
  object->lastProperty = nullptr;
  object->next = nullptr;
  object->extra = nullptr;
  object->filteredOut = 0;
  object->type = _state().spellings.share(_spelling());
  if (!_at(TOKEN_IDENTIFIER)) {
    object->name.freeMem();
    _fail(Message::kExpectedIdentifier);
  }
  _advance();
  if (_at(TOKEN_IDENTIFIER)) {
    _nameObject(object.get(), _spelling());
    _advance();
  } else {
    object->name = "";
  }
  if (!_at(TOKEN_LBRACE)) _fail(Message::kObjectBegin);
  _skip(TOKEN_LBRACE);
  return object.release();
}

template <class Tokens>
PropertyAST* Grammar<Tokens>::parseProperty() {
  // property := token "=" expression ";"
  ReferenceRollback references(_state().referenceNames);
  auto name = this->_takePropertyName();
  if (!_at(TOKEN_EQUALS)) _fail(Message::kPropertyEquals);
  _skip(TOKEN_EQUALS);
  auto_ast<ExpressionAST> value(parseExpression());
  this->_endProperty();
  PropertyAST* property = PropertyAST::pool.newElement();
  property->name = std::move(name.name);
  property->value = value.release();
  property->file = std::move(name.file);
  property->line = name.line;
  property->next = nullptr;
  property->extra = nullptr;
  property->records = nullptr;
  references.keep();
  return property;
}

// Gives an object its name as the program knows it.
template <class Tokens>
void Grammar<Tokens>::_nameObject(ObjectAST* object, std::string_view spelling) {
  if (_state().nameAffix.isEmpty()) {
    object->name.assign(spelling);
  } else {
    object->name = _affixed(spelling);
  }
}

}  // namespace Kelp
