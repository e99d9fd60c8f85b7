// TreeWriter: the tree of a program as an indented listing, for reading.
#pragma once

#include <memory>

#include "kelp/program/programast.h"
#include "kelp/writers/textbuffer.h"

namespace Kelp {

/// Writes objects like this:
///
///     Material chalk
///       label = "white chalk"  // kitchen.scene:2
///       gloss = operators, applied from the top  // kitchen.scene:3
///           property lamp.power
///         / 2
///       tints = colors, 2  // kitchen.scene:4
///         (1, 1, 1) (0.9, 0.9, 0.8)
///
/// Levels below the 40th are not indented further; their lines say how deep they are. Texts are
/// written so that they cannot upset a terminal, numbers with digits that read back to the same
/// value. Neither depth nor length of the tree costs stack. The nodes' borrowed texts must be
/// alive. Throws what the sink throws and std::bad_alloc, and is of no further use then.
class TreeWriter {
 public:
  explicit TreeWriter(TextSink sink);
  TreeWriter(const TreeWriter&) = delete;
  TreeWriter& operator=(const TreeWriter&) = delete;
  ~TreeWriter();

  /// All objects, in the order of the text.
  void write(const ProgramAST& program);

 private:
  class Listing;

  std::unique_ptr<Listing> listing;
};

}  // namespace Kelp
