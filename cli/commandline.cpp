#include "cli/commandline.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <string_view>

namespace KelpCli {

CommandLine parseCommandLine(int argc, const char* const* argv) {
  // The library forgets a "--" when it stands behind the first file.
  const char* const* end = argv + argc;
  const char* const* mark = std::find(argv, end, std::string_view("--"));
  const std::vector<std::string> filesBehind(std::min(mark + 1, end), end);

  CLI::App app("Reads scene descriptions.", "kelp");
  app.set_version_flag("--version", "kelp " KELP_VERSION);
  app.require_subcommand(1);
  std::vector<std::unique_ptr<Command>> commands = allCommands();
  for (const auto& command : commands) {
    command->declare(*app.add_subcommand(command->name, command->description));
  }
  try {
    app.parse(static_cast<int>(mark - argv), argv);
  } catch (const CLI::CallForHelp&) {
    return {nullptr, app.help()};  // of the command, if one was named
  } catch (const CLI::CallForVersion&) {
    return {nullptr, "kelp " KELP_VERSION "\n"};
  } catch (const CLI::ParseError& error) {
    throw UsageError{error.what()};
  }
  const auto chosen = std::find_if(commands.begin(), commands.end(), [&app](const auto& command) {
    return app.got_subcommand(command->name);
  });
  Command& command = **chosen;
  std::vector<std::string>& files = command.options.files;
  files.insert(files.end(), filesBehind.begin(), filesBehind.end());
  if (command.needsFile && files.empty() && command.options.filesFrom.empty()) {
    throw UsageError{"FILE is required"};
  }
  command.check();
  return {std::move(*chosen), {}};
}

}  // namespace KelpCli
