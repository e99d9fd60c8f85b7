#include "kelp/parser/treeparser.h"

#include <string>

#include "kelp/parser/directparser.h"
#include "kelp/parser/grammar_calls.h"
#include "kelp/parser/grammar_expressions.h"
#include "kelp/parser/grammar_lists.h"
#include "kelp/parser/grammar_program.h"
#include "kelp/parser/grammar_references.h"
#include "kelp/parser/grammar_values.h"
#include "kelp/program/objectqueue.h"
#include "kelp/utils/exclusiveuse.h"

namespace Kelp {

template class Grammar<TokenRing>;

ProgramAST* TreeParser::parseProgram() {
  // program := { object } end
  const ExclusiveUse use;
  const SharedSpellings::Use sharing(spellings);
  scanAheadToken(false);
  ReferenceRollback references(referenceNames);
  auto_ast<ProgramAST> program(new ProgramAST);
  try {
    _parseObjects(program.get());
    references.keep();
    return program.release();
  } catch (const InvalidSyntaxException& error) {
    setError(CharString(error.message.chars()));
  } catch (const InvalidSourceFile& error) {
    setError(CharString(error.message.chars()));
  }
  return nullptr;
}

void TreeParser::_parseObjects(ProgramAST* program) {
  ObjectQueue queue(*program);
  try {
    _parseObjects(queue);
  } catch (...) {
    // What stands before the failure is added before it is told, as if nothing had waited.
    queue.flush();
    throw;
  }
  queue.flush();
}

void TreeParser::_parseObjects(ObjectQueue& queue) {
  const int64_t most = maxObjects > 0 ? maxObjects : INT64_MAX;
  const int64_t mostAtATime = onProgress ? kObjectsAtATime : INT64_MAX;
  for (int64_t objects = 0; !_at(TOKEN_END);) {
    if (objects >= most) _fail(Message::kTooManyObjects, std::to_string(maxObjects).c_str());
    const int64_t plain = _addPlainObjects(queue, std::min(most - objects, mostAtATime));
    objects += plain;
    if (onProgress) onProgress(scanner->reader->bytesPassed());
    if (plain > 0) continue;
    queue.add(parseObject(), _readerParam1(), _readerParam2());
    ++objects;
  }
}

// Reads objects as long as they are plain text; gives their number.
int64_t TreeParser::_addPlainObjects(ObjectQueue& queue, int64_t most) {
  if (!DirectParser::isPossible(*this)) return 0;
  DirectParser direct(*this);
  int64_t objects = 0;
  for (; objects < most; ++objects) {
    ObjectAST* object = direct.nextObject();
    if (object == nullptr) break;
    queue.add(object, _readerParam1(), _readerParam2());
  }
  direct.handBack();
  return objects;
}

void TreeParser::setError(const CharString& text) {
  errorInfo.setErrorText(text);
  errorInfo.setErrorLine(scanner->reader->getCurrentLine());
  errorInfo.setErrorFile(scanner->reader->getCurrentFile());
}

}  // namespace Kelp
