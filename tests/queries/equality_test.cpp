#include "kelp/queries/equality.h"

#include <gtest/gtest.h>

#include <string>

#include "tests/support/smallstack.h"
#include "tests/support/trees.h"

using namespace Kelp;
using KelpTest::ParsedExpression;

namespace {

// Each means something else than all the others.
constexpr const char* kValues[] = {
    "1",
    "2",
    "0",
    "1e300",
    "-1",
    "-2",
    "-a",
    "\"text\"",
    "\"texts\"",
    "\"\"",
    "a",
    "b",
    "a.x",
    "a.y",
    "b.x",
    "a::x",
    "a::y",
    "b::x",
    "a.x[1]",
    "a.x[2]",
    "a.y[1]",
    "a.x[1][2]",
    "1 + 2",
    "2 + 1",
    "1 - 2",
    "1 * 2",
    "1 / 2",
    "1 + 2 + 3",
    "1 + (2 + 3)",
    "sin(1)",
    "sin(2)",
    "cos(1)",
    "pi()",
    "frame()",
    "min(1, 2)",
    "max(1, 2)",
    "random(1, 2)",
    "Vector(1, 2, 3)",
    "Vector(1, 2, 4)",
    "Vector(2, 2, 3)",
    "Color(1, 2, 3)",
    "AColor(1, 2, 3, 4)",
    "AColor(1, 2, 3, 5)",
    "Matrix(1, 2, 3)",
    "Matrix(1, 2, 4)",
    "Transform(1, 2)",
    "Transform(1, 3)",
    "Transform(2, 2)",
    "TransformHex(\"00\")",
    "TransformHex(\"01\")",
    "List()",
    "List(1)",
    "List(2)",
    "List(1, 2)",
    "List(List(1))",
    "interpolate((1, 2))",
    "interpolate((1, 3))",
    "interpolate((2, 2))",
    "interpolate((1, 2), (3, 4))",
    "ListInt(1, 2)",
    "ListInt(1, 3)",
    "ListInt(1)",
    "ListFloat(1, 2)",
    "ListFloat(1, 3)",
    "ListVector(Vector(1, 2, 3))",
    "ListVector(Vector(1, 2, 4))",
    "ListColor(Color(1, 2, 3))",
    "ListColor(Color(1, 2, 4))",
    "ListString(\"a\")",
    "ListString(\"b\")",
    "ListString(\"a\", \"b\")",
    "ListIntHex(\"00000001\")",
    "ListIntHex(\"00000002\")",
    "ListFloatHex(\"00000001\")",
};

std::string nested(const char* open, const char* inner, const char* close, int n) {
  std::string text;
  for (int i = 0; i < n; ++i) text += open;
  text += inner;
  for (int i = 0; i < n; ++i) text += close;
  return text;
}

}  // namespace

TEST(Equality, EveryValueEqualsItselfAlone) {
  for (const char* left : kValues) {
    for (const char* right : kValues) {
      const ParsedExpression a(left);
      const ParsedExpression b(right);
      EXPECT_EQ(areEqual(a.tree.get(), b.tree.get()), left == right) << left << " and " << right;
    }
  }
}

TEST(Equality, NullEqualsNullAlone) {
  const ParsedExpression one("1");
  EXPECT_TRUE(areEqual(nullptr, nullptr));
  EXPECT_FALSE(areEqual(one.tree.get(), nullptr));
  EXPECT_FALSE(areEqual(nullptr, one.tree.get()));
}

TEST(Equality, BitsOfNumbersCount) {
  NumberExpressionAST* zero = NumberExpressionAST::newNumberExpressionAST(0.0);
  NumberExpressionAST* minusZero = NumberExpressionAST::newNumberExpressionAST(-0.0);
  EXPECT_FALSE(areEqual(zero, minusZero));
  zero->deleteThis();
  minusZero->deleteThis();
  const ParsedExpression zeros("ListFloat(0, 1)");
  const ParsedExpression minusZeros("ListFloat(-0, 1)");
  EXPECT_FALSE(areEqual(zeros.tree.get(), minusZeros.tree.get()));
}

