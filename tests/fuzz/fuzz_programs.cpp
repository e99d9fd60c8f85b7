// Programs: operations on several of them and on a parser that recorded their references.
#include "tests/fuzz/checks.h"
#include "tests/fuzz/targets.h"
#include "tests/models/checkedprograms.h"

namespace KelpTest {

namespace {

constexpr uint32_t kStepsBetweenComparisons = 16;

}  // namespace

int fuzzPrograms(const uint8_t* data, size_t size) {
  takeDownGoodScenes();
  ByteChoices input(data, size);
  Shortage shortage(input);
  const NodeBalance balance;
  {
    CheckedPrograms programs(input, shortage);
    for (uint32_t steps = 1; !input.atEnd(); ++steps) {
      programs.step();
      if (steps % kStepsBetweenComparisons == 0) programs.compareAll();
    }
    programs.compareAll();
  }
  balance.expectRestored(shortage);
  if (shortage.hasStruck()) expectGoodSceneToParse(size);
  return 0;
}

}  // namespace KelpTest
