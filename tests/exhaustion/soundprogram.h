// What holds of every program, whatever has failed in it.
#pragma once

#include "kelp/program/programast.h"

namespace KelpTest {

/// Objects on the program's list; fails the test when one stands there twice.
int listLength(const Kelp::ProgramAST& program);

bool isListed(const Kelp::ProgramAST& program, const Kelp::ObjectAST* wanted);

/// Expects that both maps know objects of the list only, count at least the entries that they
/// have, and find by name what they hold under it.
void expectSound(const Kelp::ProgramAST& program);

/// A new program of objects P 0, P 1, ... each with a property.
Kelp::ProgramAST* programOf(int first, int end);

}  // namespace KelpTest
