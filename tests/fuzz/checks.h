// What every target checks, whatever it was given.
#pragma once

#include <string>

#include "kelp/parser/treeparser.h"
#include "tests/models/shortage.h"

namespace KelpTest {

/// The pool elements in use at the start must be all that are in use at the end.
class NodeBalance {
 public:
  NodeBalance();

  /// A pool whose request for memory failed may count one element too many. Throws Mismatch.
  void expectRestored(const Shortage& shortage) const;

 private:
  int before;
};

/// Takes down, at its first call, which trees scenes that use every form give.
void takeDownGoodScenes();

/// After something went wrong a good scene still gives the tree it gave before. `any` chooses the
/// scene. Throws Mismatch.
void expectGoodSceneToParse(size_t any);

/// Keeps some objects and renames some, always the same ones.
void filterByName(Kelp::TreeParser& parser, Kelp::ProgramAST* program);

}  // namespace KelpTest
