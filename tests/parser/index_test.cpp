#include <gtest/gtest.h>

#include "tests/support/rows.h"
#include "tests/support/trees.h"

using namespace Kelp;
using namespace KelpTest;

TEST(Index, EveryMemberNameHasItsIndex) {
  struct {
    const char* member;
    int index;
  } const rows[] = {{"x", 0},      {"r", 0}, {"m", 0}, {"y", 1},    {"g", 1},
                    {"offset", 1}, {"z", 2}, {"b", 2}, {"alpha", 3}};
  for (const auto& row : rows) {
    expectExpressions({{std::string("a.b.") + row.member,
                        "(idx (prop \"a\" \"b\") " + std::to_string(row.index) + ")"}});
  }
}

TEST(Index, OtherMembersDoNotExist) {
  const std::string error = "error: expected valid indexing member (x,y,z,r,g,b,alpha,etc.)";
  for (const char* member : {"w", "X", "a", "etc", "xy", "alph", "matrix", "\"w\"", "[0]", ".x",
                             ";", "(x)", "nan", ""}) {
    expectExpressions({{std::string("a.b.") + member, error}});
  }
}

TEST(Index, AnyKindOfTokenWithTheSpellingIsAMember) {
  expectExpressions({{"a.b.\"x\"", R"((idx (prop "a" "b") 0))"},
                     {"a.b.\"alpha\".\"y\"", R"((idx (prop "a" "b") 3 1))"}});
}

TEST(Index, ChainsAreOneNode) {
  expectExpressions({
      {"obj.color.r", R"((idx (prop "obj" "color") 0))"},
      {"obj.color[0]", R"((idx (prop "obj" "color") 0))"},
      {"obj.list[2].y", R"((idx (prop "obj" "list") 2 1))"},
      {"a.b[0][1].x[2].m.offset", R"((idx (prop "a" "b") 0 1 0 2 0 1))"},
      {"a.b[1 + 2 * c]", R"((idx (prop "a" "b") (+ 1 (* 2 (ref "c")))))"},
      {"a.b[c.d[e.f.x]]", R"((idx (prop "a" "b") (idx (prop "c" "d") (idx (prop "e" "f") 0))))"},
      {"a.b[-1]", R"((idx (prop "a" "b") (neg 1)))"},
      {"a.b[0] + 1", R"((+ (idx (prop "a" "b") 0) 1))"},
  });
}

TEST(Index, TheMissingClosingBracketIsReportedAsAnOpeningOne) {
  const std::string error = "error: Expected \"[\"";
  expectExpressions({
      {"a.b[0", error},
      {"a.b[0)", error},
      {"a.b[0, 1]", error},
      {"a.b[0 1]", error},
      {"a.b[0].x[1", error},
  });
}

TEST(Index, NeedsAnExpression) {
  expectExpressions({
      {"a.b[]", notAToken("]")},
      {"a.b[", notAToken("")},
  });
}

TEST(Index, WithoutOneThereIsNoArrayNode) {
  ParsedExpression parsed("a.b");
  EXPECT_NE(dynamic_cast<PropertyReferenceAST*>(parsed.tree.get()), nullptr);
}

TEST(Index, AMemberIsANumber) {
  ParsedExpression parsed("a.b.alpha[7]");
  const auto& array = as<ArrayExpressionAST>(parsed.tree.get());
  EXPECT_STREQ(as<PropertyReferenceAST>(array.base).propertyName.chars(), "b");
  ASSERT_EQ(array.indices.size(), 2U);
  EXPECT_EQ(as<NumberExpressionAST>(array.indices[0]).value, 3.0);
  EXPECT_EQ(as<NumberExpressionAST>(array.indices[1]).value, 7.0);
}
