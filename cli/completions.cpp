#include "cli/completions.h"

#include <fmt/format.h>

#include "cli/declared.h"

namespace KelpCli {

namespace {

std::string joined(const std::vector<std::string>& words, const char* between) {
  return fmt::format("{}", fmt::join(words, between));
}

// In single quotes of a shell.
std::string quoted(const std::string& text) {
  std::string result = "'";
  for (const char c : text) {
    if (c == '\'') {
      result += "'\\''";
    } else {
      result += c;
    }
  }
  return result + '\'';
}

std::vector<std::string> commandNames(const std::vector<DeclaredCommand>& commands) {
  std::vector<std::string> names;
  for (const DeclaredCommand& command : commands) {
    if (!command.name.empty()) names.push_back(command.name);
  }
  return names;
}

// ---- bash --------------------------------------------------------------------------------------

constexpr const char* kBashStart = R"(# What bash completes of a command line of kelp.
_kelp() {
  local current=${COMP_WORDS[COMP_CWORD]} previous=${COMP_WORDS[COMP_CWORD-1]}
  local command=${COMP_WORDS[1]} options=
  COMPREPLY=()
  if ((COMP_CWORD == 1)); then command=; fi
  case $command in
)";

constexpr const char* kBashEnd = R"(  esac
  if [[ $current == -* || -z $command || $command == help ]]; then
    COMPREPLY=($(compgen -W "$options" -- "$current"))
  else
    COMPREPLY=($(compgen -f -- "$current"))
  fi
}
complete -o filenames -F _kelp kelp
)";

std::string bashCase(const DeclaredCommand& command, const std::vector<std::string>& otherWords) {
  std::vector<std::string> words = otherWords;
  std::string choices;
  for (const DeclaredOption& option : command.options) {
    words.insert(words.end(), option.names.begin(), option.names.end());
    if (option.words.empty()) continue;
    choices +=
        fmt::format("        {}) COMPREPLY=($(compgen -W '{}' -- \"$current\")); return ;;\n",
                    joined(option.names, "|"), joined(option.words, " "));
  }
  std::string text = fmt::format("    {})\n", command.name.empty() ? "''" : command.name);
  if (!choices.empty()) text += "      case $previous in\n" + choices + "      esac\n";
  return text + fmt::format("      options='{}' ;;\n", joined(words, " "));
}

// ---- zsh ---------------------------------------------------------------------------------------

// What means something in the words of _arguments gets a backslash.
std::string forArguments(const std::string& text) {
  std::string result;
  for (const char c : text) {
    if (c == ':' || c == '[' || c == ']' || c == '\\') result += '\\';
    result += c;
  }
  return result;
}

std::string zshValue(const DeclaredOption& option) {
  if (!option.takesValue()) return "";
  const std::string values =
      option.words.empty() ? "_files" : fmt::format("({})", joined(option.words, " "));
  return fmt::format(":{}:{}", forArguments(option.valueName), values);
}

std::string zshArguments(const DeclaredCommand& command) {
  std::string text;
  for (const DeclaredOption& option : command.options) {
    for (const std::string& name : option.names) {
      text += fmt::format(" \\\n        {}",
                          quoted(fmt::format("*{}[{}]{}", name, forArguments(option.description),
                                             zshValue(option))));
    }
  }
  return text + " \\\n        '*:file:_files'";
}

// ---- fish --------------------------------------------------------------------------------------

std::string fishOption(const DeclaredOption& option, const std::string& condition) {
  std::string text = "complete -c kelp -n " + quoted(condition);
  for (const std::string& name : option.names) {
    text += name.starts_with("--") ? " -l " + name.substr(2) : " -s " + name.substr(1);
  }
  if (!option.words.empty()) {
    text += " -x -a " + quoted(joined(option.words, " "));
  } else if (option.takesValue()) {
    text += " -r";
  }
  return text + " -d " + quoted(option.description) + '\n';
}

}  // namespace

std::string bashCompletion(const CLI::App& program) {
  const std::vector<DeclaredCommand> commands = declaredCommands(program);
  std::string text = kBashStart;
  for (const DeclaredCommand& command : commands) {
    const bool wantsCommand = command.name.empty() || command.name == "help";
    text += bashCase(command, wantsCommand ? commandNames(commands) : std::vector<std::string>());
  }
  return text + kBashEnd;
}

std::string zshCompletion(const CLI::App& program) {
  const std::vector<DeclaredCommand> commands = declaredCommands(program);
  std::string names;
  std::string cases;
  for (const DeclaredCommand& command : commands) {
    if (command.name.empty()) continue;
    names +=
        fmt::format(" \\\n    {}", quoted(command.name + ':' + forArguments(command.description)));
    cases += fmt::format("    {})\n      _arguments{} ;;\n", command.name, zshArguments(command));
  }
  return fmt::format(
      "#compdef kelp\n"
      "# What zsh completes of a command line of kelp.\n"
      "_kelp() {{\n"
      "  local -a commands\n"
      "  commands=({})\n"
      "  if ((CURRENT == 2)); then\n"
      "    _describe command commands\n"
      "    return\n"
      "  fi\n"
      "  local command=$words[2]\n"
      "  shift words\n"
      "  ((CURRENT--))\n"
      "  case $command in\n{}  esac\n"
      "}}\n"
      "_kelp \"$@\"\n",
      names, cases);
}

std::string fishCompletion(const CLI::App& program) {
  std::string text = "# What fish completes of a command line of kelp.\n";
  for (const DeclaredCommand& command : declaredCommands(program)) {
    const std::string condition = command.name.empty()
                                      ? "__fish_use_subcommand"
                                      : "__fish_seen_subcommand_from " + command.name;
    if (!command.name.empty()) {
      text += fmt::format("complete -c kelp -f -n __fish_use_subcommand -a {} -d {}\n",
                          command.name, quoted(command.description));
    }
    for (const DeclaredOption& option : command.options) {
      if (!option.isPositional()) text += fishOption(option, condition);
    }
  }
  return text;
}

}  // namespace KelpCli
