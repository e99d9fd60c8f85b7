#include "cli/declared.h"

#include <CLI/CLI.hpp>

namespace KelpCli {

namespace {

// The words of "a|b|c".
std::vector<std::string> wordsOf(const std::string& choice) {
  if (choice.find('|') == std::string::npos) return {};
  return CLI::detail::split(choice, '|');
}

DeclaredOption declaredOption(const CLI::Option& option) {
  DeclaredOption declared;
  for (const std::string& name : option.get_snames()) declared.names.push_back('-' + name);
  for (const std::string& name : option.get_lnames()) declared.names.push_back("--" + name);
  declared.description = option.get_description();
  if (declared.names.empty()) {
    declared.valueName = option.get_name(true);
  } else if (option.get_items_expected_max() > 0) {
    // What checks a value adds its name behind a colon.
    const std::string type = option.get_type_name();
    declared.valueName = type.substr(0, type.find(':'));
    declared.words = wordsOf(declared.valueName);
  }
  return declared;
}

DeclaredCommand declaredCommand(const CLI::App& app, const std::string& name) {
  DeclaredCommand declared{name, app.get_description(), app.get_footer(), {}};
  for (const CLI::Option* option : app.get_options()) {
    declared.options.push_back(declaredOption(*option));
  }
  return declared;
}

}  // namespace

std::vector<DeclaredCommand> declaredCommands(const CLI::App& program) {
  std::vector<DeclaredCommand> commands{declaredCommand(program, "")};
  for (const CLI::App* command : program.get_subcommands(nullptr)) {
    commands.push_back(declaredCommand(*command, command->get_name()));
  }
  return commands;
}

}  // namespace KelpCli
