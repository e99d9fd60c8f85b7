// Lint: what a program may hold by the rules of the language, and is probably a mistake.
#pragma once

#include <functional>
#include <memory>
#include <set>
#include <span>
#include <string>
#include <string_view>

#include "kelp/program/programast.h"

namespace Kelp {

class LintCheck;

/// One kind of mistake to look for.
struct LintRule {
  std::string_view code;  ///< what the rule is called, words in small letters with hyphens
  std::string_view description;
  bool isDefault;  ///< whether its findings are mistakes in most scenes
  std::unique_ptr<LintCheck> (*make)();
};

/// All of them; they live for ever.
std::span<const LintRule> lintRules();

using LintCodes = std::set<std::string_view>;

/// The codes of the rules that are mistakes in most scenes.
LintCodes defaultLintCodes();

/// Something that a rule has found. All of it but the message stays the tree's.
struct Finding {
  std::string_view code;  ///< of the rule
  const ObjectAST* object = nullptr;
  const PropertyAST* property = nullptr;  ///< null: the object as a whole
  std::string message;                    ///< a sentence with the names of object and property

  /// The property that the finding's file and line are those of: of an object its first, the only
  /// place that the tree knows; null for an object without properties.
  const PropertyAST* place() const {
    return property != nullptr ? property : object->firstProperty;
  }
};

/// Applies the rules of these codes, unknown ones are no matter, and hands over what they find, in
/// the order of the text: of each object first what concerns it as a whole. A finding is good until
/// the call returns. The program's borrowed texts must be alive. The time is in proportion to the
/// size of the program; neither depth nor length of a tree costs stack. Throws what the sink throws
/// and std::bad_alloc.
void lintProgram(const ProgramAST& program, const LintCodes& codes,
                 const std::function<void(const Finding&)>& sink);

}  // namespace Kelp
