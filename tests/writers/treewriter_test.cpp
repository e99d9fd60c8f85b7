#include "kelp/writers/treewriter.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <sstream>

#include "kelp/ast/expressions.h"
#include "kelp/parser/scenepluginfilter.h"
#include "kelp/writers/numbertext.h"
#include "tests/support/largescenes.h"
#include "tests/support/written.h"

using KelpTest::kDeepNesting;
using KelpTest::repeated;

namespace {

std::string listing(const Kelp::Scene& scene) {
  if (!scene) return "error: " + scene.error().message;
  return KelpTest::treeListing(*scene.program());
}

std::string listing(const std::string& text, const Kelp::SceneOptions& options = {}) {
  return listing(Kelp::Scene::fromText(text, "a.scene", options));
}

// What a value is listed as, without the object around it.
std::string listedValue(const std::string& value) {
  const std::string text = listing("A {\nx = " + value + "; }");
  const std::string before = "A\n  x = ";
  return text.substr(0, before.size()) == before ? text.substr(before.size()) : text;
}

// The digits of the second seed that a fresh generator draws; the first is 0.
std::string secondSeed() {
  Kelp::RandomGenerator generator;
  generator.drawSeed();
  return std::string(Kelp::NumberText(generator.drawSeed()).view());
}

size_t linesOf(const std::string& text) {
  return static_cast<size_t>(std::count(text.begin(), text.end(), '\n'));
}

}  // namespace

TEST(TreeListing, EveryKindOfValue) {
  const struct {
    const char* value;
    const char* listed;
  } rows[] = {
      {"1.5", "1.5  // :2\n"},
      {"\"a \\\"b\\\" \\\\\"", "\"a \\\"b\\\" \\\\\"  // :2\n"},
      {"b", "reference b  // :2\n"},
      {"b.c", "property b.c  // :2\n"},
      {"b::c", "runtime value b::c  // :2\n"},
      {"-b", "negated  // :2\n    reference b\n"},
      {"Vector(1,2,3)", "vector  // :2\n    1\n    2\n    3\n"},
      {"Color(1,2,3)", "color  // :2\n    1\n    2\n    3\n"},
      {"AColor(1,2,3,4)", "color with alpha  // :2\n    1\n    2\n    3\n    4\n"},
      {"Matrix(1,2,3)", "matrix  // :2\n    1\n    2\n    3\n"},
      {"Transform(1,2)", "transform  // :2\n    matrix 1\n    offset 2\n"},
      {"TransformHex(\"0f f0\")", "hexadecimal transform \"0f f0\"  // :2\n"},
      {"TransformHex(b)", "hexadecimal transform null  // :2\n"},
      {"b.c[1].y", "element  // :2\n    of property b.c\n    at 1\n    at 1\n"},
      {"clamp(1,2,3)", "call clamp  // :2\n    1\n    2\n    3\n"},
      {"pi()", "call pi  // :2\n"},
      {"List(1,\"a\")", "list, 2  // :2\n    1\n    \"a\"\n"},
      {"interpolate((1,2),(3,4))",
       "interpolation, 2  // :2\n    key 1\n      value 2\n    key 3\n      value 4\n"},
      {"ListInt(1,-2)", "integers, 2  // :2\n    1 -2\n"},
      {"ListFloat(1,.1)", "floats, 2  // :2\n    1 0.1\n"},
      {"ListFloat()", "floats, 0  // :2\n"},
      {"ListVector(Vector(1,2,3),Vector(4,5,6))", "vectors, 2  // :2\n    (1, 2, 3) (4, 5, 6)\n"},
      {"ListColor(Color(1,2,3))", "colors, 1  // :2\n    (1, 2, 3)\n"},
      {"ListString(\"a b\",\"\")", "strings, 2  // :2\n    \"a b\" \"\"\n"},
      {"ListIntHex(\"01\")", "hexadecimal integers \"01\"  // :2\n"},
      {"ListFloatHex(\"02\")", "hexadecimal floats \"02\"  // :2\n"},
      {"ListVectorHex(\"03\")", "hexadecimal vectors \"03\"  // :2\n"},
      {"ListColorHex(\"04\")", "hexadecimal colors \"04\"  // :2\n"},
  };
  for (const auto& row : rows) {
    std::string listed = listedValue(row.value);
    const size_t place = listed.find("a.scene:");
    ASSERT_NE(place, std::string::npos) << listed;
    listed.erase(place, 7);
    EXPECT_EQ(listed, row.listed) << row.value;
  }
}

TEST(TreeListing, ChainOfOperatorsIsFlatFromTheLeftOnly) {
  EXPECT_EQ(listedValue("(1 + 2) * 3 - 4 / 5"),
            "operators, applied from the top  // a.scene:2\n"
            "      1\n"
            "    + 2\n"
            "    * 3\n"
            "    - operators, applied from the top\n"
            "        4\n"
            "      / 5\n");
}

