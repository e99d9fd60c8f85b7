// kelp help and kelp completion: texts made of what the commands declare.
#include <fmt/format.h>

#include <CLI/CLI.hpp>

#include "cli/command.h"
#include "cli/completions.h"
#include "cli/manpage.h"
#include "cli/output.h"

namespace KelpCli {

namespace {

// The declarations are there until the command line has been checked: the text is made then.
class TextCommand : public Command {
 public:
  using Command::Command;

  ExitCode run() override {
    Output output;
    output.stream() << text;
    output.finish();
    return kGood;
  }

 protected:
  std::string text;
};

class HelpCommand final : public TextCommand {
 public:
  HelpCommand() : TextCommand("help", "Tell what a command does and takes") { needsFile = false; }

  void declare(CLI::App& app) override {
    program = app.get_parent();
    app.add_option("COMMAND", command, "One of the commands")->type_name("");
    app.add_flag("--man", asManPage, "Print the manual page of the program")->excludes("COMMAND");
  }

  void check() override {
    if (asManPage) {
      text = manPage(*program);
    } else if (command.empty()) {
      // The program itself would hand on to the command that was given.
      text = program->get_formatter()->make_help(program, program->get_name(),
                                                 CLI::AppFormatMode::Normal);
    } else {
      text = helpOf(command);
    }
  }

 private:
  std::string helpOf(const std::string& wanted) const {
    for (const CLI::App* each : program->get_subcommands(nullptr)) {
      if (each->get_name() == wanted) return each->help("kelp");
    }
    throw UsageError{fmt::format("there is no command \"{}\"", wanted)};
  }

  const CLI::App* program = nullptr;
  std::string command;
  bool asManPage = false;
};

class CompletionCommand final : public TextCommand {
 public:
  CompletionCommand()
      : TextCommand("completion", "Print what makes a shell complete kelp's words") {
    needsFile = false;
  }

  void declare(CLI::App& app) override {
    program = app.get_parent();
    app.add_option("SHELL", shell, "bash, zsh or fish")->required()->type_name("");
    app.footer(
        "Installed packages bring these files along. Without them:\n"
        "  bash: source <(kelp completion bash)    in ~/.bashrc\n"
        "  zsh:  kelp completion zsh >_kelp        in a folder of $fpath\n"
        "  fish: kelp completion fish >~/.config/fish/completions/kelp.fish");
  }

  void check() override {
    if (shell == "bash") {
      text = bashCompletion(*program);
    } else if (shell == "zsh") {
      text = zshCompletion(*program);
    } else if (shell == "fish") {
      text = fishCompletion(*program);
    } else {
      throw UsageError{fmt::format("\"{}\" is none of bash, zsh and fish", shell)};
    }
  }

 private:
  const CLI::App* program = nullptr;
  std::string shell;
};

}  // namespace

std::unique_ptr<Command> helpCommand() { return std::make_unique<HelpCommand>(); }
std::unique_ptr<Command> completionCommand() { return std::make_unique<CompletionCommand>(); }

}  // namespace KelpCli
