#include "kelp/source/token.h"

#include <gtest/gtest.h>

#include <string>

using namespace Kelp;

namespace {

void setText(Token& token, std::string_view text) {
  token.text.count = 0;
  token.text.append(text.data(), static_cast<int64_t>(text.size()));
}

}  // namespace

TEST(Token, CodesAreTheOnesThatHostsKnow) {
  EXPECT_EQ(TOKEN_NUMBER, 0);
  EXPECT_EQ(TOKEN_LPAREN, 2);
  EXPECT_EQ(TOKEN_RPAREN, 3);
  EXPECT_EQ(TOKEN_END, 5);
  EXPECT_EQ(TOKEN_DOT, 6);
  EXPECT_EQ(TOKEN_IDENTIFIER, 7);
  EXPECT_EQ(TOKEN_LBRACE, 8);
  EXPECT_EQ(TOKEN_RBRACE, 9);
  EXPECT_EQ(TOKEN_STRING, 10);
  EXPECT_EQ(TOKEN_SEMICOLON, 11);
  EXPECT_EQ(TOKEN_EQUALS, 12);
  EXPECT_EQ(TOKEN_PLUS, 13);
  EXPECT_EQ(TOKEN_MINUS, 14);
  EXPECT_EQ(TOKEN_MULTIPLY, 15);
  EXPECT_EQ(TOKEN_DIVIDE, 16);
  EXPECT_EQ(TOKEN_COMMA, 17);
  EXPECT_EQ(TOKEN_LBRACKET, 18);
  EXPECT_EQ(TOKEN_RBRACKET, 19);
  EXPECT_EQ(TOKEN_COLON, 21);
  EXPECT_EQ(TOKEN_UNKNOWN, 22);
}

// Hosts map tokens, so the order and the sizes of the fields are theirs to rely on.
TEST(Token, FieldsStandInTheStatedOrder) {
  const Token token;
  const auto offsetOf = [&token](const void* field) {
    return static_cast<const char*>(field) - reinterpret_cast<const char*>(&token);
  };
  EXPECT_EQ(sizeof(TOKENTYPE), 4U);
  EXPECT_EQ(offsetOf(&token.type), 0);
  EXPECT_EQ(offsetOf(&token.overflowCount), 4);
  EXPECT_EQ(offsetOf(&token.text), 8);
  EXPECT_EQ(offsetOf(&token.overflow), 8 + static_cast<int>(sizeof token.text));
  EXPECT_EQ(sizeof(Token::overflow), 24U);
}

TEST(Token, FreshOneIsTheEmptyEnd) {
  const Token token;
  EXPECT_EQ(token.type, TOKEN_END);
  EXPECT_EQ(token.overflowCount, 0);
  EXPECT_EQ(token.text.count, 0);
  EXPECT_EQ(token.text.data, nullptr);
  for (const uint64_t word : token.overflow) EXPECT_EQ(word, 0U);
}

TEST(Token, GetSpellingAppendsOneNulACall) {
  Token token;
  setText(token, "kelp");
  EXPECT_STREQ(token.getSpelling(), "kelp");
  EXPECT_EQ(token.text.count, 5);
  EXPECT_STREQ(token.getSpelling(), "kelp");
  EXPECT_EQ(token.text.count, 6);
}

TEST(Token, GetSpellingOfNoTextIsTheEmptyString) {
  Token token;
  EXPECT_STREQ(token.getSpelling(), "");
  EXPECT_EQ(token.text.count, 1);
}

TEST(Token, GetSpellingGrowsAFullTextByTheTablesStep) {
  Token token;
  setText(token, std::string(99, 'a'));
  EXPECT_EQ(token.text.capacity, 100);
  token.getSpelling();
  EXPECT_EQ(token.text.capacity, 100);
  EXPECT_EQ(std::string(token.getSpelling()), std::string(99, 'a'));
  EXPECT_EQ(token.text.capacity, 200);
}

TEST(Token, ResetEmptiesTheSlotAndKeepsItsArray) {
  Token token;
  setText(token, "kelp");
  token.type = TOKEN_STRING;
  token.overflowCount = 7;
  for (uint64_t& word : token.overflow) word = 9;
  const char* array = token.text.data;
  const int capacity = token.text.capacity;
  token.reset();
  EXPECT_EQ(token.type, TOKEN_END);
  EXPECT_EQ(token.overflowCount, 0);
  EXPECT_EQ(token.text.count, 0);
  EXPECT_EQ(token.text.data, array);
  EXPECT_EQ(token.text.capacity, capacity);
  for (const uint64_t word : token.overflow) EXPECT_EQ(word, 0U);
}

TEST(TokenSpelling, EveryTypeHasOneAndOtherCodesHaveNone) {
  EXPECT_STREQ(tokenSpelling(TOKEN_NUMBER), "<number>");
  EXPECT_STREQ(tokenSpelling(TOKEN_END), "<end of input>");
  EXPECT_STREQ(tokenSpelling(TOKEN_COLON), ":");
  for (const int code : {-1, 1, 4, 20, 23, 1000}) EXPECT_STREQ(tokenSpelling(code), "") << code;
}
