#include <gtest/gtest.h>

#include "tests/support/allocations.h"
#include "tests/support/rows.h"
#include "tests/support/trees.h"

using namespace Kelp;
using namespace KelpTest;

TEST(ListString, ReadsStringLiterals) {
  expectExpressions({
      {"ListString()", "(lstr)"},
      {"ListString(\"a\")", R"((lstr "a"))"},
      {"ListString(\"a\", \"b c\", \"\")", R"((lstr "a" "b c" ""))"},
      {R"(ListString("\"", "\\"))", R"((lstr "\"" "\\"))"},
  });
}

TEST(ListString, AcceptsNothingButStrings) {
  const std::string error = "error: Expected a string";
  expectExpressions({
      {"ListString(1)", error},
      {"ListString(\"a\", 1)", error},
      {"ListString(a)", error},
      {"ListString(-\"a\")", error},
      {"ListString(,)", error},
      {"ListString(", error},
      {"ListString(\"a\",", error},
  });
}

TEST(ListString, TrailingCommaIsRejected) {
  expectExpressions({{"ListString(\"a\",)", "error: Expected a string"}});
}

TEST(ListString, NeedsItsClosingBracket) {
  const std::string error = "error: ) expected";
  expectExpressions({{"ListString(\"a\"", error},
                     {"ListString(\"a\" \"b\")", error},
                     {"ListString(\"a\" + \"b\")", error},
                     {"ListString(\"a\";", error}});
}

TEST(ListString, KnowsTheDirectoryOfItsFile) {
  for (const char* text : {"ListString(\"a\", \"b\")", "ListString()"}) {
    ParsedExpression parsed(text);
    const auto& list = as<ListTypeExpressionAST<CharString>>(parsed.tree.get());
    EXPECT_STREQ(list.sourceDir.chars(), "scenes");
    EXPECT_EQ(list.parsedForm, 1);
    EXPECT_EQ(list.textLength, 0);
    for (const uint64_t word : list.textRef) EXPECT_EQ(word, 0U);
  }
}

TEST(ListString, LongStringsAreHeldWhole) {
  const std::string text(5000, 'x');
  ParsedExpression parsed("ListString(\"" + text + "\", \"b\")");
  const auto& list = as<ListTypeExpressionAST<CharString>>(parsed.tree.get());
  ASSERT_EQ(list.elements.count, 2);
  EXPECT_EQ(list.elements[0].chars(), text);
}

TEST(ListString, OwnsItsStringsAlone) {
  ParsedExpression parsed("ListString(\"a\", \"b\", \"c\")");
  auto& list = as<ListTypeExpressionAST<CharString>>(parsed.tree.get());
  for (int i = 0; i < 3; ++i) EXPECT_EQ(list.elements[i].buffer->referenceCount, 1);
}

TEST(ListString, AFailedListKeepsNoStrings) {
  TextParser source("ListString(\"a\", \"b\", \"c\"; ListString(\"d\", \"e\", 5");
  EXPECT_THROW(source.started().parseTerm(), InvalidSyntaxException);
  source.parser.scanAheadToken(false);
  const int64_t blocks = liveAllocations();
  EXPECT_THROW(source.parser.parseTerm(), InvalidSyntaxException);
  EXPECT_EQ(liveAllocations(), blocks);
}
