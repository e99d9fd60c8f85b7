// Command: one command of the program. Each has a file of its own.
#pragma once

#include <memory>
#include <vector>

#include "cli/exitcode.h"
#include "cli/options.h"

namespace KelpCli {

class Command {
 public:
  Command(const char* commandName, const char* whatItDoes)
      : name(commandName), description(whatItDoes) {}
  Command(const Command&) = delete;
  Command& operator=(const Command&) = delete;
  virtual ~Command() = default;

  /// Tells the parser of the command line what the command takes.
  virtual void declare(CLI::App& app) = 0;

  /// Called with the options in place: throws UsageError for what the parser cannot know.
  virtual void check() {}

  /// Throws WriteFailure and what the library throws.
  virtual ExitCode run() = 0;

  const char* const name;
  const char* const description;
  Options options;
  bool needsFile = true;

 protected:
  void requireOneFile() const;
};

std::unique_ptr<Command> checkCommand();
std::unique_ptr<Command> completionCommand();
std::unique_ptr<Command> decodeCommand();
std::unique_ptr<Command> diffCommand();
std::unique_ptr<Command> dumpCommand();
std::unique_ptr<Command> encodeCommand();
std::unique_ptr<Command> filterCommand();
std::unique_ptr<Command> formatCommand();
std::unique_ptr<Command> helpCommand();
std::unique_ptr<Command> graphCommand();
std::unique_ptr<Command> importCommand();
std::unique_ptr<Command> lintCommand();
std::unique_ptr<Command> listCommand();
std::unique_ptr<Command> mergeCommand();
std::unique_ptr<Command> showCommand();
std::unique_ptr<Command> statsCommand();

/// All of them, in the order in which the help names them.
std::vector<std::unique_ptr<Command>> allCommands();

}  // namespace KelpCli
