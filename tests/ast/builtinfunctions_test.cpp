#include "kelp/ast/builtinfunctions.h"

#include <gtest/gtest.h>

#include <cstring>
#include <set>
#include <string>

#include "tests/support/parsing.h"

using Kelp::BuiltinFunction;
using Kelp::BuiltinFunctionAST;
using Kelp::RandomGenerator;

namespace {

const BuiltinFunction kExpected[] = {
    {"abs", 1, 1},    {"random", 2, 2},      {"sin", 3, 1},      {"cos", 4, 1},
    {"tan", 5, 1},    {"asin", 6, 1},        {"acos", 7, 1},     {"atan", 8, 1},
    {"atan2", 9, 2},  {"sqrt", 10, 1},       {"pow", 11, 2},     {"randomInt", 12, 2},
    {"exp", 13, 1},   {"log", 14, 1},        {"floor", 15, 1},   {"ceil", 16, 1},
    {"round", 17, 1}, {"min", 18, 2},        {"max", 19, 2},     {"clamp", 20, 3},
    {"lerp", 21, 3},  {"smoothstep", 22, 3}, {"mod", 23, 2},     {"select", 24, 4},
    {"frame", 25, 0}, {"pi", 26, 0},         {"length", 27, 1},  {"dot", 28, 2},
    {"cross", 29, 2}, {"normalize", 30, 1},  {"degrees", 31, 1}, {"radians", 32, 1}};

TEST(BuiltinFunctions, EveryNameGivesItsIdAndArgumentCount) {
  for (const BuiltinFunction& function : kExpected) {
    int numArgs = -1;
    EXPECT_EQ(BuiltinFunctionAST::getBuiltinFunctionID(function.name, &numArgs), function.id);
    EXPECT_EQ(numArgs, function.numArgs) << function.name;
    const BuiltinFunction* row = BuiltinFunctionAST::findFunction(function.id);
    ASSERT_NE(row, nullptr);
    EXPECT_STREQ(row->name, function.name);
  }
}

TEST(BuiltinFunctions, UnknownNamesGive0AndLeaveTheCount) {
  for (const char* name : {"", "a", "absx", "Abs", "zzz", "~", "Vector", "List", "sin "}) {
    int numArgs = 77;
    EXPECT_EQ(BuiltinFunctionAST::getBuiltinFunctionID(name, &numArgs), 0) << name;
    EXPECT_EQ(numArgs, 77) << name;
  }
}

TEST(BuiltinFunctions, UnknownIdsHaveNoRow) {
  for (const int id : {0, -1, 33, 1000}) {
    EXPECT_EQ(BuiltinFunctionAST::findFunction(id), nullptr) << id;
  }
}

TEST(BuiltinFunctions, FreshCallIsEmpty) {
  const BuiltinFunctionAST call;
  EXPECT_EQ(call.numArgs, 0);
  for (const auto* argument : call.args) EXPECT_EQ(argument, nullptr);
  EXPECT_EQ(call.funcID, 0);
  EXPECT_EQ(call.seed, 0.0F);
}

TEST(RandomGenerator, FirstDrawsFromState0) {
  struct Row {
    int64_t state;
    float seed;
  };
  const Row rows[] = {{0xb, 0.0F},
                      {0x40d405e084, 0x1.03501p-10F},
                      {0x4ac93f9eef3d, 0x1.2b24fep-2F},
                      {0xcd059389f687, 0x1.9a0b28p-1F}};
  RandomGenerator generator;
  for (const Row& row : rows) {
    EXPECT_EQ(generator.drawSeed(), row.seed);
    EXPECT_EQ(generator.state, row.state);
  }
  generator.reset();
  EXPECT_EQ(generator.state, 0);
  EXPECT_EQ(generator.lastSine, 0.0);
  EXPECT_EQ(generator.drawSeed(), 0.0F);
}

TEST(RandomGenerator, StatesStayIn48BitsAndSeedsIn0To1) {
  RandomGenerator generator;
  std::set<int64_t> states;
  for (int i = 0; i < 100'000; ++i) {
    const float seed = generator.drawSeed();
    ASSERT_GE(seed, 0.0F);
    ASSERT_LE(seed, 1.0F);
    ASSERT_EQ(generator.state >> 48, 0);
    ASSERT_LE(generator.lastSine, 1.0);
    states.insert(generator.state);
  }
  EXPECT_EQ(states.size(), 100'000U);
}

TEST(RandomGenerator, AnyStartingStateIsTaken) {
  for (const int64_t state : {int64_t{-1}, INT64_MIN, INT64_MAX, int64_t{1} << 47}) {
    RandomGenerator generator;
    generator.state = state;
    const float seed = generator.drawSeed();
    EXPECT_GE(seed, 0.0F);
    EXPECT_LE(seed, 1.0F);
    EXPECT_EQ(generator.state >> 48, 0);
  }
}

TEST(RandomGenerator, SameTextGivesTheSameSeedsFromTheSameState) {
  const auto seedsOf = [] {
    BuiltinFunctionAST::rndGen.reset();
    KelpTest::TextParser source("random(1,2) + sin(3) + randomInt(4,5)");
    const Kelp::auto_ast<Kelp::ExpressionAST> sum(source.started().parseExpression());
    auto* top = static_cast<Kelp::BinaryExpressionAST*>(sum.get());
    auto* inner = static_cast<Kelp::BinaryExpressionAST*>(top->left);
    const auto seed = [](Kelp::ExpressionAST* call) {
      return static_cast<BuiltinFunctionAST*>(call)->seed;
    };
    return std::string() + std::to_string(seed(inner->left)) + " " +
           std::to_string(seed(inner->right)) + " " + std::to_string(seed(top->right));
  };
  EXPECT_EQ(seedsOf(), "0.000000 0.000000 0.000989");
  EXPECT_EQ(seedsOf(), "0.000000 0.000000 0.000989");
  EXPECT_EQ(BuiltinFunctionAST::rndGen.state, 0x40d405e084);
}

}  // namespace
