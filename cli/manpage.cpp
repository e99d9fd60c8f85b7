#include "cli/manpage.h"

#include <fmt/format.h>

#include "cli/declared.h"

namespace KelpCli {

namespace {

constexpr const char* kIntroduction = R"(.SH NAME
kelp \- read, check, compare and change scene descriptions
.SH SYNOPSIS
.B kelp
.I COMMAND
.RI [ OPTION ]...
.RI [ FILE ]...
.SH DESCRIPTION
.B kelp
reads scene descriptions: texts with objects that have a type, a name and properties.
Where a
.I FILE
is read,
.B \-
is standard input; files that are written are there as a whole or not at all.
.SH COMMANDS
)";

constexpr const char* kEnd = R"(.SH EXIT STATUS
.TP
.B 0
All is well.
.TP
.B 1
A scene is no good, or the command has found what it looked for: a difference, a mistake.
.TP
.B 2
A file cannot be read or written, or the usage is wrong.
.SH ENVIRONMENT
.TP
.B NO_COLOR
When it is set and not empty, nothing is coloured unless
.B \-\-color always
asks for it.
)";

// Text that roff takes as it is.
std::string escaped(const std::string& text) {
  std::string result;
  for (const char c : text) {
    const bool atLineStart = result.empty() || result.back() == '\n';
    if (atLineStart && (c == '.' || c == '\'')) result += "\\&";
    if (c == '\\') {
      result += "\\e";
    } else if (c == '-') {
      result += "\\-";
    } else {
      result += c;
    }
  }
  return result;
}

std::string namesOf(const DeclaredOption& option) {
  std::string names;
  for (const std::string& name : option.names) {
    names += fmt::format("{}\\fB{}\\fR", names.empty() ? "" : ", ", escaped(name));
  }
  if (option.takesValue()) {
    names += fmt::format("{}\\fI{}\\fR", names.empty() ? "" : " ", escaped(option.valueName));
  }
  return names;
}

std::string sectionOf(const DeclaredCommand& command) {
  std::string section =
      fmt::format(".SS kelp {}\n{}.\n", command.name, escaped(command.description));
  for (const DeclaredOption& option : command.options) {
    section += fmt::format(".TP\n{}\n{}.\n", namesOf(option), escaped(option.description));
  }
  if (!command.footer.empty()) {
    section += fmt::format(".PP\n.nf\n{}\n.fi\n", escaped(command.footer));
  }
  return section;
}

}  // namespace

std::string manPage(const CLI::App& program) {
  std::string page = ".TH KELP 1 \"\" \"kelp " KELP_VERSION "\" \"User Commands\"\n";
  page += kIntroduction;
  for (const DeclaredCommand& command : declaredCommands(program)) {
    if (!command.name.empty()) page += sectionOf(command);
  }
  return page + kEnd;
}

}  // namespace KelpCli
