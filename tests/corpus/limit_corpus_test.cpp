// Scenes at a limit of the language or of its numbers: each is accepted or refused by choice, and
// its first line, or a file NAME.why, says by which.
#include <gtest/gtest.h>

#include <cstdio>

#include "tests/corpus/outcomes.h"
#include "tests/support/figures.h"

using namespace Kelp;
using namespace KelpTest;

namespace {

class LimitCorpus : public testing::TestWithParam<std::string> {};

std::string testName(const testing::TestParamInfo<std::string>& info) { return info.param; }

std::string reasonOf(const std::string& name) {
  const std::string text = corpusText(name, ".scene");
  if (text.starts_with("// ")) return text.substr(0, text.find('\n'));
  return corpusText(name, ".why");
}

// The seeds of the calls that are the values of a scene's properties, one a line. Every other call
// keeps the seed 0.
std::string seedLines(const std::string& name) {
  CorpusParser source(name);
  BuiltinFunctionAST::rndGen.reset();
  const auto_ast<ProgramAST> program(source.parser.parseProgram());
  std::string lines;
  for (const ObjectAST* object : objectsInTextOrder(*program.get())) {
    for (const PropertyAST* property = object->firstProperty; property != nullptr;
         property = property->next) {
      char line[40];
      const auto* call = dynamic_cast<const BuiltinFunctionAST*>(property->value);
      std::snprintf(line, sizeof line, "%a\n", call != nullptr ? double{call->seed} : -1.0);
      lines += line;
    }
  }
  return lines;
}

}  // namespace

TEST_P(LimitCorpus, TheOutcomesAreThoseWrittenByHand) { expectOutcomes("i_" + GetParam() + "_"); }

INSTANTIATE_TEST_SUITE_P(Subjects, LimitCorpus, testing::ValuesIn(corpusSubjects("i_")), testName);

TEST(LimitCorpusSeeds, AreThoseOfAFreshProcess) {
  const std::vector<std::string> names = corpusNames("i_seeds_");
  EXPECT_GE(names.size(), 2U);
  for (const std::string& name : names) {
    EXPECT_EQ(seedLines(name), corpusText(name, ".seeds")) << name;
  }
}

TEST(LimitCorpusFiles, HoldAtLeast60ScenesWithAReasonEach) {
  const std::vector<std::string> names = corpusNames("i_");
  int refused = 0;
  for (const std::string& name : names) {
    EXPECT_GE(reasonOf(name).size(), 20U) << name;
    EXPECT_TRUE(std::filesystem::exists(corpusPath(name, ".golden"))) << name;
    if (corpusText(name, ".golden").find("\nreader ") != std::string::npos) ++refused;
  }
  EXPECT_GE(names.size(), 60U);
  const auto accepted = static_cast<long long>(names.size()) - refused;
  reportFigure("corpus i", grouped(static_cast<long long>(names.size())) +
                               " scenes: " + grouped(accepted) + " accepted, " + grouped(refused) +
                               " refused, each with its reason");
}
