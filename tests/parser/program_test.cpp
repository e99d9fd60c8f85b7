#include <gtest/gtest.h>

#include "tests/support/rows.h"
#include "tests/support/trees.h"

using namespace Kelp;
using namespace KelpTest;

TEST(Program, ReadsObjectsUntilTheEnd) {
  expectScenes({
      {"", "(scene)"},
      {" // nothing\n", "(scene)"},
      {"A a {}", R"((scene (obj "A" "a")))"},
      {"A a{}B b{}", R"((scene (obj "A" "a") (obj "B" "b")))"},
      {"A a{x=1;}B b{y=a;}", R"((scene (obj "A" "a" (= "x" 1)) (obj "B" "b" (= "y" (ref "a")))))"},
      {"A{}A a{}B{}", R"((scene (obj "A" "") (obj "A" "a") (obj "B" "")))"},
  });
}

TEST(Program, ObjectsOfOneTypeAndNameAreMerged) {
  expectScenes({
      {"A a{x=1;}B a{}A a{y=2;x=3;}",
       R"((scene (obj "A" "a" (= "x" 1) (= "y" 2) (= "x" 3)) (obj "B" "a")))"},
      {"A{x=1;}A{}", R"((scene (obj "A" "" (= "x" 1))))"},
  });
}

TEST(Program, AnErrorAnywhereGivesNothing) {
  expectScenes({
      {"A a{} 5", "error: Expected identifier"},
      {"A a{x=1;} B b{x=;}", notAToken(";")},
      {"A a{} }", "error: Expected identifier"},
      {"A a{}; B b{}", "error: Expected identifier"},
      {"A a{} \"never ends", "error: The string that begins on line 1 never ends"},
  });
}

TEST(Program, OfNoTextIsAnEmptyProgram) {
  const ParsedScene scene("");
  ASSERT_NE(scene.program.get(), nullptr);
  EXPECT_EQ(scene.program->numObjects, 0);
  EXPECT_EQ(scene.program->firstObject, nullptr);
}

TEST(Program, EndsAtTheEndToken) {
  ParsedScene scene("A a {} B b {}");
  EXPECT_TRUE(scene.source.parser._at(TOKEN_END));
  EXPECT_EQ(scene.program->numObjects, 2);
}

TEST(Program, AnErrorIsRecordedWhereTheReaderStands) {
  // The reader is one token ahead of the brace that stands in for the semicolon.
  ParsedScene scene("A a {\n x = 1\n}\n\nB b {}");
  EXPECT_EQ(scene.program.get(), nullptr);
  const ErrorInfo& error = scene.source.parser.errorInfo;
  EXPECT_STREQ(error.getErrorText().chars(), "expected a \";\" after property definition");
  EXPECT_EQ(error.getErrorLine(), 5);
  EXPECT_STREQ(error.getErrorFile().chars(), "scenes/test.scene");
}

TEST(Program, AnErrorStopsAtItsToken) {
  ParsedScene scene("A a { x = 1 } B b {}");
  EXPECT_EQ(scene.program.get(), nullptr);
  EXPECT_TRUE(scene.source.parser._at(TOKEN_RBRACE));
}

TEST(Program, ATextWithoutANameIsRecordedWithoutAFile) {
  SourcesReader reader;
  reader.openText("A", 1, nullptr);
  Scanner scanner(&reader);
  TreeParser parser(&scanner);
  EXPECT_EQ(parser.parseProgram(), nullptr);
  EXPECT_TRUE(parser.errorInfo.getErrorFile().isNull());
  EXPECT_EQ(parser.errorInfo.getErrorLine(), 1);
}

TEST(Program, SuccessLeavesTheErrorRecordAlone) {
  const ParsedScene scene("A a {}", [](TreeParser& parser) {
    parser.errorInfo.setErrorText("before");
    parser.errorInfo.setErrorLine(77);
    parser.errorInfo.setErrorFile("elsewhere");
  });
  ASSERT_NE(scene.program.get(), nullptr);
  const ErrorInfo& error = scene.source.parser.errorInfo;
  EXPECT_STREQ(error.getErrorText().chars(), "before");
  EXPECT_EQ(error.getErrorLine(), 77);
  EXPECT_STREQ(error.getErrorFile().chars(), "elsewhere");
}