TEST(Equality, ListsAreEqualInEitherForm) {
  const struct {
    const char* left;
    const char* right;
    bool equal;
  } rows[] = {
      {"ListInt(1, 2)", "ListIntHex(\"0100000002000000\")", true},
      {"ListInt(1, 3)", "ListIntHex(\"0100000002000000\")", false},
      {"ListInt(1)", "ListIntHex(\"0100000002000000\")", false},
      {"ListIntHex(\"0a000000\")", "ListIntHex(\"0A000000\")", true},
      {"ListIntHex(\"0a00000\")", "ListIntHex(\"0a00000\")", true},
      {"ListIntHex(\"0a00000\")", "ListIntHex(\"0A00000\")", false},
      {"ListInt(1)", "ListIntHex(\"0100000\")", false},
      {"ListIntHex(\"0100000\")", "ListInt(1)", false},
      {"ListFloat(1)", "ListFloatHex(\"0000803f\")", true},
      {"ListVector(Vector(1, 1, 1))", "ListVectorHex(\"0000803F0000803f0000803f\")", true},
      {"ListFloat(1)", "ListInt(1)", false},
  };
  for (const auto& row : rows) {
    const ParsedExpression a(row.left);
    const ParsedExpression b(row.right);
    EXPECT_EQ(areEqual(a.tree.get(), b.tree.get()), row.equal) << row.left << " | " << row.right;
  }
  std::string digits;
  for (int i = 0; i < 12; ++i) digits += "0000a03f";
  const ParsedExpression a("TransformHex(\"" + digits + "\")");
  std::string other = digits;
  other[6] = 'A';
  other[4] = 'A';
  const ParsedExpression b("TransformHex(\"" + other + "\")");
  EXPECT_FALSE(areEqual(a.tree.get(), b.tree.get()));
  other = digits;
  other[4] = 'A';
  const ParsedExpression c("TransformHex(\"" + other + "\")");
  EXPECT_TRUE(areEqual(a.tree.get(), c.tree.get()));
  other[95] = '0';
  const ParsedExpression d("TransformHex(\"" + other + "\")");
  EXPECT_FALSE(areEqual(a.tree.get(), d.tree.get()));
}

TEST(Equality, WhereATextIsHeldAndTheSeedOfACallDoNotCount) {
  const std::string longText(5000, 'x');
  const ParsedExpression borrowed("\"" + longText + "\"");
  ParsedExpression owned("\"x\"");
  KelpTest::as<StringExpressionAST>(owned.tree.get()).text = CharString(longText.c_str());
  EXPECT_TRUE(areEqual(borrowed.tree.get(), owned.tree.get()));
  const ParsedExpression drawn("random(1, 2)");
  const ParsedExpression drawnNext("random(1, 2)");
  EXPECT_NE(KelpTest::as<BuiltinFunctionAST>(drawn.tree.get()).seed,
            KelpTest::as<BuiltinFunctionAST>(drawnNext.tree.get()).seed);
  EXPECT_TRUE(areEqual(drawn.tree.get(), drawnNext.tree.get()));
}

TEST(Equality, DeepAndLongTreesNeedNoStack) {
  const std::string deep = nested("List(1,", "2", ")", 3000);
  const std::string deepOther = nested("List(1,", "3", ")", 3000);
  std::string sum = "1";
  for (int i = 0; i < 300000; ++i) sum += "+1";
  const ParsedExpression a(deep), b(deep), c(deepOther), d(sum), e(sum), f(sum + "+1");
  KelpTest::runOnStackOf(KelpTest::kSmallStack, [&] {
    EXPECT_TRUE(areEqual(a.tree.get(), b.tree.get()));
    EXPECT_FALSE(areEqual(a.tree.get(), c.tree.get()));
    EXPECT_TRUE(areEqual(d.tree.get(), e.tree.get()));
    EXPECT_FALSE(areEqual(d.tree.get(), f.tree.get()));
  });
}
