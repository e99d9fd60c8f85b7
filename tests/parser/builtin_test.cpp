#include <gtest/gtest.h>

#include "tests/support/rows.h"
#include "tests/support/trees.h"

using namespace Kelp;
using namespace KelpTest;

namespace {

constexpr int kLastFunction = 32;

std::string call(const BuiltinFunction& function, int numArgs) {
  std::string text = function.name;
  text += '(';
  for (int i = 0; i < numArgs; ++i) text += (i > 0 ? "," : "") + std::to_string(i + 1);
  return text + ')';
}

std::string dump(const BuiltinFunction& function) {
  std::string text = std::string("(call \"") + function.name + '"';
  for (int i = 0; i < function.numArgs; ++i) text += ' ' + std::to_string(i + 1);
  return text + ')';
}

std::string tooFew(const BuiltinFunction& function) {
  if (function.numArgs == 1) return "error: Token \")\" not recognized as valid token";
  return "error: Expected \",\" between function arguments";
}

}  // namespace

TEST(Builtin, EveryFunctionTakesAsManyArgumentsAsItsRowSays) {
  for (int id = 1; id <= kLastFunction; ++id) {
    const BuiltinFunction* function = BuiltinFunctionAST::findFunction(id);
    ASSERT_NE(function, nullptr) << id;
    expectExpressions({
        {call(*function, function->numArgs), dump(*function)},
        {call(*function, function->numArgs + 1), "error: Expected \")\" to close function call"},
    });
    if (function->numArgs == 0) continue;
    expectExpressions({{call(*function, function->numArgs - 1), tooFew(*function)}});
  }
}

TEST(Builtin, ArgumentsAreExpressions) {
  expectExpressions({
      {"sin(1 + 2)", R"((call "sin" (+ 1 2)))"},
      {"max(min(1, 2), -a.b)", R"((call "max" (call "min" 1 2) (neg (prop "a" "b"))))"},
      {"dot(Vector(1,2,3), v)", R"((call "dot" (vec 1 2 3) (ref "v")))"},
      {"select(1, 2, \"a\", \"b\")", R"((call "select" 1 2 "a" "b"))"},
      {"frame() * pi()", R"((* (call "frame") (call "pi")))"},
  });
}

TEST(Builtin, ErrorsInCalls) {
  expectExpressions({
      {"sin()", notAToken(")")},
      {"sin(", notAToken("")},
      {"sin(1", "error: Expected \")\" to close function call"},
      {"sin(1,)", "error: Expected \")\" to close function call"},
      {"pow(1)", "error: Expected \",\" between function arguments"},
      {"pow(1 2)", "error: Expected \",\" between function arguments"},
      {"pow(1,)", notAToken(")")},
      {"pow(1, 2, 3)", "error: Expected \")\" to close function call"},
      {"pow(1, 2,)", "error: Expected \")\" to close function call"},
      {"frame(1)", "error: Expected \")\" to close function call"},
      {"frame(", "error: Expected \")\" to close function call"},
  });
}

TEST(Builtin, UnknownNamesAreNamed) {
  expectExpressions({
      {"foo(1)", "error: Functor \"foo\" not recognized"},
      {"foo()", "error: Functor \"foo\" not recognized"},
      {"Sin(1)", "error: Functor \"Sin\" not recognized"},
      {"list(1)", "error: Functor \"list\" not recognized"},
      {"Interpolate((0,1))", "error: Functor \"Interpolate\" not recognized"},
      {"vector(1,2,3)", "error: Functor \"vector\" not recognized"},
      {"ListStringHex(\"0\")", "error: Functor \"ListStringHex\" not recognized"},
      {"Vectors(1,2,3)", "error: Functor \"Vectors\" not recognized"},
      {"Vecto(1,2,3)", "error: Functor \"Vecto\" not recognized"},
  });
}

