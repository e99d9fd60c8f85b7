// The static pools: there before every static object of a host, and never torn down.
#include <gtest/gtest.h>

#include <cstdlib>
#include <vector>

#include "tests/support/nodes.h"
#include "tests/support/parsing.h"

using namespace Kelp;
using namespace KelpTest;

namespace {

// A host's static object that holds a program from its construction to its destruction.
class StaticProgram {
 public:
  StaticProgram() = default;
  StaticProgram(const StaticProgram&) = delete;
  StaticProgram& operator=(const StaticProgram&) = delete;
  ~StaticProgram() {
    const int live = ObjectAST::pool.liveCount();
    if (program == nullptr) return;
    program->deleteThis();
    if (ObjectAST::pool.liveCount() != live - 1) std::abort();
  }

  void parse() {
    TextParser source("Box lid { at = Vector(1, -2, x) * interpolate((0, \"a\")); }");
    program = source.parser.parseProgram();
  }

  ProgramAST* program = nullptr;
};

StaticProgram filledLater;

struct ParsedAtStart : StaticProgram {
  ParsedAtStart() {
    newObjects = -ObjectAST::pool.liveCount();
    parse();
    newObjects += ObjectAST::pool.liveCount();
  }
  int newObjects;
};

ParsedAtStart parsedAtStart;

TEST(StaticPools, ServeConstructorsOfStaticObjects) {
  ASSERT_NE(parsedAtStart.program, nullptr);
  EXPECT_EQ(parsedAtStart.newObjects, 1);
  EXPECT_NE(parsedAtStart.program->getObject("lid"), nullptr);
}

TEST(StaticPools, ServeDestructorsOfStaticObjects) {
  // The end of the process is what is tested: both objects release their programs there.
  filledLater.parse();
  EXPECT_NE(filledLater.program, nullptr);
}

template <class Node>
void expectLastInFirstOut() {
  const int live = Node::pool.liveCount();
  std::vector<Node*> taken;
  for (int i = 0; i < 3; ++i) taken.push_back(Node::pool.newElement());
  EXPECT_EQ(Node::pool.liveCount(), live + 3);
  for (Node* node : taken) Node::pool.freeElement(node);
  for (size_t i = 3; i-- > 0;) EXPECT_EQ(Node::pool.newElement(), taken[i]);
  for (Node* node : taken) Node::pool.freeElement(node);
  EXPECT_EQ(Node::pool.liveCount(), live);
  EXPECT_EQ(Node::pool.bytesAllocated() % Node::pool.blockCount(), 0);
  EXPECT_EQ(Node::pool.bytesAllocated() / Node::pool.blockCount(),
            1000 * int64_t{sizeof(PoolElement<Node>)} + 32);
}

TEST(StaticPools, EveryClassReusesLastInFirstOutInBlocksOf1000) {
  expectLastInFirstOut<NumberExpressionAST>();
  expectLastInFirstOut<StringExpressionAST>();
  expectLastInFirstOut<VectorExpressionAST>();
  expectLastInFirstOut<AColorExpressionAST>();
  expectLastInFirstOut<MatrixExpressionAST>();
  expectLastInFirstOut<TransformExpressionAST>();
  expectLastInFirstOut<TransformHexExpressionAST>();
  expectLastInFirstOut<ObjectReferenceAST>();
  expectLastInFirstOut<NegatedExpressionAST>();
  expectLastInFirstOut<InterpolateExpressionAST>();
  expectLastInFirstOut<KeyList>();
  expectLastInFirstOut<ObjectAST>();
  expectLastInFirstOut<PropertyAST>();
}

TEST(StaticPools, RepeatedParsesAndReleasesNeedNoMoreBlocks) {
  const char* const text =
      "A a { b = 1+2*-3; c = \"text\"; } B { d = List(a, a.b, Color(1,2,3)); }";
  const int live = livePoolElements();
  const std::string first = parsedScene(text);
  const int64_t bytes = NumberExpressionAST::pool.bytesAllocated();
  for (int i = 0; i < 1000; ++i) ASSERT_EQ(parsedScene(text), first);
  EXPECT_EQ(NumberExpressionAST::pool.bytesAllocated(), bytes);
  EXPECT_EQ(livePoolElements(), live);
}

}  // namespace
