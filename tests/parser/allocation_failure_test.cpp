// Memory that runs out at every single request of a parse.
#include <gtest/gtest.h>

#include <vector>

#include "tests/exhaustion/heldelements.h"
#include "tests/support/balance.h"
#include "tests/support/richscenes.h"
#include "tests/support/sexpression.h"
#include "tests/support/trees.h"

using namespace Kelp;
using namespace KelpTest;

namespace {

enum class Outcome { kParsed, kRefused, kBadAlloc, kExceptionMsg };

// Parses while the n-th request fails (n 0: none does).
Outcome parseWithFailure(TextParser& source, int64_t n, bool persistent, bool* failed) {
  ProgramAST* program = nullptr;
  Outcome outcome = Outcome::kParsed;
  {
    const FailingAllocation failing(n, persistent);
    try {
      program = source.parser.parseProgram();
      if (program == nullptr) outcome = Outcome::kRefused;
    } catch (const std::bad_alloc&) {
      outcome = Outcome::kBadAlloc;
    } catch (const ExceptionMsg& error) {
      EXPECT_STREQ(error.what(), "[_SequenceBlock] Could not allocate memory");
      outcome = Outcome::kExceptionMsg;
    }
    *failed = failing.hasFailed();
  }
  if (program != nullptr) program->deleteThis();
  return outcome;
}

TEST(AllocationFailure, ObjectThatCannotBeAddedComesBeforeALaterError) {
  constexpr const char* kText = "A a { } A b { x 1; }";
  // Leaves nodes to be taken, so that only the program's maps ask for blocks.
  TextParser first(kText);
  EXPECT_EQ(first.parser.parseProgram(), nullptr);
  for (const bool plain : {true, false}) {
    TextParser source(kText);
    source.parser.readsPlainText = plain;
    const RefusedBlocks refused([] { return true; }, true);
    EXPECT_THROW(source.parser.parseProgram(), ExceptionMsg);
    EXPECT_TRUE(source.parser.errorInfo.getErrorText().isNull());
  }
}

// Lets every request fail in turn. What comes out of an unharmed parse is `good`.
void expectSurvivesEveryFailure(const std::string& scene, Outcome good) {
  SCOPED_TRACE(scene);
  const std::string clean = parsedScene(scene);
  for (const bool persistent : {false, true}) {
    bool failed = true;
    for (int64_t n = 1; failed; ++n) {
      SCOPED_TRACE(n);
      expectBalanced([&] {
        TextParser source(scene);
        source.parser.collectReferenceNames = 1;
        const Outcome outcome = parseWithFailure(source, n, persistent, &failed);
        if (failed) {
          EXPECT_TRUE(outcome == Outcome::kBadAlloc || outcome == Outcome::kExceptionMsg);
          EXPECT_TRUE(source.parser.errorInfo.getErrorFile().isNull());
        } else {
          EXPECT_EQ(outcome, good);
        }
        if (outcome != Outcome::kParsed) {
          EXPECT_EQ(source.parser.referenceNames.count, 0);
        }
      });
      EXPECT_EQ(parsedScene(scene), clean);
    }
  }
}

template <class Node>
void expectSurvivesAnEmptyPool(const std::string& scene) {
  SCOPED_TRACE(scene);
  parsedScene(scene);  // blocks of the other classes stay
  const SurplusElements<Node> surplus;
  int refused = 0;
  bool failed = true;
  for (int64_t n = 1; failed; ++n) {
    // The next one needs a new block.
    const HeldElements<Node> drained(FreeElements<Node>::count());
    const int live = Node::pool.liveCount();
    const int others = livePoolElements() - live;
    TextParser source(scene);
    const Outcome outcome = parseWithFailure(source, n, true, &failed);
    const int lost = Node::pool.liveCount() - live;
    ASSERT_TRUE(lost == 0 || (lost == 1 && outcome == Outcome::kExceptionMsg));
    EXPECT_EQ(livePoolElements() - Node::pool.liveCount(), others);
    refused += lost;
    if (lost == 1) FreeElements<Node>::noteRefusal();
  }
  EXPECT_GE(refused, 1);
  EXPECT_FALSE(parsedScene(scene).starts_with("error"));
}

}  // namespace

TEST(AllocationFailure, AnywhereInARichSceneLeavesNothing) {
  for (const std::string& scene : richScenes()) expectSurvivesEveryFailure(scene, Outcome::kParsed);
}

TEST(AllocationFailure, AnywhereInABrokenSceneLeavesNothing) {
  for (const std::string& scene : brokenScenes()) {
    expectSurvivesEveryFailure(scene, Outcome::kRefused);
  }
}

TEST(AllocationFailure, WithAnAffixLeavesNothing) {
  const std::string scene = "A a { x = b; y = c.d; z = e::f; }";
  parsedScene(scene);  // blocks of nodes stay
  bool failed = true;
  for (int64_t n = 1; failed; ++n) {
    expectBalanced([&] {
      TextParser source(scene);
      source.parser.nameAffix = "an affix that is long enough for the heap, whatever the name";
      parseWithFailure(source, n, false, &failed);
    });
  }
}

TEST(AllocationFailure, OfAPoolsBlockIsTheOnlyThingThatStaysCounted) {
  const std::string operators = "A a { x = 1 + 2 * -Vector(a.b[1], c, 2); }";
  expectSurvivesAnEmptyPool<ObjectAST>(operators);
  expectSurvivesAnEmptyPool<PropertyAST>(operators);
  expectSurvivesAnEmptyPool<NumberExpressionAST>(operators);
  expectSurvivesAnEmptyPool<NegatedExpressionAST>(operators);
  expectSurvivesAnEmptyPool<VectorExpressionAST>(operators);
  expectSurvivesAnEmptyPool<ObjectReferenceAST>(operators);
  expectSurvivesAnEmptyPool<StringExpressionAST>("A a { x = List(a.b, \"s\"); }");
  expectSurvivesAnEmptyPool<AColorExpressionAST>("A a { x = -AColor(a.b, 1, c, \"s\"); }");
  expectSurvivesAnEmptyPool<MatrixExpressionAST>("A a { x = 1 + Matrix(a.b, 1, c); }");
  expectSurvivesAnEmptyPool<TransformExpressionAST>("A a { x = List(1, Transform(a.b, 1)); }");
  expectSurvivesAnEmptyPool<TransformHexExpressionAST>("A a { x = List(1, TransformHex(\"\")); }");
  expectSurvivesAnEmptyPool<InterpolateExpressionAST>("A a { x = 1 + interpolate((a.b, 1)); }");
  expectSurvivesAnEmptyPool<KeyList>("A a { x = interpolate((a.b, 1), (2, c)); }");
  expectSurvivesAnEmptyPool<BinaryExpressionAST>(operators);
  expectSurvivesAnEmptyPool<ArrayExpressionAST>(operators);
  expectSurvivesAnEmptyPool<PropertyReferenceAST>(operators);
  expectSurvivesAnEmptyPool<ListCell>("A a { x = List(a.b, \"s\"); }");
  expectSurvivesAnEmptyPool<ListExpressionAST>("A a { x = List(a.b, List(\"s\")); }");
  expectSurvivesAnEmptyPool<RuntimeValueAST>("A a { x = List(a::b, a.b + c::d); }");
  expectSurvivesAnEmptyPool<BuiltinFunctionAST>("A a { x = List(1, sin(a.b)); }");
}
