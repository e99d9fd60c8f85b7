#include <gtest/gtest.h>

#include <climits>

#include "tests/support/rows.h"
#include "tests/support/scanners.h"
#include "tests/support/trees.h"

using namespace Kelp;
using namespace KelpTest;

namespace {

std::string quoted(const std::string& text) { return '"' + text + '"'; }

void expectText(const StringExpressionAST& node, const std::string& text) {
  EXPECT_EQ(node.ownsText, 1);
  EXPECT_EQ(node.text.chars(), text);
  for (const uint64_t word : node.span) EXPECT_EQ(word, 0U);
  EXPECT_EQ(node.spanLength, 0);
}

void expectSpan(const StringExpressionAST& node, const std::string& text) {
  EXPECT_EQ(node.ownsText, 0);
  EXPECT_TRUE(node.text.isNull());
  EXPECT_EQ(node.spanLength, static_cast<int>(text.size()));
  EXPECT_EQ(node.span[1], text.size());
  EXPECT_EQ(std::string(reinterpret_cast<const char*>(node.span[0]), text.size()), text);
  EXPECT_NE(node.span[2], 0U);
}

// The node that a string token with this overflow count becomes.
void withStringToken(int overflowCount, void (*check)(const StringExpressionAST&)) {
  SourcesReader reader;
  reader.openText("", 0, "folder/test.scene");
  ListedScanner scanner(&reader, {{TOKEN_STRING, "spelling", overflowCount, {7, 8, 9}}});
  TreeParser parser(&scanner);
  parser.scanAheadToken(false);
  const auto_ast<ExpressionAST> tree(parser.parseTerm());
  const auto& node = as<StringExpressionAST>(tree.get());
  EXPECT_STREQ(node.directory.chars(), "folder");
  check(node);
}

}  // namespace

TEST(String, ReadsLiterals) {
  expectExpressions({
      {"\"\"", "\"\""},
      {"\"text\"", "\"text\""},
      {R"("a \"b\" \\ \n")", R"("a \"b\" \\ \\n")"},
      {"\"two\nlines\"", "\"two\nlines\""},
      {"\"a\" \"b\"", "rest: b"},
  });
}

TEST(String, UpTo1023CharactersAreHeldAsText) {
  for (const size_t length : {0U, 1U, 5U, 1022U, 1023U}) {
    const std::string text(length, 'x');
    ParsedExpression parsed(quoted(text));
    expectText(as<StringExpressionAST>(parsed.tree.get()), text);
  }
}

TEST(String, LongerOnesAreHeldByTheirRecord) {
  for (const size_t length : {1024U, 1025U, 5000U, 100000U}) {
    const std::string text(length, 'y');
    ParsedExpression parsed(quoted(text));
    expectSpan(as<StringExpressionAST>(parsed.tree.get()), text);
  }
}

TEST(String, KnowsTheDirectoryOfItsFile) {
  for (const std::string& text : {std::string("short"), std::string(2000, 'z')}) {
    ParsedExpression parsed(quoted(text));
    EXPECT_STREQ(as<StringExpressionAST>(parsed.tree.get()).directory.chars(), "scenes");
  }
}

TEST(String, TheOverflowDecidesTheForm) {
  const auto isText = [](const StringExpressionAST& node) { expectText(node, "spelling"); };
  withStringToken(0, isText);
  withStringToken(-1, isText);
  withStringToken(1, [](const StringExpressionAST& node) {
    EXPECT_EQ(node.ownsText, 0);
    EXPECT_TRUE(node.text.isNull());
    EXPECT_EQ(node.span[0], 7U);
    EXPECT_EQ(node.span[1], 8U);
    EXPECT_EQ(node.span[2], 9U);
    EXPECT_EQ(node.spanLength, 1024);
  });
}

TEST(String, TheLengthOfAHugeOverflowWraps) {
  withStringToken(
      INT_MAX, [](const StringExpressionAST& node) { EXPECT_EQ(node.spanLength, INT_MIN + 1022); });
}
