#include <gtest/gtest.h>

#include "tests/support/rows.h"
#include "tests/support/trees.h"

using namespace Kelp;
using namespace KelpTest;

TEST(ListVector, AndListColorReadConstantTriples) {
  expectExpressions({
      {"ListVector()", "(lvec)"},
      {"ListColor()", "(lcol)"},
      {"ListVector(Vector(1,2,3), Vector(4,5,6))", "(lvec (1 2 3) (4 5 6))"},
      {"ListVector(Vector(1,2,3),)", "(lvec (1 2 3))"},
      {"ListVector(Vector(-1,+2,-+3))", "(lvec (-1 2 -3))"},
      {"ListColor(Color(0.1,0.5,1), Color(1,1,1),)", "(lcol (0.100000001 0.5 1) (1 1 1))"},
  });
}

TEST(ListVector, TheKeywordMustFitTheList) {
  const std::string vectorError = "error: Expected Vector keyword in ListVector definition";
  const std::string colorError = "error: Expected Color keyword in ListColor definition";
  expectExpressions({
      {"ListVector(Color(1,2,3))", vectorError},
      {"ListVector(1,2,3)", vectorError},
      {"ListVector(", vectorError},
      {"ListVector(,)", vectorError},
      {"ListVector(-Vector(1,2,3))", vectorError},
      {"ListVector(Vector(1,2,3),", vectorError},
      {"ListVector(Vector(1,2,3),,", vectorError},
      {"ListVector(vector(1,2,3))", vectorError},
      {"ListColor(Vector(1,2,3))", colorError},
      {"ListColor(Color(1,2,3), Vector(1,2,3))", colorError},
      {"ListColor(", colorError},
  });
}

TEST(ListVector, AnyKindOfTokenWithTheSpellingIsTheKeyword) {
  expectExpressions({{"ListVector(\"Vector\"(1,2,3))", "(lvec (1 2 3))"},
                     {"ListColor(\"Color\"(1,2,3))", "(lcol (1 2 3))"}});
}

TEST(ListVector, ErrorsInElements) {
  struct {
    std::string list;
    std::string keyword;
  } const forms[] = {{"ListVector(", "Vector"}, {"ListColor(", "Color"}};
  for (const auto& form : forms) {
    const std::string begin = form.list + form.keyword;
    expectExpressions({
        {begin + " 1,2,3)", "error: \"(\" expected after " + form.keyword + " keyword"},
        {begin, "error: \"(\" expected after " + form.keyword + " keyword"},
        {begin + "(1 2 3))", "error: \",\" expected"},
        {begin + "(1, 2 3))", "error: \",\" expected"},
        {begin + "(1, 2))", "error: \",\" expected"},
        {begin + "(1 + 2, 3, 4))", "error: \",\" expected"},
        {begin + "(1, 2, 3, 4))", "error: \")\" expected"},
        {begin + "(1, 2, 3", "error: \")\" expected"},
        {begin + "(a, 0, 0))", "error: Expected a number literal"},
        {begin + "(1, (2), 3))", "error: Expected a number literal"},
        {begin + "(1, 2,))", "error: Expected a number literal"},
        {begin + "())", "error: Expected a number literal"},
    });
  }
}

TEST(ListVector, TheMissingClosingBracketHasNoMessage) {
  expectExpressions({
      {"ListVector(Vector(1,2,3)", "error: "},
      {"ListVector(Vector(1,2,3) Vector(4,5,6))", "error: "},
      {"ListVector(Vector(1,2,3);", "error: "},
      {"ListColor(Color(1,2,3)", "error: "},
      {"ListColor(Color(1,2,3)]", "error: "},
  });
}

TEST(ListVector, TheEmptyMessageIsNotNull) {
  ParsedScene scene("A a { x = ListVector(Vector(1,2,3); }");
  EXPECT_EQ(scene.program.get(), nullptr);
  const CharString& text = scene.source.parser.errorInfo.getErrorText();
  ASSERT_FALSE(text.isNull());
  EXPECT_STREQ(text.chars(), "");
}

TEST(ListVector, TheNodeHoldsNothingButItsElements) {
  ParsedExpression parsed("ListVector(Vector(1,2,3), Vector(4,5,6))");
  const auto& list = as<ListTypeExpressionAST<Vector>>(parsed.tree.get());
  EXPECT_EQ(list.parsedForm, 1);
  ASSERT_EQ(list.elements.count, 2);
  EXPECT_EQ(list.elements[1].x, 4.0F);
  EXPECT_EQ(list.elements[1].y, 5.0F);
  EXPECT_EQ(list.elements[1].z, 6.0F);
  EXPECT_EQ(list.textLength, 0);
  for (const uint64_t word : list.textRef) EXPECT_EQ(word, 0U);
  EXPECT_TRUE(list.sourceDir.isNull());
}

TEST(ListVector, ManyElementsKeepTheirOrder) {
  std::string text = "ListColor(";
  for (int i = 0; i < 2500; ++i) text += "Color(" + std::to_string(i) + ",1,2),";
  ParsedExpression parsed(text + ")");
  const auto& list = as<ListTypeExpressionAST<Color>>(parsed.tree.get());
  ASSERT_EQ(list.elements.count, 2500);
  for (int i = 0; i < 2500; ++i) ASSERT_EQ(list.elements[i].r, static_cast<float>(i));
}
