#include <gtest/gtest.h>

#include "tests/support/rows.h"
#include "tests/support/trees.h"

using namespace Kelp;
using namespace KelpTest;

namespace {

std::string expected(const char* bracket, const char* where, const std::string& name) {
  return std::string("error: Expected \"") + bracket + "\" " + where + ' ' + name + " definition";
}

}  // namespace

TEST(Vector, AndColorTakeThreeExpressions) {
  expectExpressions({
      {"Vector(1, 2, 3)", "(vec 1 2 3)"},
      {"Color(1, 2, 3)", "(col 1 2 3)"},
      {"Vector(-1, a.b.x, 2 * c)", R"((vec (neg 1) (idx (prop "a" "b") 0) (* 2 (ref "c"))))"},
      {"Color(Vector(1,2,3), Color(4,5,6), \"s\")", R"((col (vec 1 2 3) (col 4 5 6) "s"))"},
  });
}

TEST(Vector, ErrorsNameTheForm) {
  for (const std::string name : {"Vector", "Color"}) {
    expectExpressions({
        {name + "(1, 2)", expected(",", "in", name)},
        {name + "(1)", expected(",", "in", name)},
        {name + "(1 2 3)", expected(",", "in", name)},
        {name + "(1, 2 3)", expected(",", "in", name)},
        {name + "(1, 2, 3", expected(")", "after", name)},
        {name + "(1, 2, 3, 4)", expected(")", "after", name)},
        {name + "(1, 2, 3,)", expected(")", "after", name)},
        {name + "()", notAToken(")")},
        {name + "(1, 2,)", notAToken(")")},
    });
  }
}

TEST(Vector, TheNodeKnowsItsKind) {
  ParsedExpression vector("Vector(1, 2, 3)");
  EXPECT_EQ(as<VectorExpressionAST>(vector.tree.get()).kind, VALUE_VECTOR);
  ParsedExpression color("Color(1, 2, 3)");
  EXPECT_EQ(as<VectorExpressionAST>(color.tree.get()).kind, VALUE_COLOR);
}

TEST(AColor, TakesFourExpressions) {
  expectExpressions({{"AColor(1, 2, 3, 4)", "(acol 1 2 3 4)"},
                     {"AColor(a, -b, 1 + 2, c.d.alpha)",
                      R"((acol (ref "a") (neg (ref "b")) (+ 1 2) (idx (prop "c" "d") 3)))"}});
}

TEST(AColor, AMissingThirdCommaIsReportedAsTheBracket) {
  expectExpressions({
      {"AColor(1 2 3 4)", expected(",", "in", "AColor")},
      {"AColor(1, 2 3 4)", expected(",", "in", "AColor")},
      {"AColor(1, 2)", expected(",", "in", "AColor")},
      {"AColor(1, 2, 3)", expected(")", "after", "AColor")},
      {"AColor(1, 2, 3 4)", expected(")", "after", "AColor")},
      {"AColor(1, 2, 3, 4", expected(")", "after", "AColor")},
      {"AColor(1, 2, 3, 4, 5)", expected(")", "after", "AColor")},
      {"AColor()", notAToken(")")},
  });
}

TEST(Matrix, TakesThreeRows) {
  expectExpressions({
      {"Matrix(1, 2, 3)", "(mat 1 2 3)"},
      {"Matrix(Vector(1,0,0), a, -b.c)", R"((mat (vec 1 0 0) (ref "a") (neg (prop "b" "c"))))"},
      {"Matrix(1 2 3)", expected(",", "in", "Matrix")},
      {"Matrix(1, 2)", expected(",", "in", "Matrix")},
      {"Matrix(1, 2, 3, 4)", expected(")", "after", "Matrix")},
      {"Matrix(1, 2, 3", expected(")", "after", "Matrix")},
  });
}

TEST(Transform, TakesAMatrixAndAnOffset) {
  expectExpressions({
      {"Transform(m, v)", R"((xf (ref "m") (ref "v")))"},
      {"Transform(Matrix(1,2,3), Vector(4,5,6))", "(xf (mat 1 2 3) (vec 4 5 6))"},
  });
}

TEST(Transform, ErrorsSayInForEveryToken) {
  expectExpressions({
      {"Transform(m)", expected(",", "in", "Transform")},
      {"Transform(m v)", expected(",", "in", "Transform")},
      {"Transform(m, v, w)", expected(")", "in", "Transform")},
      {"Transform(m, v", expected(")", "in", "Transform")},
      {"Transform(m,)", notAToken(")")},
  });
}

TEST(Transform, TheNodeKeepsTheOrderOfTheText) {
  ParsedExpression parsed("Transform(1, 2)");
  const auto& node = as<TransformExpressionAST>(parsed.tree.get());
  EXPECT_EQ(as<NumberExpressionAST>(node.matrix).value, 1.0);
  EXPECT_EQ(as<NumberExpressionAST>(node.offset).value, 2.0);
}
