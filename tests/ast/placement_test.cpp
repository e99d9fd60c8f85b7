// Nodes of classes that have rooms of their own can still be made where a host likes.
#include <gtest/gtest.h>

#include <memory>
#include <new>

#include "kelp/ast/builtinfunctions.h"
#include "kelp/ast/expressions.h"

using namespace Kelp;

namespace {

template <class Node>
class Placement : public testing::Test {};

using Classes = testing::Types<BinaryExpressionAST, BuiltinFunctionAST, ListExpressionAST, ListCell,
                               PropertyReferenceAST, RuntimeValueAST, ArrayExpressionAST>;
TYPED_TEST_SUITE(Placement, Classes);

}  // namespace

TYPED_TEST(Placement, InMemoryOfTheHostTakesNoRoom) {
  alignas(TypeParam) unsigned char memory[sizeof(TypeParam)];
  const int live = TypeParam::pool.liveCount();
  auto* node = new (memory) TypeParam;
  EXPECT_EQ(static_cast<void*>(node), static_cast<void*>(memory));
  EXPECT_EQ(TypeParam::pool.liveCount(), live);
  std::destroy_at(node);
}
