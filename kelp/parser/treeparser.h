// TreeParser: from tokens to a tree, by recursive descent, one function a production.
//
// The rules are spread over sources by families of the grammar; the banners below bear their names.
// The names tell the contract: parseX succeeds or throws InvalidSyntaxException, _accept may say
// no, _expect accepts or throws. Rules start at the current token and leave the first one behind
// what they read; nodes they return belong to the caller. They are public so that tests and tools
// can drive them one by one. A parser belongs to one thread at a time.
#pragma once

#include <cstdint>

#include "kelp/ast/auto_ast.h"
#include "kelp/ast/expressions.h"
#include "kelp/ast/objects.h"
#include "kelp/parser/errorinfo.h"
#include "kelp/parser/messages.h"
#include "kelp/parser/scenepluginfilter.h"
#include "kelp/program/programast.h"
#include "kelp/source/scanner.h"
#include "kelp/utils/exceptions.h"

namespace Kelp {

class TreeParser {
 public:
  /// A parser over a scanner that stays the caller's and outlives the parser's use.
  explicit TreeParser(Scanner* tokenSource) : scanner(tokenSource) {}
  TreeParser(const TreeParser&) = delete;
  TreeParser& operator=(const TreeParser&) = delete;

  /// Parses the whole scene. The result is the caller's, to be released with deleteThis() before
  /// the SourcesReader goes (long texts are borrowed from it). Null after a syntax or source error,
  /// which is then in `errorInfo`; nothing of the parse is left. InvalidSourceFile is thrown when
  /// the first token or its look-ahead cannot be read, as are ExceptionMsg and std::bad_alloc at
  /// any time. Call it once: after a failure the look-ahead still belongs to the old text.
  ProgramAST* parseProgram();

  /// Lets `filter` mark and rename the objects of `program`; recorded references follow the new
  /// names. Null for the filter does nothing. Requires: the programs whose references this parser
  /// recorded are still alive. What the filter throws passes through, as do ExceptionMsg and
  /// std::bad_alloc; objects seen so far then keep their new names, references the old ones.
  /// Throws ExceptionMsg at once when called by a filter that runs over the same program.
  void doFilter(ProgramAST* program, ScenePluginFilter* filter);

  // ---- settings, for the owner to change before the parse --------------------------------------
  // (declared in the order in which a host that maps this class expects its fields)

  Scanner* scanner;
  Token tokens[2];         ///< a ring of the current token and the one behind it
  int32_t current = 0;     ///< slot of the current token
  int32_t lookahead = -1;  ///< slot of the token behind it; -1: no look-ahead is buffered

  int32_t collectReferenceNames = 0;  ///< non-zero: `referenceNames` is filled
  CharString nameAffix;               ///< joined to object names and references; null or "": none
  bool affixIsSuffix = false;         ///< false: before the name, true: behind it

  /// What a typed list is collected in until its length is known; blocks are reused.
  struct ListScratch {
    _Sequence<Vector> vectors;
    _Sequence<Color> colors;
    _Sequence<int> ints;
    _Sequence<float> floats;
    _Sequence<CharString> strings;
  };
  ListScratch scratch;

  /// The names held by the references of parsed programs, in text order. They point into the
  /// nodes and are good as long as those live; a failed parse takes its own back.
  Table<CharString*, 100> referenceNames;

  ErrorInfo errorInfo;

  /// How many brackets deep expressions may nest; 0: no count, only the thread's stack counts.
  int32_t maxNestingDepth = 10000;

  /// How many objects a text may hold, those that are merged into others included; 0: no limit.
  int64_t maxObjects = 0;

  // ---- treeparser.cpp: tokens and errors --------------------------------------------------------

  /// Moves to the next token and reads the one behind it, unless the input has ended. With
  /// `skipScanAhead` the text of a string behind it is not copied.
  void scanAheadToken(bool skipScanAhead);

  /// 1 when the current token is of that type, and moves past it; else 0.
  int _accept(TOKENTYPE type);

  /// Moves past a token of that type or fails with the message.
  void _expect(TOKENTYPE type, Message message, const char* word = nullptr);

  [[noreturn]] void _fail(Message message, const char* word = nullptr);

  /// Records a failure at the place where the reader stands.
  void setError(const CharString& text);

  Token& _currentToken() { return tokens[current]; }
  bool _at(TOKENTYPE type) const { return tokens[current].type == type; }

  // ---- treeparser_program.cpp: objects and properties -------------------------------------------

  ObjectAST* parseObject();
  PropertyAST* parseProperty();

  // ---- treeparser_expressions.cpp: sums, products, terms ----------------------------------------

  ExpressionAST* parseExpression();
  ExpressionAST* parseFactor();
  ExpressionAST* parseTerm();

  // ---- treeparser_references.cpp: objects, properties, runtime values ---------------------------

  ExpressionAST* _parseReference();

  // ---- treeparser_calls.cpp: what looks like a call ---------------------------------------------

  ExpressionAST* _parseCall();

  /// A call of the function with that id, which takes numArgs arguments.
  ExpressionAST* _parseBuiltinCall(int function, int numArgs);

  // ---- treeparser_numbers.cpp: number literals --------------------------------------------------

  /// An optionally signed number literal.
  double parseSimpleNumber();

  /// The value of a number literal's text. Never fails: reading stops at the first character that
  /// does not fit, and a text that is no number gives 0. Not correctly rounded: digits are summed
  /// up in double, so that values agree with the rest of the library to the last bit.
  static double parseNum(const char* text);

 private:
  class NestingGuard;
  class ReferenceRollback;
  struct CallForm;
  static const CallForm kCallForms[];

  // treeparser_program.cpp
  CharString _affixed(const char* spelling) const;

  // treeparser_expressions.cpp
  template <ExpressionAST* (TreeParser::*operand)(), TOKENTYPE firstOperator,
            TOKENTYPE secondOperator>
  ExpressionAST* _parseOperatorChain();
  ExpressionAST* _parseAtom();
  ExpressionAST* _parseParenthesis();
  ExpressionAST* _parseString();

  // treeparser_references.cpp
  ExpressionAST* _parseRuntimeValue(const CharString& objectName);
  ExpressionAST* _parsePropertyReference(const CharString& objectName);
  ExpressionAST* _makeObjectReference(const CharString& objectName);
  ExpressionAST* _parseIndices(ExpressionAST* reference);
  ExpressionAST* _parseIndex();
  ExpressionAST* _parseMember();
  CharString _parseIdentifier();
  void _recordReference(CharString* name);

  // treeparser_calls.cpp
  ExpressionAST* _parseList(const char* name);
  ExpressionAST* _parseInterpolate(const char* name);
  void _parsePair(InterpolateExpressionAST* table);

  // treeparser_values.cpp: value constructors
  template <VALUE_TYPE kind>
  ExpressionAST* _parseVectorValue(const char* name);
  ExpressionAST* _parseAColor(const char* name);
  ExpressionAST* _parseMatrix(const char* name);
  ExpressionAST* _parseTransform(const char* name);
  ExpressionAST* _parseTransformHex(const char* name);

  // treeparser_lists.cpp: typed lists
  template <class T>
  ExpressionAST* _parseNumberList(const char* name);
  template <class T>
  ExpressionAST* _parseElementList(const char* name);
  template <class T>
  ExpressionAST* _parseHexList(const char* name);
  ExpressionAST* _parseStringList(const char* name);

  int32_t nestingDepth = 0;  // expressions being parsed, the outermost one not counted
};

}  // namespace Kelp
