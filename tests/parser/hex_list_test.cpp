#include <gtest/gtest.h>

#include "tests/support/rows.h"
#include "tests/support/scanners.h"
#include "tests/support/trees.h"

using namespace Kelp;
using namespace KelpTest;

namespace {

// Parses NAME(token) from a list of tokens whose argument carries the given text and words.
struct ListedCall {
  ListedCall(const char* name, TOKENTYPE argument, const char* text)
      : scanner(&reader, {{TOKEN_IDENTIFIER, name},
                          {TOKEN_LPAREN, "("},
                          {argument, text, 5, {11, 12, 13}},
                          {TOKEN_RPAREN, ")"}}) {
    reader.openText("", 0, "test");
    parser.scanAheadToken(false);
    tree.reset(parser.parseTerm());
  }

  SourcesReader reader;
  ListedScanner scanner;
  TreeParser parser{&scanner};
  auto_ast<ExpressionAST> tree{nullptr};
};

template <class T>
void expectHexList(ExpressionAST* tree, int textLength) {
  const auto& list = as<ListTypeExpressionAST<T>>(tree);
  EXPECT_EQ(list.parsedForm, 0);
  EXPECT_EQ(list.elements.count, 0);
  EXPECT_EQ(list.elements.data, nullptr);
  EXPECT_TRUE(list.sourceDir.isNull());
  EXPECT_EQ(list.textLength, textLength);
}

template <class T>
void expectListedHexList(const char* name) {
  SCOPED_TRACE(name);
  ListedCall call(name, TOKEN_STRING, "abc");
  expectHexList<T>(call.tree.get(), 3);
  const auto& list = as<ListTypeExpressionAST<T>>(call.tree.get());
  for (uint64_t i = 0; i < 3; ++i) EXPECT_EQ(list.textRef[i], 11 + i);
  EXPECT_EQ(call.scanner.calls, "sskss");
}

}  // namespace

TEST(HexList, KeepsItsTextUndecoded) {
  expectExpressions({
      {"ListVectorHex(\"00\")", R"((lvechex "00"))"},
      {"ListIntHex(\"0123456789abcdef\")", R"((linthex "0123456789abcdef"))"},
      {"ListFloatHex(\"not digits\")", R"((lflthex "not digits"))"},
      {"ListColorHex(\"\")", R"((lcolhex ""))"},
      {"-ListIntHex(\"00\") + 1", R"((+ (neg (linthex "00")) 1))"},
  });
}

TEST(HexList, TakesExactlyOneToken) {
  for (const std::string name : {"ListVectorHex", "ListIntHex", "ListFloatHex", "ListColorHex"}) {
    const std::string error = "error: Expected \")\" after " + name + " definition";
    expectExpressions({
        {name + "(\"00\" \"11\")", error},
        {name + "(\"00\", \"11\")", error},
        {name + "(\"00\"", error},
        {name + "(-1)", error},
        {name + "()", error},
        {name + "(", error},
    });
  }
}

TEST(HexList, TakesTheTextFromTheScannerInSkipMode) {
  expectListedHexList<Vector>("ListVectorHex");
  expectListedHexList<int>("ListIntHex");
  expectListedHexList<float>("ListFloatHex");
  expectListedHexList<Color>("ListColorHex");
}

TEST(HexList, BorrowsTheCharactersOfTheSource) {
  const std::string digits(5000, 'f');
  ParsedExpression parsed("ListFloatHex(\"" + digits + "\")");
  expectHexList<float>(parsed.tree.get(), 0);
  const auto& list = as<ListTypeExpressionAST<float>>(parsed.tree.get());
  EXPECT_EQ(list.textRef[1], digits.size());
  EXPECT_EQ(std::string(reinterpret_cast<const char*>(list.textRef[0]), digits.size()), digits);
}

TEST(HexList, AnyKindOfTokenIsAnArgument) {
  for (const char* text : {"ListIntHex(1234)", "ListIntHex(name)"}) {
    ParsedExpression parsed(text);
    expectHexList<int>(parsed.tree.get(), 4);
    EXPECT_EQ(as<ListTypeExpressionAST<int>>(parsed.tree.get()).textRef[0], 0U);
  }
}

TEST(TransformHex, KeepsItsTextUndecoded) {
  expectExpressions(
      {{"TransformHex(\"0011\")", R"((xfhex "0011"))"}, {"TransformHex(\"\")", R"((xfhex ""))"}});
}

TEST(TransformHex, TakesExactlyOneToken) {
  const std::string error = "error: Expected \")\" after TransformHex definition";
  expectExpressions({
      {"TransformHex(\"00\" \"11\")", error},
      {"TransformHex(\"00\"", error},
      {"TransformHex(-1)", error},
      {"TransformHex()", error},
      {"TransformHex(", error},
  });
}

TEST(TransformHex, TakesTheTextFromTheScannerInNormalMode) {
  ListedCall call("TransformHex", TOKEN_STRING, "abcd");
  const auto& node = as<TransformHexExpressionAST>(call.tree.get());
  EXPECT_EQ(node.count, 1);
  EXPECT_EQ(node.textLength, 4);
  for (uint64_t i = 0; i < 3; ++i) EXPECT_EQ(node.textRef[i], 11 + i);
  EXPECT_EQ(call.scanner.calls, "sssss");
}

TEST(TransformHex, AnyKindOfTokenIsAnArgument) {
  ListedCall call("TransformHex", TOKEN_SEMICOLON, ";");
  EXPECT_EQ(as<TransformHexExpressionAST>(call.tree.get()).textLength, 1);
}

TEST(TransformHex, RefersToShortTextsToo) {
  ParsedExpression parsed("TransformHex(\"abcde\")");
  const auto& node = as<TransformHexExpressionAST>(parsed.tree.get());
  EXPECT_EQ(node.textLength, 5);
  EXPECT_EQ(std::string(reinterpret_cast<const char*>(node.textRef[0]), node.textRef[1]), "abcde");
}

TEST(TransformHex, ARefusedTokenBeforeDoesNotCount) {
  // Refusing a token terminates its text, which must not show in the next argument's length.
  ParsedExpression parsed("List(a, TransformHex(\"abcde\"))");
  const auto& list = as<ListExpressionAST>(parsed.tree.get());
  EXPECT_EQ(as<TransformHexExpressionAST>(list.tail->expr).textLength, 5);
}