TEST(Builtin, WithoutABracketANameIsAReference) {
  expectExpressions({
      {"foo", R"((ref "foo"))"},
      {"sin", R"((ref "sin"))"},
      {"Vector", R"((ref "Vector"))"},
      {"List.x", R"((prop "List" "x"))"},
      {"random::x", R"((rt "random" "x"))"},
  });
}

TEST(Builtin, TheNodeHoldsFunctionAndArguments) {
  ParsedExpression parsed("clamp(1, 2, 3)");
  const auto& node = as<BuiltinFunctionAST>(parsed.tree.get());
  EXPECT_EQ(node.funcID, 20);
  EXPECT_EQ(node.numArgs, 3);
  for (int i = 0; i < 3; ++i) EXPECT_EQ(as<NumberExpressionAST>(node.args[i]).value, i + 1);
  EXPECT_EQ(node.args[3], nullptr);
  EXPECT_EQ(node.seed, 0.0F);
}

TEST(Seed, TheFirstDrawsOfAFreshGenerator) {
  struct {
    int64_t state;
    float seed;
  } const rows[] = {{0xb, 0.0F},
                    {0x40d405e084, 0x1.03501p-10F},
                    {0x4ac93f9eef3d, 0x1.2b24fep-2F},
                    {0xcd059389f687, 0x1.9a0b28p-1F}};
  BuiltinFunctionAST::rndGen.reset();
  const char* text = "random(0, 1)";
  for (const auto& row : rows) {
    ParsedExpression parsed(text);
    EXPECT_EQ(BuiltinFunctionAST::rndGen.state, row.state);
    EXPECT_EQ(as<BuiltinFunctionAST>(parsed.tree.get()).seed, row.seed);
    text = "randomInt(0, 1)";
  }
}

TEST(Seed, IsDrawnInTextOrderBeforeTheArguments) {
  BuiltinFunctionAST::rndGen.reset();
  ParsedExpression parsed("random(random(0, 1), randomInt(2, 3))");
  const auto& outer = as<BuiltinFunctionAST>(parsed.tree.get());
  EXPECT_EQ(outer.seed, 0.0F);
  EXPECT_EQ(as<BuiltinFunctionAST>(outer.args[0]).seed, 0x1.03501p-10F);
  EXPECT_EQ(as<BuiltinFunctionAST>(outer.args[1]).seed, 0x1.2b24fep-2F);
}

TEST(Seed, DiffersFromCallToCallAndRepeatsWithTheState) {
  const auto seedsFrom = [](int64_t state) {
    BuiltinFunctionAST::rndGen.reset();
    BuiltinFunctionAST::rndGen.state = state;
    ParsedExpression parsed("random(0, 1) + random(0, 1)");
    const auto& sum = as<BinaryExpressionAST>(parsed.tree.get());
    return std::pair(as<BuiltinFunctionAST>(sum.left).seed, as<BuiltinFunctionAST>(sum.right).seed);
  };
  const auto seeds = seedsFrom(12345);
  EXPECT_NE(seeds.first, seeds.second);
  for (const float seed : {seeds.first, seeds.second}) {
    EXPECT_GE(seed, 0.0F);
    EXPECT_LT(seed, 1.0F);
  }
  EXPECT_EQ(seedsFrom(12345), seeds);
}

TEST(Seed, OtherFunctionsDrawNone) {
  BuiltinFunctionAST::rndGen.reset();
  for (int id = 1; id <= kLastFunction; ++id) {
    const BuiltinFunction& function = *BuiltinFunctionAST::findFunction(id);
    if (id == BuiltinFunctionAST::kRandom || id == BuiltinFunctionAST::kRandomInt) continue;
    ParsedExpression parsed(call(function, function.numArgs));
    EXPECT_EQ(BuiltinFunctionAST::rndGen.state, 0) << function.name;
  }
}

TEST(Seed, IsDrawnByACallThatFailsLater) {
  BuiltinFunctionAST::rndGen.reset();
  EXPECT_EQ(parsedExpression("random(0)"), "error: Expected \",\" between function arguments");
  EXPECT_EQ(BuiltinFunctionAST::rndGen.state, 0xb);
}
