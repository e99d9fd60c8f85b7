// The tree of a scene as JSON, with nothing lost; docs/json.md describes it.
#pragma once

#include <iosfwd>
#include <string_view>

#include "kelp/program/programast.h"

namespace KelpCli {

/// Neither depth nor length of the tree costs stack. The stream's buffer has to throw when it
/// fails.
void writeTreeJson(std::ostream& out, std::string_view sceneName, const Kelp::ProgramAST& program);

}  // namespace KelpCli
