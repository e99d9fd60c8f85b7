// The manual page.
#pragma once

#include <string>

namespace CLI {
class App;
}

namespace KelpCli {

/// kelp(1) in the man macros of roff, made of what the commands declare.
std::string manPage(const CLI::App& program);

}  // namespace KelpCli
