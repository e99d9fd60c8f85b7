// The two slots that tokens are scanned into, again and again.
#include <gtest/gtest.h>

#include "kelp/parser/treeparser.h"
#include "tests/support/parsing.h"

using namespace Kelp;

namespace {

// Takes what it finds in the slot as its own doing.
class LazyScanner final : public Scanner {
 public:
  using Scanner::Scanner;

  void scan(Token& token) override { token.text += 'a'; }
  void skipScan(Token& token) override { scan(token); }
};

}  // namespace

TEST(Slots, CurrentOneIsEmptiedBeforeItIsFilled) {
  SourcesReader reader;
  LazyScanner scanner(&reader);
  TreeParser parser(&scanner);
  for (int i = 0; i < 3; ++i) {
    parser.scanAheadToken(false);
    EXPECT_EQ(parser.tokens[0].text.count, 1);
    EXPECT_EQ(parser.tokens[0].type, TOKEN_END);
    parser.tokens[0].overflowCount = 5;
  }
  parser.scanAheadToken(false);
  EXPECT_EQ(parser.tokens[0].overflowCount, 0);
}

TEST(Slots, TokenThatNoObjectHasThereIsNotTerminated) {
  for (const char* text : {"A b xyz", "A b { p xyz }", "A b { p = 1 xyz }"}) {
    KelpTest::TextParser source(text);
    EXPECT_EQ(source.parser.parseProgram(), nullptr);
    EXPECT_EQ(source.parser._currentToken().text.count, 3) << text;
  }
}
