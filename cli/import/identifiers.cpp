#include "cli/import/identifiers.h"

#include <algorithm>

namespace KelpCli {

namespace {

bool mayBegin(char c) {
  return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || c == '_' ||
         static_cast<unsigned char>(c) > 127;
}

bool mayFollow(char c) {
  return mayBegin(c) || (c >= '0' && c <= '9') || c == '@' || c == '|' || c == '$';
}

std::string identifierLike(std::string_view wanted) {
  std::string name(wanted);
  std::replace_if(
      name.begin(), name.end(), [](char c) { return !mayFollow(c); }, '_');
  // nan is a number.
  if (!mayBegin(name[0]) || name == "nan") name.insert(0, "_");
  return name;
}

}  // namespace

std::string Identifiers::add(std::string_view wanted, std::string_view kind) {
  std::string base = identifierLike(wanted.empty() ? kind : wanted);
  if (_take(base)) return base;
  if (!wanted.empty()) {
    base.append("_").append(kind);
    if (_take(base)) return base;
  }
  for (;;) {
    const int number = ++taken[base];
    const std::string numbered = base + '_' + std::to_string(number);
    if (_take(numbered)) return numbered;
  }
}

}  // namespace KelpCli
