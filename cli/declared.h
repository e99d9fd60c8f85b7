// What the command line takes, as the help, the manual page and the shells tell it.
#pragma once

#include <string>
#include <vector>

namespace CLI {
class App;
}

namespace KelpCli {

struct DeclaredOption {
  std::vector<std::string> names;  ///< with their dashes; empty for what takes no dashes
  std::string valueName;           ///< empty: takes no value
  std::vector<std::string> words;  ///< the only values it takes; empty: any
  std::string description;

  bool isPositional() const { return names.empty(); }
  bool takesValue() const { return !valueName.empty(); }
};

struct DeclaredCommand {
  std::string name;
  std::string description;
  std::string footer;
  std::vector<DeclaredOption> options;
};

/// The program itself first, with an empty name, then its commands.
std::vector<DeclaredCommand> declaredCommands(const CLI::App& program);

}  // namespace KelpCli
