// TreeParser: from the tokens of a scanner to a program.
#pragma once

#include "kelp/parser/grammar.h"
#include "kelp/parser/scenepluginfilter.h"
#include "kelp/parser/tokenring.h"
#include "kelp/program/programast.h"

namespace Kelp {

class ObjectQueue;

/// Reads scenes into programs. Settings and results are fields that it inherits from ParserState,
/// rules those of Grammar. A parser belongs to one thread at a time.
class TreeParser : public Grammar<TokenRing> {
 public:
  /// A parser over a scanner that stays the caller's and outlives the parser's use.
  explicit TreeParser(Scanner* tokenSource) : Grammar(tokenSource) {}

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

  /// Records a failure at the place where the reader stands.
  void setError(const CharString& text);

 private:
  void _parseObjects(ProgramAST* program);
  void _parseObjects(ObjectQueue& queue);
  int64_t _addPlainObjects(ObjectQueue& queue, int64_t most);
};

extern template class Grammar<TokenRing>;

}  // namespace Kelp
