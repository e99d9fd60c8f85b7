#include "kelp/queries/statistics.h"

#include <gtest/gtest.h>

#include "kelp/ast/expressions.h"
#include "tests/support/largescenes.h"

namespace {

struct Row {
  const char* text;
  int64_t objects, properties, expressionNodes, listElements;
};

constexpr Row kRows[] = {
    {"", 0, 0, 0, 0},
    {"A {} B b {}", 2, 0, 0, 0},
    {"A { x = 1; x = 2; }", 1, 2, 2, 0},
    {"A { x = \"text\"; }", 1, 1, 1, 0},
    {"A { x = b; y = b.c; z = b::d; }", 1, 3, 3, 0},
    {"A { x = -1; }", 1, 1, 2, 0},
    {"A { x = 1 + 2 * 3; }", 1, 1, 5, 0},
    {"A { x = Vector(1, 2, -3); }", 1, 1, 5, 0},
    {"A { x = Color(1, 2, 3); y = AColor(1, 2, 3, 4); }", 1, 2, 9, 0},
    {"A { x = Transform(Matrix(1, 2, 3), 4); }", 1, 1, 6, 0},
    {"A { x = TransformHex(\"00\"); }", 1, 1, 1, 0},
    {"A { x = b.c[1].y; }", 1, 1, 4, 0},
    {"A { x = select(1, 2, 3, 4); y = pi(); }", 1, 2, 6, 0},
    {"A { x = List(1, List()); }", 1, 1, 3, 0},
    {"A { x = interpolate((1, 2), (3, 4)); }", 1, 1, 5, 0},
    {"A { x = ListVector(Vector(1, 2, 3), Vector(4, 5, 6)); }", 1, 1, 1, 2},
    {"A { x = ListColor(Color(1, 2, 3)); }", 1, 1, 1, 1},
    {"A { x = ListInt(1, 2, 3); y = ListFloat(1, 2); }", 1, 2, 2, 5},
    {"A { x = ListString(\"a\", \"b\"); }", 1, 1, 1, 2},
    {"A { x = ListIntHex(\"0000000100000002\"); }", 1, 1, 1, 0},
};

}  // namespace

TEST(Statistics, CountsEveryKindOfNode) {
  for (const Row& row : kRows) {
    SCOPED_TRACE(row.text);
    const Kelp::Scene scene = Kelp::Scene::fromText(row.text);
    ASSERT_TRUE(scene) << scene.error();
    const Kelp::Statistics statistics = Kelp::countProgram(*scene.program());
    EXPECT_EQ(statistics.objects, row.objects);
    EXPECT_EQ(statistics.properties, row.properties);
    EXPECT_EQ(statistics.expressionNodes, row.expressionNodes);
    EXPECT_EQ(statistics.listElements, row.listElements);
  }
}

TEST(Statistics, MissingValuesAndComponentsAreNotCounted) {
  Kelp::Scene scene = Kelp::Scene::fromText("A { x = Vector(1, 2, 3); y = 4; }");
  Kelp::PropertyAST* first = scene.program()->firstObject->firstProperty;
  auto* vector = dynamic_cast<Kelp::VectorExpressionAST*>(first->value);
  ASSERT_NE(vector, nullptr);
  vector->components[1]->deleteThis();
  vector->components[1] = nullptr;
  first->next->value->deleteThis();
  first->next->value = nullptr;
  EXPECT_EQ(Kelp::countProgram(*scene.program()).expressionNodes, 3);
}

TEST(Statistics, NeitherLengthNorDepthNeedsStack) {
  for (const KelpTest::LargeValue& value : KelpTest::largeValues()) {
    SCOPED_TRACE(value.name);
    KelpTest::withSceneOnSmallStack(value.text, [](Kelp::Scene& scene) {
      ASSERT_TRUE(scene) << scene.error();
      const Kelp::Statistics statistics = Kelp::countProgram(*scene.program());
      EXPECT_GE(statistics.expressionNodes + statistics.listElements, KelpTest::kDeepNesting);
    });
  }
}
