// Scripts that make shells complete the words of a command line.
#pragma once

#include <string>

namespace CLI {
class App;
}

namespace KelpCli {

std::string bashCompletion(const CLI::App& program);
std::string zshCompletion(const CLI::App& program);
std::string fishCompletion(const CLI::App& program);

}  // namespace KelpCli
