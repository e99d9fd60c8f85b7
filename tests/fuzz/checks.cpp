#include "tests/fuzz/checks.h"

#include <vector>

#include "tests/models/mismatch.h"
#include "tests/support/parsing.h"
#include "tests/support/richscenes.h"

namespace KelpTest {

namespace {

class FilterByName final : public Kelp::ScenePluginFilter {
 public:
  int acceptObject(const Kelp::CharString&, Kelp::CharString& name, void*) override {
    const int length = name.length();
    if (length % 3 == 1) name.append("_renamed");
    if (length % 5 == 2) name = "renamed";
    return length % 2;
  }
};

const std::vector<std::string>& goodTrees() {
  static const std::vector<std::string> expected = [] {
    std::vector<std::string> trees;
    for (const std::string& scene : richScenes()) trees.push_back(parsedScene(scene));
    return trees;
  }();
  return expected;
}

}  // namespace

NodeBalance::NodeBalance() : before(livePoolElements()) {}

void NodeBalance::expectRestored(const Shortage& shortage) const {
  const int leaked = livePoolElements() - before;
  if (leaked < 0 || leaked > shortage.failedPoolRequests()) {
    expectSame("pool elements in use", before, before + leaked);
  }
}

void takeDownGoodScenes() { goodTrees(); }

void expectGoodSceneToParse(size_t any) {
  const size_t i = any % richScenes().size();
  expectSame("a good scene", goodTrees()[i], parsedScene(richScenes()[i]));
}

void filterByName(Kelp::TreeParser& parser, Kelp::ProgramAST* program) {
  FilterByName filter;
  parser.doFilter(program, &filter);
}

}  // namespace KelpTest
