#include "cli/command.h"

#include <string>

namespace KelpCli {

void Command::requireOneFile() const {
  if (options.files.size() != 1) throw UsageError{std::string(name) + " takes one FILE only"};
}

std::vector<std::unique_ptr<Command>> allCommands() {
  std::vector<std::unique_ptr<Command>> commands;
  for (const auto make :
       {checkCommand, decodeCommand, diffCommand, dumpCommand, encodeCommand, filterCommand,
        formatCommand, graphCommand, importCommand, lintCommand, listCommand, mergeCommand,
        showCommand, statsCommand, helpCommand, completionCommand}) {
    commands.push_back(make());
  }
  return commands;
}

}  // namespace KelpCli
