// The scenes under tests/scenes and their trees. With KELP_UPDATE_GOLDENS=1 in the environment the
// trees are written instead of compared.
#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>

#include "tests/support/balance.h"
#include "tests/support/scanners.h"
#include "tests/support/sexpression.h"

using namespace Kelp;
using namespace KelpTest;

namespace {

const std::filesystem::path kScenes = std::filesystem::path(KELP_SOURCE_DIR) / "tests" / "scenes";

std::filesystem::path fileOf(const std::string& name, const char* extension) {
  return kScenes / (name + extension);
}

std::string contents(const std::filesystem::path& path) {
  std::ifstream file(path, std::ios::binary);
  std::ostringstream text;
  text << file.rdbuf();
  return text.str();
}

std::vector<std::string> sceneNames() {
  std::vector<std::string> names;
  for (const auto& entry : std::filesystem::directory_iterator(kScenes)) {
    if (entry.path().extension() == ".scene") names.push_back(entry.path().stem().string());
  }
  std::sort(names.begin(), names.end());
  return names;
}

// A file NAME.affix holds "prefix TEXT" or "suffix TEXT" for the parser.
void setAffix(TreeParser& parser, const std::string& name) {
  std::ifstream file(fileOf(name, ".affix"));
  std::string side;
  std::string affix;
  if (!(file >> side >> affix)) return;
  parser.nameAffix = affix.c_str();
  parser.affixIsSuffix = side == "suffix";
}

std::string treeOf(const std::string& name) {
  SourcesReader reader;
  reader.openFile(fileOf(name, ".scene").c_str());
  Scanner scanner(&reader);
  TreeParser parser(&scanner);
  setAffix(parser, name);
  const auto_ast<ProgramAST> program(parser.parseProgram());
  if (program.get() == nullptr) {
    return std::string("error: ") + parser.errorInfo.getErrorText().chars() + '\n';
  }
  std::string text;
  for (const ObjectAST* object : objectsInTextOrder(*program.get())) {
    text += sexpression(*object) + '\n';
  }
  return text;
}

int tokensOf(const std::string& name) {
  SourcesReader reader;
  reader.openFile(fileOf(name, ".scene").c_str());
  WatchedScanner scanner(&reader);
  TreeParser parser(&scanner);
  const auto_ast<ProgramAST> program(parser.parseProgram());
  return scanner.tokens;
}

class Golden : public testing::TestWithParam<std::string> {};

std::string testName(const testing::TestParamInfo<std::string>& info) { return info.param; }

}  // namespace

TEST_P(Golden, TheTreeIsThatOfTheFile) {
  const std::string tree = treeOf(GetParam());
  const char* update = std::getenv("KELP_UPDATE_GOLDENS");
  if (update != nullptr && std::string(update) == "1") {
    std::ofstream(fileOf(GetParam(), ".golden"), std::ios::binary) << tree;
    return;
  }
  EXPECT_EQ(tree, contents(fileOf(GetParam(), ".golden")));
}

TEST_P(Golden, FailsIfItsNameSaysSo) {
  const bool failed = treeOf(GetParam()).starts_with("error: ");
  EXPECT_EQ(failed, GetParam().starts_with("fail_"));
}

TEST_P(Golden, AnEndBehindAnyTokenLeavesNothing) {
  const int tokens = tokensOf(GetParam());
  for (int k = 0; k < tokens; ++k) {
    SCOPED_TRACE(k);
    expectBalanced([&] {
      SourcesReader reader;
      reader.openFile(fileOf(GetParam(), ".scene").c_str());
      CutScanner scanner(&reader, k);
      TreeParser parser(&scanner);
      parser.collectReferenceNames = 1;
      const auto_ast<ProgramAST> program(parser.parseProgram());
      if (program.get() == nullptr) {
        EXPECT_EQ(parser.referenceNames.count, 0);
      }
    });
  }
}

INSTANTIATE_TEST_SUITE_P(Scenes, Golden, testing::ValuesIn(sceneNames()), testName);

TEST(GoldenScenes, AnAffixGivenIsAnAffixWritten) {
  EXPECT_EQ(treeOf("affix"), treeOf("affix_written"));
}
