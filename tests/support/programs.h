// Shorthands for programs that are filled without a parser.
#pragma once

#include <string>

#include "kelp/program/programast.h"
#include "tests/support/nodes.h"

namespace KelpTest {

/// The names on the program's list, newest first, each followed by a blank.
inline std::string listOf(const Kelp::ProgramAST& program) {
  std::string names;
  for (const Kelp::ObjectAST* o = program.firstObject; o != nullptr; o = o->next) {
    names += o->name.isNull() ? "<null>" : o->name.chars();
    names += ' ';
  }
  return names;
}

/// A new object, added to the program and owned by it.
inline Kelp::ObjectAST* add(Kelp::ProgramAST* program, const char* type, const char* name) {
  Kelp::ObjectAST* added = object(type, name);
  program->addObject(added, 0, 0, nullptr);
  return added;
}

}  // namespace KelpTest
