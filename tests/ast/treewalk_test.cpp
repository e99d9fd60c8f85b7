#include "kelp/ast/treewalk.h"

#include <gtest/gtest.h>

#include "tests/support/trees.h"

namespace {

// Sees nothing of its own: every class passes by, and goes on into its children.
class CountingWalk final : public Kelp::TreeWalk {
 public:
  int nodes = 0;

 protected:
  void enter(Kelp::ExpressionAST&) override { ++nodes; }
};

int nodesOf(const char* value) {
  const KelpTest::ParsedExpression expression(value);
  CountingWalk walk;
  walk.walk(expression.tree.get());
  return walk.nodes;
}

}  // namespace

TEST(TreeWalk, GoesIntoEveryClass) {
  const struct {
    const char* value;
    int nodes;
  } rows[] = {
      {"1", 1},
      {"\"a\"", 1},
      {"a", 1},
      {"a.b", 1},
      {"a::b", 1},
      {"-1", 2},
      {"1 + 2 * 3", 5},
      {"sin(1)", 2},
      {"a.b[1].x", 4},
      {"List(1, List(2))", 4},
      {"interpolate((1, 2), (3, 4))", 5},
      {"Vector(1, 2, 3)", 4},
      {"AColor(1, 2, 3, 4)", 5},
      {"Matrix(1, 2, 3)", 4},
      {"Transform(1, 2)", 3},
      {"TransformHex(\"00\")", 1},
      {"ListInt(1, 2)", 1},
      {"ListFloat(1, 2)", 1},
      {"ListString(\"a\")", 1},
      {"ListVector(Vector(1, 2, 3))", 1},
      {"ListColor(Color(1, 2, 3))", 1},
      {"List(ListInt(1), ListFloat(1), ListString(\"a\"), ListVector(Vector(1, 2, 3)))", 5},
  };
  for (const auto& row : rows) EXPECT_EQ(nodesOf(row.value), row.nodes) << row.value;
}
