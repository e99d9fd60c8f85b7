// kelp: the command line of the library.
#include <csignal>
#include <cstdio>

#include "cli/commandline.h"
#include "cli/diagnostics.h"
#include "cli/output.h"

namespace KelpCli {

namespace {

ExitCode showText(const std::string& text) {
  Output output;
  output.stream() << text;
  output.finish();
  return kGood;
}

ExitCode run(int argc, const char* const* argv) {
  const CommandLine line = parseCommandLine(argc, argv);
  return line.command != nullptr ? line.command->run() : showText(line.text);
}

}  // namespace

}  // namespace KelpCli

int main(int argc, char** argv) {
  // A reader that went away is then an error of writing, told like the others.
  std::signal(SIGPIPE, SIG_IGN);
  try {
    return KelpCli::reportingFailures([&] { return KelpCli::run(argc, argv); });
  } catch (...) {
    std::fputs("kelp: Out of memory\n", stderr);
    return KelpCli::kTrouble;
  }
}
