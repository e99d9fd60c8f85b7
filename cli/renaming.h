// New names for objects, as the command line asks for them.
#pragma once

#include <regex.h>

#include <memory>
#include <optional>
#include <string>
#include <unordered_map>
#include <vector>

namespace KelpCli {

/// A substitution as sed -E writes it: s/PATTERN/REPLACEMENT/FLAGS with any character instead of
/// the slashes, & and \1 to \9 in the replacement, and the flags g (all places) and i (whatever
/// the case).
class Substitution {
 public:
  /// Throws UsageError.
  explicit Substitution(const std::string& words);

  std::string apply(const std::string& text) const;

 private:
  void _appendReplacement(std::string& result, const char* text, const regmatch_t* groups) const;

  struct Free {
    void operator()(regex_t* compiled) const {
      ::regfree(compiled);
      delete compiled;
    }
  };
  static constexpr size_t kGroups = 10;

  std::unique_ptr<regex_t, Free> pattern;
  std::string replacement;
  bool everywhere = false;
};

/// Single names first; names that none of those gave go through all substitutions.
class Renaming {
 public:
  /// OLD=NEW. Throws UsageError.
  void addName(const std::string& words);

  /// Throws UsageError.
  void addSubstitution(const std::string& words) { substitutions.emplace_back(words); }

  /// The new name; the old one when nothing is asked for it.
  std::string apply(const std::string& name);

  /// A name that was to be changed but never asked for.
  std::optional<std::string> unusedName() const;

 private:
  struct NewName {
    std::string name;
    bool isUsed = false;
  };

  std::unordered_map<std::string, NewName> names;
  std::vector<Substitution> substitutions;
};

}  // namespace KelpCli
