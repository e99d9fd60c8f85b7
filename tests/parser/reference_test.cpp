#include <gtest/gtest.h>

#include <vector>

#include "tests/support/rows.h"
#include "tests/support/sexpression.h"
#include "tests/support/trees.h"

using namespace Kelp;
using namespace KelpTest;

namespace {

std::string withAffix(const char* affix, bool suffix, std::string_view text) {
  TextParser source(text);
  source.parser.nameAffix = affix;
  source.parser.affixIsSuffix = suffix;
  const auto_ast<ExpressionAST> tree(source.started().parseExpression());
  return sexpression(tree.get());
}

std::vector<std::string> recordedNames(const TreeParser& parser) {
  std::vector<std::string> names;
  for (int i = 0; i < parser.referenceNames.count; ++i) {
    names.emplace_back(parser.referenceNames.data[i]->chars());
  }
  return names;
}

void collect(TreeParser& parser) { parser.collectReferenceNames = 1; }

}  // namespace

TEST(Reference, ToObjectsPropertiesAndRuntimeValues) {
  expectExpressions({
      {"a", R"((ref "a"))"},
      {"a.b", R"((prop "a" "b"))"},
      {"a::b", R"((rt "a" "b"))"},
      {"a : : b", R"((rt "a" "b"))"},
      {"a . b", R"((prop "a" "b"))"},
      {"a@b|c$1", R"((ref "a@b|c$1"))"},
  });
}

TEST(Reference, ErrorsInReferences) {
  expectExpressions({
      {"a:b", "error: Expected \":\" to form Runtime value reference"},
      {"a:", "error: Expected \":\" to form Runtime value reference"},
      {"a::1", "error: Identifier expected"},
      {"a::\"b\"", "error: Identifier expected"},
      {"a::", "error: Identifier expected"},
      {"a:::b", "error: Identifier expected"},
      {"a.", "error: Identifier expected"},
      {"a.\"b\"", "error: Identifier expected"},
      {"a.(b)", "error: Identifier expected"},
      {"a..b", "error: Identifier expected"},
      {"a.nan", "error: Identifier expected"},
  });
}

TEST(Reference, OnlyPropertiesTakeIndices) {
  expectExpressions({{"a[0]", "rest: ["}, {"a::b[0]", "rest: ["}, {"a::b.c", "rest: ."}});
}

TEST(Reference, TheAffixIsJoinedToTheObjectOnly) {
  struct {
    const char* affix;
    bool suffix;
    const char* expected[3];
  } const rows[] = {
      {"p_", false, {R"((ref "p_a"))", R"((prop "p_a" "b"))", R"((rt "p_a" "b"))"}},
      {"_s", true, {R"((ref "a_s"))", R"((prop "a_s" "b"))", R"((rt "a_s" "b"))"}},
      {"", true, {R"((ref "a"))", R"((prop "a" "b"))", R"((rt "a" "b"))"}},
      {nullptr, false, {R"((ref "a"))", R"((prop "a" "b"))", R"((rt "a" "b"))"}},
  };
  for (const auto& row : rows) {
    EXPECT_EQ(withAffix(row.affix, row.suffix, "a"), row.expected[0]);
    EXPECT_EQ(withAffix(row.affix, row.suffix, "a.b"), row.expected[1]);
    EXPECT_EQ(withAffix(row.affix, row.suffix, "a::b"), row.expected[2]);
  }
}

TEST(Reference, TheAffixLeavesCallsAndMembersAlone) {
  EXPECT_EQ(withAffix("p_", false, "sin(a.b.x)"), R"((call "sin" (idx (prop "p_a" "b") 0)))");
  EXPECT_EQ(withAffix("p_", false, "Vector(1,2,3)"), "(vec 1 2 3)");
}

TEST(Reference, IsNotResolvedByTheParse) {
  ParsedExpression object("a");
  EXPECT_EQ(as<ObjectReferenceAST>(object.tree.get()).object, nullptr);
  ParsedExpression property("a.b");
  EXPECT_EQ(as<PropertyReferenceAST>(property.tree.get()).resolved, nullptr);
}

TEST(ReferenceNames, AreRecordedInTextOrderWithTheAffix) {
  const ParsedScene scene(
      "A a { x = b + c.d[e.f] * g::h; y = List(i, -j.k.x, a); z = sin(l); }"
      "A b { x = Vector(m.n, o, p); }",
      [](TreeParser& parser) {
        collect(parser);
        parser.nameAffix = "p_";
      });
  EXPECT_EQ(recordedNames(scene.source.parser),
            (std::vector<std::string>{"p_b", "p_c", "p_e", "p_g", "p_i", "p_j", "p_a", "p_l", "p_m",
                                      "p_o", "p_p"}));
}

TEST(ReferenceNames, PointIntoTheNodes) {
  TextParser source("a + b.c + d::e");
  collect(source.parser);
  const auto_ast<ExpressionAST> tree(source.started().parseExpression());
  const auto& outer = as<BinaryExpressionAST>(tree.get());
  const auto& inner = as<BinaryExpressionAST>(outer.left);
  ASSERT_EQ(source.parser.referenceNames.count, 3);
  CharString** names = source.parser.referenceNames.data;
  EXPECT_EQ(names[0], &as<ObjectReferenceAST>(inner.left).name);
  EXPECT_EQ(names[1], &as<PropertyReferenceAST>(inner.right).objectName);
  EXPECT_EQ(names[2], &as<RuntimeValueAST>(outer.right).objectName);
}

TEST(ReferenceNames, AreNotRecordedUnlessAskedFor) {
  const ParsedScene scene("A a { x = b + c.d + e::f; }");
  EXPECT_EQ(scene.source.parser.referenceNames.count, 0);
}

TEST(ReferenceNames, OfMergedObjectsStayGood) {
  const ParsedScene scene("A a { x = b; } A a { x = c.d; y = e::f; }", collect);
  EXPECT_EQ(scene.program->numObjects, 1);
  EXPECT_EQ(recordedNames(scene.source.parser), (std::vector<std::string>{"b", "c", "e"}));
}

TEST(ReferenceNames, AFailedParseTakesItsOwnBack) {
  CharString earlier("earlier");
  ParsedScene scene("A a { x = b; y = c.d; } B b { x = e::f + g; y = h", [&](TreeParser& parser) {
    collect(parser);
    parser.referenceNames += &earlier;
  });
  EXPECT_EQ(scene.program.get(), nullptr);
  EXPECT_EQ(recordedNames(scene.source.parser), (std::vector<std::string>{"earlier"}));
}

TEST(ReferenceNames, AFailedObjectOrPropertyTakesItsOwnBack) {
  TextParser objects("A a { x = b; } A b { x = c; y = d +; }");
  collect(objects.parser);
  const auto_ast<ObjectAST> object(objects.started().parseObject());
  EXPECT_THROW(objects.parser.parseObject(), InvalidSyntaxException);
  EXPECT_EQ(recordedNames(objects.parser), (std::vector<std::string>{"b"}));

  TextParser properties("x = a; y = b + c.d ]");
  collect(properties.parser);
  const auto_ast<PropertyAST> property(properties.started().parseProperty());
  EXPECT_THROW(properties.parser.parseProperty(), InvalidSyntaxException);
  EXPECT_EQ(recordedNames(properties.parser), (std::vector<std::string>{"a"}));
}
