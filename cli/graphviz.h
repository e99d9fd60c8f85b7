// Graphviz, which draws graphs.
#pragma once

#include <functional>
#include <ostream>
#include <string>

namespace KelpCli {

/// The picture that the program `dot` makes of a graph, of a format such as "svg"; `write` gets a
/// stream to write the graph to, in DOT. What `dot` says on standard error is left to it. Throws
/// WriteFailure when there is no such program, or when it fails.
std::string drawGraph(const std::string& format, const std::function<void(std::ostream&)>& write);

}  // namespace KelpCli
