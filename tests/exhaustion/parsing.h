// Parses as operations: of whole scenes, and of single rules.
#pragma once

#include <string>
#include <vector>

#include "tests/exhaustion/operation.h"
#include "tests/exhaustion/scenes.h"

namespace KelpTest {

/// Starts the shared generator of seeds anew, so that the same text gives the same tree.
void restartSeeds();

/// Parses of the scenes. References are recorded and properties get records of frames.
std::vector<Workload> parsesOf(const std::vector<NamedScene>& scenes);

/// What a single rule reads.
struct RuleText {
  enum class Rule { kObject, kProperty, kExpression };
  Rule rule;
  const char* text;
};

/// Texts of every form of the grammar, alone.
const std::vector<RuleText>& ruleTexts();

/// The rules that ruleTexts() lists.
std::vector<Workload> parsesOfRules();

}  // namespace KelpTest
