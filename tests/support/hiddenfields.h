// What a parsed program holds besides what its tree shows.
#pragma once

#include <string>

#include "kelp/program/programast.h"

namespace KelpTest {

/// Every field of the program's objects, properties and expressions that an S-expression does not
/// show, as text: files and lines, flags, lengths, counts, seeds, ends of chains, which pointers
/// are null. Equal in all processes that parse the same text.
std::string hiddenFields(const Kelp::ProgramAST& program);

}  // namespace KelpTest
