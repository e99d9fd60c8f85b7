#include "kelp/parser/objectstream.h"

#include <climits>

#include "kelp/parser/longtexts.h"
#include "kelp/program/objectqueue.h"

namespace Kelp {

ObjectStream::ObjectStream(TreeParser& treeParser)
    : parser(treeParser),
      scanner(*treeParser.scanner),
      reader(*treeParser.scanner->reader),
      mostObjects(treeParser.maxObjects > 0 ? treeParser.maxObjects : INT64_MAX) {}

ObjectAST* ObjectStream::next() {
  texts = reader.keptTextCount();
  references = parser.referenceNames.count;
  for (;;) {
    try {
      ObjectAST* object = direct.has_value() ? _nextPlain() : _nextByTokens();
      if (object != nullptr) {
        ++objects;
        return object;
      }
      if (!direct.has_value() && scansDue == 0 && parser._at(TOKEN_END)) return nullptr;
    } catch (const TextGoesOn&) {
      _goBack();
      _readOn();
    }
  }
}

// An object that is read straight from its characters; null when there is none, or none that can be
// given away: what fails behind an object, before the next one is reached, fails with it.
ObjectAST* ObjectStream::_nextPlain() {
  ObjectAST* object = objects < mostObjects ? direct->nextFollowedObject() : nullptr;
  if (object != nullptr) return object;
  const bool textGoesOn = direct->textGoesOn();
  isPlain = textGoesOn;
  scansDue = direct->handBackUnscanned();
  direct.reset();
  reader.dropTexts(texts, reader.keptTextCount());
  if (textGoesOn) _readOn();
  return nullptr;
}

// An object that is read token by token; null at the end, and when it may be plain.
ObjectAST* ObjectStream::_nextByTokens() {
  scanner.dropFiles();
  _mark();
  if (scansDue > 0) {
    for (int i = 0; i < scansDue; ++i) parser.scanAheadToken(false);
    scansDue = 0;
    _mark();
  }
  if (parser._at(TOKEN_END)) return nullptr;
  if (objects >= mostObjects) {
    parser._fail(Message::kTooManyObjects, std::to_string(mostObjects).c_str());
  }
  if (isPlain && DirectParser::isPossible(parser)) {
    direct.emplace(parser);
    return nullptr;
  }
  isPlain = true;
  return parser.parseObject();
}

void ObjectStream::drop(ObjectAST* object) noexcept {
  object->deleteThis();
  parser.referenceNames.count = references;
  reader.dropTexts(texts, reader.keptTextCount());
}

void ObjectStream::keep(ObjectAST* object, ProgramAST* program) {
  auto_ast<ObjectAST> guard(object);
  const size_t textsOfWindow = reader.keptTextCount();
  keepLongTexts(*object, reader);
  reader.dropTexts(texts, textsOfWindow);
  ObjectQueue queue(*program);
  queue.add(guard.release(), reader.readerParam1, reader.readerParam2);
  queue.flush();
}

// ---- going back --------------------------------------------------------------------------------

void ObjectStream::_mark() {
  if (!reader.sceneText().goesOn) return;  // then there is no need to come back
  scanner.mark(bookmark);
  current = parser.current;
  lookahead = parser.lookahead;
  seeds = BuiltinFunctionAST::rndGen;
  for (int i = 0; i < 2 && scansDue == 0; ++i) {
    const Token& token = parser.tokens[i];
    tokens[i].type = token.type;
    tokens[i].overflowCount = token.overflowCount;
    tokens[i].text.assign(token.text.data, static_cast<size_t>(token.text.count));
  }
}

void ObjectStream::_goBack() {
  scanner.goBack(bookmark);
  parser.current = current;
  parser.lookahead = lookahead;
  BuiltinFunctionAST::rndGen = seeds;
  reader.dropTexts(texts, reader.keptTextCount());
  // No rule asks for the record of a string that stands where an object begins.
  for (int i = 0; i < 2 && scansDue == 0; ++i) {
    Token& token = parser.tokens[i];
    token.reset();
    token.type = tokens[i].type;
    token.overflowCount = tokens[i].overflowCount;
    token.text.append(tokens[i].text.data(), static_cast<int64_t>(tokens[i].text.size()));
  }
}

void ObjectStream::_readOn() {
  try {
    scanner.readOn();
  } catch (const InvalidSourceFile& failure) {
    throw Unreadable{failure.message};
  }
}

}  // namespace Kelp
