// Programs, objects and properties.
#include <string>

#include "kelp/parser/referencerollback.h"
#include "kelp/utils/exclusiveuse.h"

namespace Kelp {

ProgramAST* TreeParser::parseProgram() {
  // program := { object } end
  const ExclusiveUse use;
  scanAheadToken(false);
  ReferenceRollback references(referenceNames);
  auto_ast<ProgramAST> program(new ProgramAST);
  const SourcesReader& reader = *scanner->reader;
  try {
    for (int64_t objects = 0; !_at(TOKEN_END); ++objects) {
      if (maxObjects > 0 && objects >= maxObjects) {
        _fail(Message::kTooManyObjects, std::to_string(maxObjects).c_str());
      }
      auto_ast<ObjectAST> object(parseObject());
      try {
        program->addObject(object.get(), reader.readerParam1, reader.readerParam2, nullptr);
      } catch (...) {
        if (program->firstObject == object.get()) object.release();
        throw;
      }
      object.release();
    }
    references.keep();
    return program.release();
  } catch (const InvalidSyntaxException& error) {
    setError(CharString(error.message.chars()));
  } catch (const InvalidSourceFile& error) {
    setError(CharString(error.message.chars()));
  }
  return nullptr;
}

ObjectAST* TreeParser::parseObject() {
  // object := type [ name ] "{" { property } "}"
  ReferenceRollback references(referenceNames);
  auto_ast<ObjectAST> object(ObjectAST::pool.newElement());
  object->firstProperty = nullptr;
  object->lastProperty = nullptr;
  object->name.freeMem();
  object->next = nullptr;
  object->extra = nullptr;
  object->filteredOut = 0;
  object->type = _currentToken().getSpelling();
  if (!_at(TOKEN_IDENTIFIER)) _fail(Message::kExpectedIdentifier);
  scanAheadToken(false);
  if (_at(TOKEN_IDENTIFIER)) {
    object->name = _affixed(_currentToken().getSpelling());
    scanAheadToken(false);
  } else {
    object->name = "";
  }
  _expect(TOKEN_LBRACE, Message::kObjectBegin);
  const SourcesReader& reader = *scanner->reader;
  while (!_at(TOKEN_RBRACE)) {
    if (_at(TOKEN_END)) _fail(Message::kObjectEnd);
    PropertyAST* property = parseProperty();
    object->addProperty(property, reader.readerParam1, reader.readerParam2);
  }
  scanAheadToken(false);
  references.keep();
  return object.release();
}

PropertyAST* TreeParser::parseProperty() {
  // property := token "=" expression ";"
  ReferenceRollback references(referenceNames);
  const CharString name(_currentToken().getSpelling());
  const CharString file = scanner->reader->getCurrentFile();
  const int line = scanner->reader->getCurrentLine();
  scanAheadToken(false);
  _expect(TOKEN_EQUALS, Message::kPropertyEquals);
  auto_ast<ExpressionAST> value(parseExpression());
  _expect(TOKEN_SEMICOLON, Message::kPropertyEnd);
  PropertyAST* property = PropertyAST::pool.newElement();
  property->name = name;
  property->value = value.release();
  property->file = file;
  property->line = line;
  property->next = nullptr;
  property->extra = nullptr;
  property->records = nullptr;
  references.keep();
  return property;
}

// An object's name as the program knows it.
CharString TreeParser::_affixed(const char* spelling) const {
  if (nameAffix.isEmpty()) return CharString(spelling);
  CharString name;
  if (affixIsSuffix) {
    name.set(spelling, nameAffix.chars());
  } else {
    name.set(nameAffix.chars(), spelling);
  }
  return name;
}

}  // namespace Kelp
