#include <gtest/gtest.h>

#include "tests/support/rows.h"
#include "tests/support/sexpression.h"
#include "tests/support/trees.h"

using namespace Kelp;
using namespace KelpTest;

namespace {

std::string named(const char* affix, bool suffix, std::string_view text) {
  const ParsedScene scene(text, [&](TreeParser& parser) {
    parser.nameAffix = affix;
    parser.affixIsSuffix = suffix;
  });
  return sexpression(*scene.program.get());
}

}  // namespace

TEST(Object, ReadsTypeNameAndProperties) {
  expectScenes({
      {"A a {}", R"((scene (obj "A" "a")))"},
      {"A {}", R"((scene (obj "A" "")))"},
      {"A A {}", R"((scene (obj "A" "A")))"},
      {"A a { x = 1; y = 2; x = 3; }", R"((scene (obj "A" "a" (= "x" 1) (= "y" 2) (= "x" 3))))"},
      {"Vector List { sin = 1; }", R"((scene (obj "Vector" "List" (= "sin" 1))))"},
  });
}

TEST(Object, MustBeginWithAnIdentifier) {
  for (const char* text : {"5 {}", "\"A\" {}", "{}", "}", ";", "(", "= a {}", "nan {}", "?"}) {
    expectScenes({{text, "error: Expected identifier"}});
  }
}

TEST(Object, NeedsABraceBehindItsName) {
  const std::string error = "error: expected a \"{\" at beginning of object definition";
  expectScenes({
      {"A", error},
      {"A a", error},
      {"A a b {}", error},
      {"A \"a\" {}", error},
      {"A 5 {}", error},
      {"A = 5;", error},
      {"A a }", error},
  });
}

TEST(Object, TheMissingClosingBraceIsReportedAsAnOpeningOne) {
  const std::string error = "error: expected a \"{\" at end of object definition";
  expectScenes({{"A a {", error}, {"A a { x = 1;", error}, {"A a { x = 1; y = 2; ", error}});
}

TEST(Object, OfNoNameHasTheEmptyOne) {
  const ParsedScene scene("A {}");
  const ObjectAST* object = scene.program->firstObject;
  EXPECT_FALSE(object->name.isNull());
  EXPECT_STREQ(object->name.chars(), "");
  EXPECT_EQ(scene.program->getObject(""), object);
}

TEST(Object, TheAffixIsJoinedToTheName) {
  EXPECT_EQ(named("p_", false, "A n {}"), R"((scene (obj "A" "p_n")))");
  EXPECT_EQ(named("p_", true, "A n {}"), R"((scene (obj "A" "np_")))");
  EXPECT_EQ(named("", false, "A n {}"), R"((scene (obj "A" "n")))");
  EXPECT_EQ(named("", true, "A n {}"), R"((scene (obj "A" "n")))");
  EXPECT_EQ(named(nullptr, false, "A n {}"), R"((scene (obj "A" "n")))");
}

TEST(Object, TheAffixLeavesAMissingNameEmpty) {
  EXPECT_EQ(named("p_", false, "A {}"), R"((scene (obj "A" "")))");
  EXPECT_EQ(named("p_", true, "A {}"), R"((scene (obj "A" "")))");
}

TEST(Object, TheAffixConcernsNeitherTypesNorProperties) {
  EXPECT_EQ(named("p_", false, "A n { x = \"n\"; }"), R"((scene (obj "A" "p_n" (= "x" "n"))))");
}

TEST(Object, LeavesTheTokenBehindItself) {
  TextParser source("A a { x = 1; } B");
  const auto_ast<ObjectAST> object(source.started().parseObject());
  EXPECT_EQ(sexpression(*object.get()), R"((obj "A" "a" (= "x" 1)))");
  EXPECT_STREQ(source.parser._currentToken().getSpelling(), "B");
}

TEST(Object, StartsUnlinkedUnmarkedAndWithoutExtra) {
  TextParser source("A a {}");
  const auto_ast<ObjectAST> object(source.started().parseObject());
  EXPECT_EQ(object->next, nullptr);
  EXPECT_EQ(object->extra, nullptr);
  EXPECT_EQ(object->filteredOut, 0);
  EXPECT_EQ(object->firstProperty, nullptr);
  EXPECT_EQ(object->lastProperty, nullptr);
}
