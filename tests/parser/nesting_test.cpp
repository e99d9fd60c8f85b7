#include <gtest/gtest.h>

#include "tests/support/balance.h"
#include "tests/support/buildkind.h"
#include "tests/support/rows.h"
#include "tests/support/sexpression.h"
#include "tests/support/smallstack.h"

using namespace Kelp;
using namespace KelpTest;

namespace {

constexpr size_t kKiB = 1024;
constexpr const char* kTooDeep = "error: Expression is nested too deeply";

// Every way to nest: each level stands around the next.
struct Bracket {
  const char* open;
  const char* close;
};
const Bracket kBrackets[] = {{"(", ")"},
                             {"-(", ")"},
                             {"1+(", ")*2"},
                             {"List(", ")"},
                             {"List(1,", ",2)"},
                             {"sin(", ")"},
                             {"select(1,2,3,", ")"},
                             {"interpolate((", ",1))"},
                             {"interpolate((1,", "))"},
                             {"Vector(", ",1,2)"},
                             {"Color(1,2,", ")"},
                             {"AColor(1,2,3,", ")"},
                             {"Matrix(1,", ",2)"},
                             {"Transform(1,", ")"},
                             {"a.b[", "]"}};

std::string repeated(const char* piece, int times) {
  std::string text;
  for (int i = 0; i < times; ++i) text += piece;
  return text;
}

std::string nested(const Bracket& bracket, int depth) {
  return repeated(bracket.open, depth) + "1" + repeated(bracket.close, depth);
}

// "ok", or the error, of an expression that only the given limits bound.
std::string outcome(const std::string& text, int maxNestingDepth) {
  TextParser source(text);
  source.parser.maxNestingDepth = maxNestingDepth;
  try {
    const auto_ast<ExpressionAST> tree(source.started().parseExpression());
    return source.parser._at(TOKEN_END) ? "ok" : "rest";
  } catch (const InvalidSyntaxException& error) {
    return std::string("error: ") + error.message.chars();
  }
}

bool isDecided(const std::string& result) { return result == "ok" || result == kTooDeep; }

}  // namespace

TEST(Nesting, IsBoundedByTheField) {
  constexpr int kLimit = 20;
  for (const Bracket& bracket : kBrackets) {
    SCOPED_TRACE(bracket.open);
    expectBalanced([&] {
      EXPECT_EQ(outcome(nested(bracket, kLimit), kLimit), "ok");
      EXPECT_EQ(outcome(nested(bracket, kLimit + 1), kLimit), kTooDeep);
      EXPECT_EQ(outcome(nested(bracket, 50 * kLimit), kLimit), kTooDeep);
    });
  }
}

TEST(Nesting, OfZeroOrLessIsNotCounted) {
  for (const int limit : {0, -1}) {
    EXPECT_EQ(outcome(nested(kBrackets[0], 100), limit), "ok");
  }
}

TEST(Nesting, OfOneAllowsOneBracket) {
  EXPECT_EQ(outcome("1", 1), "ok");
  EXPECT_EQ(outcome("(1) + (2)", 1), "ok");
  EXPECT_EQ(outcome("((1))", 1), kTooDeep);
}

TEST(Nesting, CountsOnlyWhatIsOpen) {
  EXPECT_EQ(outcome(repeated("List((1),sin(2))+", 50) + "1", 2), "ok");
}

TEST(Nesting, IsCountedAnewAfterAFailure) {
  TextParser source("((((1)))) (1)");
  source.parser.maxNestingDepth = 2;
  EXPECT_THROW(source.started().parseExpression(), InvalidSyntaxException);
  while (!source.parser._at(TOKEN_NUMBER)) source.parser.scanAheadToken(false);
  for (int i = 0; i < 5; ++i) source.parser.scanAheadToken(false);
  const auto_ast<ExpressionAST> tree(source.parser.parseExpression());
  EXPECT_EQ(sexpression(tree.get()), "1");
}

TEST(Nesting, IsAnErrorOfTheScene) {
  std::string scene = "A a { x = ";
  scene += nested(kBrackets[0], 10001) + "; }";
  expectScenes({{scene, kTooDeep}});
}

TEST(Nesting, TenThousandBracketsFitOnAnOrdinaryStack) {
  runOnStackOf(8 * kKiB * kKiB, [] {
    const std::string result = outcome(nested(kBrackets[0], 10000), 10000);
    if (kOptimized && !kSanitized) {
      EXPECT_EQ(result, "ok");
    } else {
      EXPECT_TRUE(isDecided(result)) << result;
    }
  });
}

TEST(Nesting, TenThousandLevelsOfAnythingAreReadOrRefused) {
  runOnStackOf(8 * kKiB * kKiB, [] {
    for (const Bracket& bracket : kBrackets) {
      const std::string result = outcome(nested(bracket, 10000), 10000);
      EXPECT_TRUE(isDecided(result)) << bracket.open << ' ' << result;
    }
  });
}

TEST(Nesting, SmallStacksEndInTheErrorToo) {
  for (const size_t stack : {128 * kKiB, 256 * kKiB, 1024 * kKiB}) {
    runOnStackOf(stack, [stack] {
      for (const Bracket& bracket : kBrackets) {
        SCOPED_TRACE(std::to_string(stack) + bracket.open);
        EXPECT_EQ(outcome(nested(bracket, 100000), 0), kTooDeep);
        EXPECT_EQ(outcome(repeated(bracket.open, 100000), 0), kTooDeep);
      }
    });
  }
}

TEST(Nesting, WhatASmallStackReadsItReleases) {
  for (const size_t stack : {128 * kKiB, 256 * kKiB, 1024 * kKiB}) {
    runOnStackOf(stack, [stack] {
      for (const Bracket& bracket : kBrackets) {
        SCOPED_TRACE(std::to_string(stack) + bracket.open);
        std::string result = "ok";
        int depth = 8;
        for (; result == "ok"; depth += depth / 8) result = outcome(nested(bracket, depth), 0);
        EXPECT_EQ(result, kTooDeep);
      }
    });
  }
}

TEST(Nesting, AFailureAtTheDeepestPointLeavesNothing) {
  expectBalanced([] {
    runOnStackOf(256 * kKiB, [] {
      const int live = livePoolElements();
      for (const Bracket& bracket : kBrackets) {
        outcome(repeated(bracket.open, 30), 0);
        outcome(repeated(bracket.open, 100000), 0);
        EXPECT_EQ(livePoolElements(), live);
      }
    });
  });
}
