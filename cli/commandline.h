// The command line of the program.
#pragma once

#include <memory>
#include <string>

#include "cli/command.h"

namespace KelpCli {

/// A command to run, or a text to show.
struct CommandLine {
  std::unique_ptr<Command> command;  ///< null: show the text
  std::string text;                  ///< the help or the version
};

/// Throws UsageError.
CommandLine parseCommandLine(int argc, const char* const* argv);

}  // namespace KelpCli