TEST(TreeListing, RandomCallShowsItsSeedEvenIfItIsZero) {
  Kelp::BuiltinFunctionAST::rndGen.reset();
  EXPECT_EQ(listedValue("List(random(1, 2), randomInt(1, 2))"),
            "list, 2  // a.scene:2\n"
            "    call random, seed 0\n"
            "      1\n"
            "      2\n"
            "    call randomInt, seed " +
                secondSeed() +
                "\n"
                "      1\n"
                "      2\n");
}

TEST(TreeListing, ObjectsStandInTextOrderWithAnEmptyLineBetween) {
  EXPECT_EQ(listing("B b { x = 1; }\nA {\n}\nC c { y = 2;\nx = 3; }"),
            "B b\n"
            "  x = 1  // a.scene:1\n"
            "\n"
            "A\n"
            "\n"
            "C c\n"
            "  y = 2  // a.scene:4\n"
            "  x = 3  // a.scene:5\n");
}

TEST(TreeListing, EmptySceneIsEmpty) { EXPECT_EQ(listing(""), ""); }

TEST(TreeListing, FramesAreShownWithThePlace) {
  Kelp::SceneOptions options;
  options.firstFrame = 1;
  options.lastFrame = 10.5;
  EXPECT_EQ(listing("A { x = 1; }", options), "A\n  x = 1  // a.scene:1, frames 1 to 10.5\n");
}

TEST(TreeListing, FilteredObjectIsMarked) {
  struct Nothing final : Kelp::ScenePluginFilter {
    int acceptObject(const Kelp::CharString&, Kelp::CharString&, void*) override { return 0; }
  } nothing;
  Kelp::Scene scene = Kelp::Scene::fromText("A a { x = 1; }", "a.scene");
  scene.filter(nothing);
  EXPECT_EQ(listing(scene), "A a  // filtered out\n  x = 1  // a.scene:1\n");
}

TEST(TreeListing, MissingValueAndComponentAreNull) {
  Kelp::Scene scene = Kelp::Scene::fromText("A { x = -1; y = 2; }", "a.scene");
  Kelp::PropertyAST* first = scene.program()->firstObject->firstProperty;
  auto* negated = dynamic_cast<Kelp::NegatedExpressionAST*>(first->value);
  ASSERT_NE(negated, nullptr);
  negated->operand->deleteThis();
  negated->operand = nullptr;
  first->next->value->deleteThis();
  first->next->value = nullptr;
  EXPECT_EQ(listing(scene), "A\n  x = negated  // a.scene:1\n    null\n  y = null  // a.scene:1\n");
  negated->operand = Kelp::NumberExpressionAST::newNumberExpressionAST(1);
}

TEST(TreeListing, TextsCannotUpsetATerminal) {
  EXPECT_EQ(listedValue("\"\x1b[31m\n\t\x7F \xC2\x9B \xC3\xA9 \xFF\""),
            "\"\\x1b[31m\\n\\t\\x7f \\xc2\\x9b \xC3\xA9 \\xff\"  // a.scene:2\n");
  EXPECT_EQ(listing("A { \"\x1b\" = 1; }"), "A\n  \"\\x1b\" = 1  // a.scene:1\n");
  const Kelp::Scene scene = Kelp::Scene::fromText("A { x = 1; }", "\x1b[2J.scene");
  EXPECT_EQ(listing(scene), "A\n  x = 1  // \\x1b[2J.scene:1\n");
}

TEST(TreeListing, LongTextIsShownWhole) {
  const std::string text(5000, 'q');
  EXPECT_EQ(listedValue('"' + text + '"'), '"' + text + "\"  // a.scene:2\n");
}

TEST(TreeListing, ElementsWrapWithinAHundredColumns) {
  const std::string text = listedValue("ListInt(" + repeated("12345,", 40) + "1)");
  EXPECT_EQ(text, "integers, 41  // a.scene:2\n    12345" + repeated(" 12345", 15) + "\n    12345" +
                      repeated(" 12345", 15) + "\n    12345" + repeated(" 12345", 7) + " 1\n");
}

TEST(TreeListing, IndentGrowsNoFurtherThanFortyLevels) {
  const std::string text = listedValue(repeated("-(", 45) + "1" + repeated(")", 45));
  EXPECT_NE(text.find('\n' + std::string(80, ' ') + "negated\n"), std::string::npos) << text;
  EXPECT_NE(text.find('\n' + std::string(80, ' ') + "(depth 41) negated\n"), std::string::npos)
      << text;
  EXPECT_NE(text.find('\n' + std::string(80, ' ') + "(depth 46) 1\n"), std::string::npos) << text;
}

TEST(TreeListing, NeitherLengthNorDepthNeedsStack) {
  for (const KelpTest::LargeValue& value : KelpTest::largeValues()) {
    SCOPED_TRACE(value.name);
    KelpTest::withSceneOnSmallStack(value.text, [](Kelp::Scene& scene) {
      ASSERT_TRUE(scene) << scene.error();
      const std::string text = listing(scene);
      EXPECT_GE(text.size(), static_cast<size_t>(kDeepNesting));
      EXPECT_LT(text.size(), 130 * linesOf(text));
      EXPECT_EQ(text.back(), '\n');
    });
  }
}
