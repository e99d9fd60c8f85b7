// The tree of a scene as JSON, with nothing lost; docs/json.md describes it.
#pragma once

#include <iosfwd>
#include <string_view>

#include "kelp/program/programast.h"

namespace KelpCli {

/// Neither depth nor length of the tree costs stack. The stream's buffer has to throw when it
/// fails.
void writeTreeJson(std::ostream& out, std::string_view sceneName, const Kelp::ProgramAST& program);

/// One object or property alone, on a line of its own.
void writeNodeJson(std::ostream& out, const Kelp::ObjectAST& object);
void writeNodeJson(std::ostream& out, const Kelp::PropertyAST& property);

}  // namespace KelpCli
