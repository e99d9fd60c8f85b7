// Holds docs/language.md to what the library does: its examples, errors, functions, messages and
// the grammar.
#include <gtest/gtest.h>

#include <filesystem>
#include <regex>

#include "kelp/ast/builtinfunctions.h"
#include "kelp/parser/messages.h"
#include "kelp/scene.h"
#include "tests/docs/markdown.h"

using KelpTest::Block;
using KelpTest::blocksOf;
using KelpTest::projectFile;

namespace {

// The name lets examples include files of examples/.
Kelp::Scene sceneOf(const Block& block) {
  return Kelp::Scene::fromText(block.text, KELP_SOURCE_DIR "/examples/example.scene");
}

std::string place(const Block& block) {
  return "docs/language.md:" + std::to_string(block.line) + '\n' + block.text;
}

const std::string& language() {
  static const std::string text = projectFile("docs/language.md");
  return text;
}

bool contains(const std::string& text, const std::string& part) {
  return text.find(part) != std::string::npos;
}

}  // namespace

TEST(LanguageDocument, ExamplesParse) {
  const std::vector<Block> blocks = blocksOf(language(), "scene");
  EXPECT_GT(blocks.size(), 10U);
  for (const Block& block : blocks) {
    const Kelp::Scene scene = sceneOf(block);
    EXPECT_TRUE(scene) << place(block) << scene.error();
  }
}

TEST(LanguageDocument, ErrorExamplesFailWithTheTextInTheirFirstLine) {
  const std::vector<Block> blocks = blocksOf(language(), "scene-error");
  EXPECT_GT(blocks.size(), 10U);
  for (const Block& block : blocks) {
    const std::string mark = "// error:";
    ASSERT_TRUE(block.text.starts_with(mark)) << place(block);
    std::string expected = block.text.substr(mark.size(), block.text.find('\n') - mark.size());
    if (!expected.empty()) expected.erase(0, 1);
    EXPECT_EQ(sceneOf(block).error().message, expected) << place(block);
  }
}

TEST(LanguageDocument, NamesEveryMessage) {
  const Kelp::Message messages[] = {
#define KELP_MESSAGE(identifier, before, after) Kelp::Message::identifier,
#include "kelp/parser/messages.def"
#undef KELP_MESSAGE
  };
  for (const Kelp::Message message : messages) {
    const Kelp::CharString text = Kelp::messageText(message, "NAME");
    if (text.isEmpty()) continue;  // the document speaks of an empty text
    EXPECT_TRUE(contains(language(), '`' + std::string(text.chars()) + '`')) << text.chars();
  }
}

TEST(LanguageDocument, NamesEveryFunctionWithItsArguments) {
  int found = 0;
  for (int id = 1; const auto* function = Kelp::BuiltinFunctionAST::findFunction(id); ++id) {
    const std::string row =
        "| `" + std::string(function->name) + "` | " + std::to_string(function->numArgs) + " |";
    EXPECT_TRUE(contains(language(), row)) << row;
    ++found;
  }
  EXPECT_EQ(found, 32);
}

TEST(LanguageDocument, GrammarHasTheProductionsOfTheParser) {
  std::string grammar;
  for (const Block& block : blocksOf(language(), "grammar")) grammar += block.text;
  const std::regex production("\n  // (\\w+ := [^\n]*)");
  int found = 0;
  for (const auto& entry : std::filesystem::directory_iterator(KELP_SOURCE_DIR "/kelp/parser")) {
    if (!entry.path().filename().string().starts_with("grammar_")) continue;
    const std::string source = projectFile("kelp/parser/" + entry.path().filename().string());
    for (std::sregex_iterator at(source.begin(), source.end(), production), end; at != end; ++at) {
      EXPECT_TRUE(contains('\n' + grammar, '\n' + at->str(1) + '\n')) << at->str(1);
      ++found;
    }
  }
  EXPECT_GE(found, 10);
}
