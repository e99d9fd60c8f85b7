#include "kelp/queries/inventory.h"

#include <gtest/gtest.h>

#include <string>

#include "tests/support/trees.h"

using namespace Kelp;
using KelpTest::ParsedScene;

namespace {

void addAll(Inventory& inventory, const ParsedScene& scene) {
  for (const ObjectAST* object : objectsInTextOrder(*scene.program.get())) inventory.add(*object);
}

TEST(Inventory, CountsEveryKindOfExpression) {
  const ParsedScene scene(
      "A a { p = -1 + 2 * sin(3); q = \"s\"; r = List(Vector(1, 2, 3), Color(1, 2, 3));"
      " s = AColor(1, 2, 3, 4); t = Transform(Matrix(x, y, z), o.p[1]); u = o::v;"
      " v = interpolate((0, 1)); w = TransformHex(\"00\"); a = ListVector(Vector(1, 2, 3));"
      " b = ListColor(Color(1, 2, 3)); c = ListInt(1, 2); d = ListFloat(1); e = ListString(\"s\");"
      " f = ListFloatHex(\"0011\"); }");
  Inventory inventory;
  addAll(inventory, scene);
  const std::map<std::string_view, int64_t> expected = {{"acolor", 1},    {"call", 1},
                                                        {"color", 1},     {"colorList", 1},
                                                        {"element", 1},   {"floatList", 2},
                                                        {"intList", 1},   {"interpolation", 1},
                                                        {"list", 1},      {"matrix", 1},
                                                        {"negated", 1},   {"number", 16},
                                                        {"operators", 2}, {"propertyReference", 1},
                                                        {"reference", 3}, {"runtimeValue", 1},
                                                        {"string", 1},    {"stringList", 1},
                                                        {"transform", 1}, {"transformHex", 1},
                                                        {"vector", 1},    {"vectorList", 1}};
  EXPECT_EQ(inventory.expressions, expected);
  EXPECT_EQ(inventory.objects, 1);
  EXPECT_EQ(inventory.properties, 14);
  EXPECT_EQ(inventory.listElements, 6);
  EXPECT_EQ(inventory.hexBytes, 6);
  EXPECT_EQ(inventory.references, 5);
  EXPECT_EQ(inventory.danglingReferences(), 5);
  ASSERT_EQ(inventory.largest().size(), 1U);
  EXPECT_EQ(inventory.largest()[0].size, 41 + 6 + 6);
}

TEST(Inventory, ReferencesBackAndForthAreResolved) {
  const ParsedScene scene("A a { x = b; y = a.z; } B b { x = a::v; y = c; z = c; }");
  Inventory inventory;
  addAll(inventory, scene);
  EXPECT_EQ(inventory.references, 5);
  EXPECT_EQ(inventory.danglingReferences(), 2);
  Inventory unresolved(false);
  addAll(unresolved, scene);
  EXPECT_EQ(unresolved.references, 5);
}

TEST(Inventory, TenLargestOfEqualOnesTheFirst) {
  std::string text;
  for (int i = 0; i < 30; ++i) {
    text += "A n" + std::to_string(i) + " { x = ListInt(1" + (i % 3 == 0 ? ", 2" : "") + "); }";
  }
  const ParsedScene scene(text);
  Inventory inventory;
  addAll(inventory, scene);
  ASSERT_EQ(inventory.largest().size(), 10U);
  for (int i = 0; i < 10; ++i) {
    EXPECT_EQ(inventory.largest()[static_cast<size_t>(i)].name, "n" + std::to_string(3 * i));
    EXPECT_EQ(inventory.largest()[static_cast<size_t>(i)].size, 3);
  }
}

TEST(Inventory, RepeatedPropertiesAreThoseAssignedBefore) {
  const ParsedScene scene("A a { x = 1; y = 2; x = 3; x = 4; } A b { x = 1; }");
  Inventory inventory;
  addAll(inventory, scene);
  EXPECT_EQ(inventory.repeatedProperties, 2);
  EXPECT_EQ(inventory.types.at("A"), 2);
}

}  // namespace
