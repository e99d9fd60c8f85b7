// Scenes that are accepted, each with one point that its name tells, and their trees. The trees
// are written by hand: what the library prints is no proof of what it should.
#include <gtest/gtest.h>

#include <algorithm>
#include <set>

#include "tests/support/corpus.h"
#include "tests/support/figures.h"

using namespace KelpTest;

namespace {

// The word behind "y_": what part of the language the scene is about.
std::string subjectOf(const std::string& name) { return name.substr(2, name.find('_', 2) - 2); }

std::set<std::string> subjects() {
  std::set<std::string> words;
  for (const std::string& name : corpusNames("y_")) words.insert(subjectOf(name));
  return words;
}

// What an S-expression refers to, sorted: the names behind "(ref ", "(prop " and "(rt ".
std::vector<std::string> referencesIn(const std::string& tree) {
  std::vector<std::string> names;
  for (const std::string head : {"(ref \"", "(prop \"", "(rt \""}) {
    for (size_t at = tree.find(head); at != std::string::npos; at = tree.find(head, at + 1)) {
      const size_t name = at + head.size();
      names.push_back(tree.substr(name, tree.find('"', name) - name));
    }
  }
  std::sort(names.begin(), names.end());
  return names;
}

std::vector<std::string> recordedReferences(const std::string& name) {
  CorpusParser source(name);
  source.parser.collectReferenceNames = 1;
  const Kelp::auto_ast<Kelp::ProgramAST> program(source.parser.parseProgram());
  std::vector<std::string> names;
  for (int i = 0; i < source.parser.referenceNames.count; ++i) {
    names.emplace_back(source.parser.referenceNames.data[i]->chars());
  }
  std::sort(names.begin(), names.end());
  return names;
}

class GoodCorpus : public testing::TestWithParam<std::string> {};

std::string testName(const testing::TestParamInfo<std::string>& info) { return info.param; }

}  // namespace

TEST_P(GoodCorpus, TheTreesAreThoseWrittenByHand) {
  for (const std::string& name : corpusNames(("y_" + GetParam() + "_").c_str())) {
    EXPECT_EQ(corpusTree(name), corpusText(name, ".golden")) << name;
  }
}

TEST_P(GoodCorpus, TheReferencesOfTheTreeAreRecorded) {
  for (const std::string& name : corpusNames(("y_" + GetParam() + "_").c_str())) {
    EXPECT_EQ(recordedReferences(name), referencesIn(corpusText(name, ".golden"))) << name;
  }
}

INSTANTIATE_TEST_SUITE_P(Subjects, GoodCorpus, testing::ValuesIn(subjects()), testName);

TEST(GoodCorpusFiles, HoldAtLeast400ScenesWithATreeEach) {
  size_t lines = 0;
  const std::vector<std::string> names = corpusNames("y_");
  for (const std::string& name : names) {
    EXPECT_TRUE(std::filesystem::exists(corpusPath(name, ".golden"))) << name;
    const std::string text = corpusText(name, ".scene");
    lines += static_cast<size_t>(std::count(text.begin(), text.end(), '\n'));
  }
  EXPECT_GE(names.size(), 400U);
  reportFigure("corpus y", grouped(static_cast<long long>(names.size())) + " scenes of " +
                               grouped(static_cast<long long>(lines)) + " lines on " +
                               grouped(static_cast<long long>(subjects().size())) + " subjects");
}
