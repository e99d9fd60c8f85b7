// Long is not deep: texts of a million parts on a small stack.
#include <gtest/gtest.h>

#include "tests/support/smallstack.h"
#include "tests/support/trees.h"

using namespace Kelp;
using namespace KelpTest;

namespace {

constexpr size_t kSmallStack = 256 * 1024;
constexpr int kMany = 1000000;

std::string repeated(const std::string& piece, int times) {
  std::string text;
  text.reserve(piece.size() * static_cast<size_t>(times));
  for (int i = 0; i < times; ++i) text += piece;
  return text;
}

int lengthOfChain(ExpressionAST* tree) {
  int nodes = 0;
  while (auto* binary = dynamic_cast<BinaryExpressionAST*>(tree)) {
    ++nodes;
    tree = binary->left;
  }
  return nodes;
}

int cellsOf(ExpressionAST* tree) { return as<ListExpressionAST>(tree).count; }
int pairsOf(ExpressionAST* tree) { return as<InterpolateExpressionAST>(tree).count; }
int elementsOf(ExpressionAST* tree) { return as<ListTypeExpressionAST<int>>(tree).elements.count; }
int indicesOf(ExpressionAST* tree) {
  return static_cast<int>(as<ArrayExpressionAST>(tree).indices.size());
}

// Reads and releases the text on a small stack; then the same with an error behind it.
void expectLong(const std::string& text, int (*measure)(ExpressionAST*), int expected) {
  const int live = livePoolElements();
  runOnStackOf(kSmallStack, [&] {
    ParsedExpression parsed(text);
    EXPECT_EQ(measure(parsed.tree.get()), expected);
  });
  EXPECT_EQ(livePoolElements(), live);
  runOnStackOf(kSmallStack, [&] {
    TextParser source("A a { x = " + text + " ] }");
    EXPECT_EQ(source.parser.parseProgram(), nullptr);
  });
  EXPECT_EQ(livePoolElements(), live);
}

}  // namespace

TEST(Long, ASum) { expectLong(repeated("1+", kMany) + "1", lengthOfChain, kMany); }

TEST(Long, AProduct) { expectLong(repeated("2*", kMany) + "2", lengthOfChain, kMany); }

TEST(Long, ASumOfProducts) { expectLong("1" + repeated("-1*2", kMany), lengthOfChain, kMany); }

TEST(Long, AList) { expectLong("List(" + repeated("1,", kMany - 1) + "1)", cellsOf, kMany); }

TEST(Long, AnInterpolationTable) {
  expectLong("interpolate(" + repeated("(1,2),", kMany - 1) + "(1,2))", pairsOf, kMany);
}

TEST(Long, ATypedList) { expectLong("ListInt(" + repeated("1,", kMany) + ")", elementsOf, kMany); }

TEST(Long, AnIndexChain) { expectLong("a.b" + repeated("[1].x", kMany / 2), indicesOf, kMany); }
