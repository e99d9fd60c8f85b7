// kelp: the command line of the library.
#include <csignal>
#include <cstdio>
#include <exception>
#include <new>

#include "cli/commandline.h"
#include "cli/diagnostics.h"
#include "cli/output.h"
#include "kelp/utils/exceptions.h"

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

ExitCode runReportingFailures(int argc, const char* const* argv) {
  try {
    return run(argc, argv);
  } catch (const UsageError& error) {
    complain(error.message + "; kelp --help tells more");
  } catch (const WriteFailure& failure) {
    complain(failure.message);
  } catch (const Kelp::InvalidSourceFile& failure) {
    complain(failure.message.chars());
  } catch (const Kelp::ExceptionMsg& failure) {
    complain(failure.what());
  } catch (const std::bad_alloc&) {
    std::fputs("kelp: Out of memory\n", stderr);
  } catch (const std::exception& failure) {
    complain(failure.what());
  }
  return kTrouble;
}

}  // namespace

}  // namespace KelpCli

int main(int argc, char** argv) {
  // A reader that went away is then an error of writing, told like the others.
  std::signal(SIGPIPE, SIG_IGN);
  try {
    return KelpCli::runReportingFailures(argc, argv);
  } catch (...) {
    std::fputs("kelp: Out of memory\n", stderr);
    return KelpCli::kTrouble;
  }
}
