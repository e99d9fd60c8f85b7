#include "cli/renaming.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <utility>

#include "cli/options.h"

namespace KelpCli {

namespace {

// The parts of s/a/b/c; a separator that is part of a or b has a backslash before it.
std::array<std::string, 3> partsOf(const std::string& words) {
  std::array<std::string, 3> parts;
  size_t part = 0;
  if (words.size() > 2 && words[0] == 's' && words[1] != '\\') {
    const char separator = words[1];
    for (size_t i = 2; i < words.size() && part < 3; ++i) {
      if (words[i] == separator) {
        ++part;
      } else if (words[i] == '\\' && i + 1 < words.size()) {
        if (words[i + 1] != separator) parts[part] += '\\';
        parts[part] += words[++i];
      } else {
        parts[part] += words[i];
      }
    }
  }
  if (part != 2) throw UsageError{fmt::format("\"{}\" is not of the form s/OLD/NEW/", words)};
  return parts;
}

// To what an error of the pattern is reported, in the words of the system.
std::string reasonOf(int error, const regex_t& pattern) {
  std::array<char, 256> text{};
  ::regerror(error, &pattern, text.data(), text.size());
  return text.data();
}

}  // namespace

Substitution::Substitution(const std::string& words) {
  const auto [old, fresh, flags] = partsOf(words);
  int options = REG_EXTENDED;
  for (const char flag : flags) {
    if (flag != 'g' && flag != 'i') {
      throw UsageError{fmt::format("\"{}\": there is no flag \"{}\", only g and i", words, flag)};
    }
    if (flag == 'g') everywhere = true;
    if (flag == 'i') options |= REG_ICASE;
  }
  auto compiled = std::make_unique<regex_t>();
  const int error = ::regcomp(compiled.get(), old.c_str(), options);
  if (error != 0) throw UsageError{fmt::format("\"{}\": {}", words, reasonOf(error, *compiled))};
  pattern.reset(compiled.release());
  replacement = fresh;
}

std::string Substitution::apply(const std::string& text) const {
  std::string result;
  regmatch_t groups[kGroups];
  const char* at = text.c_str();
  const char* const end = at + text.size();
  const char* lastEnd = nullptr;
  for (int flags = 0; ::regexec(pattern.get(), at, kGroups, groups, flags) == 0;
       flags = REG_NOTBOL) {
    const char* const start = at + groups[0].rm_so;
    const char* behind = at + groups[0].rm_eo;
    const bool isEmpty = start == behind;
    result.append(at, start);
    // Nothing is found again right behind what was found.
    if (!isEmpty || start != lastEnd) _appendReplacement(result, at, groups);
    lastEnd = behind;
    if (isEmpty && start < end) result += *behind++;
    at = behind;
    if (!everywhere || (isEmpty && start == end)) break;
  }
  result.append(at, end);
  return result;
}

void Substitution::_appendReplacement(std::string& result, const char* text,
                                      const regmatch_t* groups) const {
  const auto append = [&](size_t group) {
    if (groups[group].rm_so < 0) return;
    result.append(text + groups[group].rm_so, text + groups[group].rm_eo);
  };
  for (size_t i = 0; i < replacement.size(); ++i) {
    const char c = replacement[i];
    const bool escapes = c == '\\' && i + 1 < replacement.size();
    if (c == '&') {
      append(0);
    } else if (!escapes) {
      result += c;
    } else if (const char next = replacement[++i]; next >= '0' && next <= '9') {
      append(static_cast<size_t>(next - '0'));
    } else {
      result += next;
    }
  }
}

void Renaming::addName(const std::string& words) {
  const size_t mark = words.find('=');
  if (mark == 0 || mark == std::string::npos || mark + 1 == words.size()) {
    throw UsageError{fmt::format("--rename: \"{}\" is not of the form OLD=NEW", words)};
  }
  const auto [place, isNew] =
      names.try_emplace(words.substr(0, mark), NewName{words.substr(mark + 1), false});
  if (!isNew) {
    throw UsageError{fmt::format("--rename: \"{}\" gets two names", place->first)};
  }
}

std::string Renaming::apply(const std::string& name) {
  if (const auto found = names.find(name); found != names.end()) {
    found->second.isUsed = true;
    return found->second.name;
  }
  std::string renamed = name;
  for (const Substitution& substitution : substitutions) renamed = substitution.apply(renamed);
  return renamed;
}

std::optional<std::string> Renaming::unusedName() const {
  const auto unused = std::find_if(names.begin(), names.end(),
                                   [](const auto& each) { return !each.second.isUsed; });
  return unused != names.end() ? std::optional(unused->first) : std::nullopt;
}

}  // namespace KelpCli
