// Scenes that are refused, each for the one reason that its name tells: which message, which token
// was not understood, where the reader stood. The expectations are written by hand.
#include <gtest/gtest.h>

#include "tests/corpus/outcomes.h"
#include "tests/support/figures.h"

using namespace KelpTest;

namespace {

class BadCorpus : public testing::TestWithParam<std::string> {};

std::string testName(const testing::TestParamInfo<std::string>& info) { return info.param; }

}  // namespace

TEST_P(BadCorpus, TheErrorsAreThoseWrittenByHand) { expectOutcomes("n_" + GetParam() + "_"); }

INSTANTIATE_TEST_SUITE_P(Subjects, BadCorpus, testing::ValuesIn(corpusSubjects("n_")), testName);

TEST(BadCorpusFiles, HoldAtLeast600ScenesWithAnErrorEach) {
  const std::vector<std::string> names = corpusNames("n_");
  std::set<std::string> outcomes;
  for (const std::string& name : names) {
    const std::string golden = corpusText(name, ".golden");
    EXPECT_NE(golden.find("\nreader "), std::string::npos) << name;
    const std::string message = golden.substr(0, golden.find('\n'));
    outcomes.insert(message.substr(std::min(message.find(": "), message.size())));
  }
  EXPECT_GE(names.size(), 600U);
  reportFigure("corpus n",
               grouped(static_cast<long long>(names.size())) + " scenes with " +
                   grouped(static_cast<long long>(outcomes.size())) + " different messages on " +
                   grouped(static_cast<long long>(corpusSubjects("n_").size())) + " subjects");
}
