// Spellings at the edges of the classes of characters and tokens.
#include <gtest/gtest.h>

#include <string>

#include "tests/support/tokenlist.h"

using KelpTest::tokensOf;

TEST(Spellings, EveryTokenHasTheStatedOne) {
  const struct {
    Kelp::TOKENTYPE type;
    const char* spelling;
  } rows[] = {
      {Kelp::TOKEN_NUMBER, "<number>"}, {Kelp::TOKEN_LPAREN, "("},
      {Kelp::TOKEN_RPAREN, ")"},        {Kelp::TOKEN_END, "<end of input>"},
      {Kelp::TOKEN_DOT, "."},           {Kelp::TOKEN_IDENTIFIER, "<identifier>"},
      {Kelp::TOKEN_LBRACE, "{"},        {Kelp::TOKEN_RBRACE, "}"},
      {Kelp::TOKEN_STRING, "<string>"}, {Kelp::TOKEN_SEMICOLON, ";"},
      {Kelp::TOKEN_EQUALS, "="},        {Kelp::TOKEN_PLUS, "+"},
      {Kelp::TOKEN_MINUS, "-"},         {Kelp::TOKEN_MULTIPLY, "*"},
      {Kelp::TOKEN_DIVIDE, "/"},        {Kelp::TOKEN_COMMA, ","},
      {Kelp::TOKEN_LBRACKET, "["},      {Kelp::TOKEN_RBRACKET, "]"},
      {Kelp::TOKEN_COLON, ":"},         {Kelp::TOKEN_UNKNOWN, "<unknown character>"},
  };
  for (const auto& row : rows) EXPECT_STREQ(Kelp::tokenSpelling(row.type), row.spelling);
}

TEST(Spellings, LettersOfASpecialValueEndAtWhatIsNone) {
  EXPECT_EQ(tokensOf("1.#INF_x"), "num:1.#INF id:_x");
  EXPECT_EQ(tokensOf("1.#Zz[1]"), "num:1.#Zz [ num:1 ]");
  EXPECT_EQ(tokensOf("1.#aA@"), "num:1.#aA ?:@");
  EXPECT_EQ(tokensOf("1.#q{"), "num:1.#q {");
}
