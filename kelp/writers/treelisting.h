// The tree of a program as an indented listing, for reading.
#pragma once

#include <iosfwd>

#include "kelp/program/programast.h"

namespace Kelp {

/// Writes all objects in the order of the text:
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
/// value. Neither depth nor length of the tree costs stack. Failures of the stream are left to its
/// state or its exceptions.
void writeTreeListing(std::ostream& out, const ProgramAST& program);

}  // namespace Kelp
