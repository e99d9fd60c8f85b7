// Nodes as no parser makes them, but a host may.
#include <gtest/gtest.h>

#include "kelp/ast/release.h"
#include "tests/support/balance.h"
#include "tests/support/nodes.h"

using namespace Kelp;

TEST(UnusualNodes, TableWithoutPairsIsReleased) {
  KelpTest::expectBalanced([] { KelpTest::interpolation(0)->deleteThis(); });
  KelpTest::expectBalanced([] { releaseWithoutStack(KelpTest::interpolation(0)); });
}

TEST(UnusualNodes, CodeOfNoOperatorHasNoSpelling) {
  BinaryExpressionAST* node = KelpTest::binary(nullptr, nullptr);
  for (const int code : {0, 12, 17, -13}) {
    node->op = code;
    EXPECT_STREQ(node->operatorSpelling(), "") << code;
  }
  node->deleteThis();
}
