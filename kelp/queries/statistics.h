// Statistics: how much a program holds.
#pragma once

#include <cstdint>

#include "kelp/program/programast.h"

namespace Kelp {

struct Statistics {
  int64_t objects = 0;
  int64_t properties = 0;
  int64_t expressionNodes = 0;  ///< of all kinds; a typed list is one, a pair of a table is none
  int64_t listElements = 0;     ///< of typed lists; the hexadecimal forms, not decoded, have none
};

/// Counts without recursion: neither depth nor length of the tree costs stack.
Statistics countProgram(const ProgramAST& program);

/// Adds what one object holds, in the same way.
void countObject(const ObjectAST& object, Statistics& statistics);

}  // namespace Kelp
