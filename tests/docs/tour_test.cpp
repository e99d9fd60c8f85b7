// Holds docs/tour.md to what the library makes of its scene.
#include <gtest/gtest.h>

#include <algorithm>
#include <sstream>

#include "tests/docs/markdown.h"
#include "tests/support/parsing.h"

using KelpTest::blocksOf;
using KelpTest::projectFile;

namespace {

// The only block of that language.
std::string blockOf(std::string_view language) {
  const std::vector<KelpTest::Block> blocks = blocksOf(projectFile("docs/tour.md"), language);
  return blocks.size() == 1 ? blocks[0].text : "";
}

// Line ends and indents become single blanks.
std::string onOneLine(const std::string& text) {
  std::istringstream words(text);
  std::string line;
  for (std::string word; words >> word;) line += (line.empty() ? "" : " ") + word;
  return line;
}

std::string tokensOf(const std::string& text) {
  KelpTest::TextParser source(text);
  std::string tokens;
  Kelp::Token token;
  do {
    source.scanner.scan(token);
    tokens += std::to_string(token.type) + ':' + token.getSpelling() + ' ';
  } while (token.type != Kelp::TOKEN_END);
  return onOneLine(tokens);
}

}  // namespace

TEST(TourDocument, SceneHasFiveLinesAndTheTokensListed) {
  const std::string scene = blockOf("scene");
  EXPECT_EQ(std::count(scene.begin(), scene.end(), '\n'), 5);
  EXPECT_EQ(tokensOf(scene), onOneLine(blockOf("tokens")));
}

TEST(TourDocument, SceneHasTheTreeShown) {
  EXPECT_EQ(KelpTest::parsedScene(blockOf("scene")), onOneLine(blockOf("tree")));
}
