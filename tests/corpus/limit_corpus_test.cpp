// Scenes at a limit of the language or of its numbers: each is accepted or refused by choice, and
// its first line, or a file NAME.why, says by which.
#include <gtest/gtest.h>

#include "tests/corpus/outcomes.h"
#include "tests/support/figures.h"

using namespace KelpTest;

namespace {

class LimitCorpus : public testing::TestWithParam<std::string> {};

std::string testName(const testing::TestParamInfo<std::string>& info) { return info.param; }

std::string reasonOf(const std::string& name) {
  const std::string text = corpusText(name, ".scene");
  if (text.starts_with("// ")) return text.substr(0, text.find('\n'));
  return corpusText(name, ".why");
}

}  // namespace

TEST_P(LimitCorpus, TheOutcomesAreThoseWrittenByHand) { expectOutcomes("i_" + GetParam() + "_"); }

INSTANTIATE_TEST_SUITE_P(Subjects, LimitCorpus, testing::ValuesIn(corpusSubjects("i_")), testName);

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
