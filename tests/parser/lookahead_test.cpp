// What rules make of a token behind which nothing was read.
#include <gtest/gtest.h>

#include "tests/support/sexpression.h"
#include "tests/support/trees.h"

using namespace Kelp;

TEST(Lookahead, IdentifierWithoutOneIsAReference) {
  KelpTest::TextParser source("");
  TreeParser& parser = source.parser;
  // As a tool that fills in tokens of its own would leave it.
  parser.tokens[0].type = TOKEN_IDENTIFIER;
  for (const char letter : {'s', 'i', 'n'}) parser.tokens[0].text += letter;
  parser.tokens[1].type = TOKEN_LPAREN;
  parser.lookahead = -1;
  const auto_ast<ExpressionAST> term(parser.parseTerm());
  EXPECT_STREQ(KelpTest::as<ObjectReferenceAST>(term.get()).name.chars(), "sin");
}
