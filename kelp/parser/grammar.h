// Grammar: the rules from tokens to a tree, by recursive descent, one function a production.
//
// The rules are written once, over what they ask of a source of tokens: TokenRing takes them from
// any Scanner, TextTokens straight from the characters of a text. Their bodies are spread over the
// grammar_*.h by families; the banners below bear their names. The names tell the contract: parseX
// succeeds or throws InvalidSyntaxException, _expect accepts or throws. Rules start at the current
// token and leave the first one behind what they read; nodes they return belong to the caller. They
// are public so that tests and tools can drive them one by one.
#pragma once

#include <cstdint>
#include <string_view>

#include "kelp/ast/auto_ast.h"
#include "kelp/ast/expressions.h"
#include "kelp/ast/objects.h"
#include "kelp/parser/messages.h"
#include "kelp/parser/parserstate.h"
#include "kelp/source/token.h"

namespace Kelp {

enum class CallForm;

template <class Tokens>
class Grammar : public Tokens {
 public:
  using Tokens::_advance;
  using Tokens::_at;
  using Tokens::_expect;
  using Tokens::_fail;
  using Tokens::_skip;
  using Tokens::_spelling;
  using Tokens::_state;
  using Tokens::Tokens;

  // ---- grammar_program.h: objects and properties ------------------------------------------------

  ObjectAST* parseObject();
  PropertyAST* parseProperty();

  // ---- grammar_expressions.h: sums, products, terms, number literals ----------------------------

  ExpressionAST* parseExpression();
  ExpressionAST* parseFactor();
  ExpressionAST* parseTerm();

  /// An optionally signed number literal.
  double parseSimpleNumber();

  // ---- grammar_references.h: objects, properties, runtime values --------------------------------

  ExpressionAST* _parseReference();

  // ---- grammar_calls.h: what looks like a call --------------------------------------------------

  ExpressionAST* _parseCall();

  /// A call of the function with that id, which takes numArgs arguments.
  ExpressionAST* _parseBuiltinCall(int function, int numArgs);

 protected:
  // grammar_program.h
  ObjectAST* _parseObjectHead();

 private:
  class NestingGuard;

  // grammar_expressions.h
  template <ExpressionAST* (Grammar::*operand)(), TOKENTYPE firstOperator, TOKENTYPE secondOperator>
  ExpressionAST* _parseOperatorChain();
  ExpressionAST* _parseAtom();
  ExpressionAST* _parseParenthesis();
  ExpressionAST* _parseString();

  // grammar_program.h
  void _nameObject(ObjectAST* object, std::string_view spelling);

  // grammar_references.h
  CharString _affixed(std::string_view spelling);
  ExpressionAST* _parseRuntimeValue(const CharString& objectName);
  ExpressionAST* _parsePropertyReference(const CharString& objectName);
  ExpressionAST* _makeObjectReference(const CharString& objectName);
  ExpressionAST* _parseIndices(ExpressionAST* reference);
  ExpressionAST* _parseIndex();
  ExpressionAST* _parseMember();
  CharString _parseIdentifier();
  void _recordReference(CharString* name);

  // grammar_calls.h
  ExpressionAST* _parseForm(CallForm form);
  ExpressionAST* _parseList();
  ExpressionAST* _parseInterpolate();
  void _parsePair(InterpolateExpressionAST* table);

  // grammar_values.h: value constructors
  template <VALUE_TYPE kind>
  ExpressionAST* _parseVectorValue(const char* name);
  ExpressionAST* _parseAColor(const char* name);
  ExpressionAST* _parseMatrix(const char* name);
  ExpressionAST* _parseTransform(const char* name);
  ExpressionAST* _parseTransformHex(const char* name);

  // grammar_lists.h: typed lists
  template <class T>
  ExpressionAST* _parseNumberList(const char* name);
  template <class T>
  ExpressionAST* _parseElementList(const char* name);
  template <class T>
  ExpressionAST* _parseHexList(const char* name);
  ExpressionAST* _parseStringList(const char* name);
};

}  // namespace Kelp
