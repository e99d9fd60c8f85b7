#include "kelp/ast/auto_ast.h"

#include <gtest/gtest.h>

#include <type_traits>

#include "kelp/ast/expressions.h"
#include "kelp/ast/objects.h"
#include "kelp/program/programast.h"
#include "tests/support/placement.h"

using namespace Kelp;

namespace {

using Guard = auto_ast<ExpressionAST>;
static_assert(!std::is_copy_constructible_v<Guard> && !std::is_copy_assignable_v<Guard>);
static_assert(std::is_nothrow_destructible_v<Guard>);
static_assert(!std::is_convertible_v<ExpressionAST*, Guard>);

ExpressionAST* newNumber(double value) {
  return NumberExpressionAST::newNumberExpressionAST(value);
}

int liveNumbers() { return NumberExpressionAST::pool.liveCount(); }

TEST(AutoAst, ReleasesItsNode) {
  const int before = liveNumbers();
  {
    const Guard guard(newNumber(1));
    EXPECT_EQ(liveNumbers(), before + 1);
  }
  EXPECT_EQ(liveNumbers(), before);
}

TEST(AutoAst, NodeGivenUpIsTheCallers) {
  const int before = liveNumbers();
  ExpressionAST* node = newNumber(1);
  {
    Guard guard(node);
    EXPECT_EQ(guard.get(), node);
    EXPECT_EQ(guard.release(), node);
  }
  EXPECT_EQ(liveNumbers(), before + 1);
  node->deleteThis();
  EXPECT_EQ(liveNumbers(), before);
}

TEST(AutoAst, NullIsNobodysNode) {
  const Guard guard(nullptr);
  EXPECT_EQ(guard.get(), nullptr);
}

TEST(AutoAst, ResetReleasesTheOldNodeAndTakesTheNew) {
  const int before = liveNumbers();
  {
    Guard guard(newNumber(1));
    ExpressionAST* second = newNumber(2);
    guard.reset(second);
    EXPECT_EQ(guard.get(), second);
    EXPECT_EQ(liveNumbers(), before + 1);
    guard.reset(nullptr);
    EXPECT_EQ(liveNumbers(), before);
    guard.reset(newNumber(3));
  }
  EXPECT_EQ(liveNumbers(), before);
}

TEST(AutoAst, UnwindingReleasesTheNode) {
  const int before = liveNumbers();
  try {
    const Guard guard(newNumber(1));
    throw 1;
  } catch (int) {
    EXPECT_EQ(liveNumbers(), before);
  }
}

TEST(AutoAst, GuardsEveryKindOfRoot) {
  const int objects = ObjectAST::pool.liveCount();
  {
    const auto_ast<ListTypeExpressionAST<Vector>> vectors(new ListTypeExpressionAST<Vector>);
    const auto_ast<ListTypeExpressionAST<int>> ints(new ListTypeExpressionAST<int>);
    const auto_ast<ListTypeExpressionAST<float>> floats(new ListTypeExpressionAST<float>);
    const auto_ast<ListTypeExpressionAST<Color>> colors(new ListTypeExpressionAST<Color>);
    const auto_ast<ExpressionAST> strings(new ListTypeExpressionAST<CharString>);
    const auto_ast<ProgramAST> program(new ProgramAST);
    const auto_ast<ObjectAST> object(ObjectAST::pool.newElement());
    object->firstProperty = object->lastProperty = nullptr;
    EXPECT_EQ(vectors->parsedForm, 1);
  }
  EXPECT_EQ(ObjectAST::pool.liveCount(), objects);
}

TEST(AutoAst, DestructorLeavesNullAndNoOwnership) {
  KelpTest::Placed<Guard> owning(0x5A, newNumber(1));
  owning.destroy();
  EXPECT_EQ(owning.fieldAt<void*>(0), nullptr);
  EXPECT_EQ(owning.fieldAt<int32_t>(8), 0);
  ExpressionAST* node = newNumber(2);
  KelpTest::Placed<Guard> empty(0x5A, node);
  empty->release();
  empty.destroy();
  EXPECT_EQ(empty.fieldAt<void*>(0), nullptr);
  EXPECT_EQ(empty.fieldAt<int32_t>(8), 0);
  node->deleteThis();
}

}  // namespace
