#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

#include "tests/support/rows.h"
#include "tests/support/scanners.h"
#include "tests/support/sexpression.h"
#include "tests/support/trees.h"

using namespace Kelp;
using namespace KelpTest;

TEST(Property, AnyTokenIsAName) {
  expectScenes({
      {"A a { 5 = 1; }", R"((scene (obj "A" "a" (= "5" 1))))"},
      {"A a { 1.50 = 1; }", R"((scene (obj "A" "a" (= "1.50" 1))))"},
      {"A a { \"two words\" = 1; }", R"((scene (obj "A" "a" (= "two words" 1))))"},
      {"A a { = = 1; }", R"((scene (obj "A" "a" (= "=" 1))))"},
      {"A a { ; = 1; }", R"((scene (obj "A" "a" (= ";" 1))))"},
      {"A a { { = 1; }", R"((scene (obj "A" "a" (= "{" 1))))"},
      {"A a { ? = 1; }", R"((scene (obj "A" "a" (= "?" 1))))"},
      {"A a { List = 1; }", R"((scene (obj "A" "a" (= "List" 1))))"},
  });
}

TEST(Property, NeedsAnEqualsSign) {
  const std::string error = "error: expected a \"=\" after property name";
  expectScenes({
      {"A a { x 1; }", error},
      {"A a { x }", error},
      {"A a { x", error},
      {"A a { x: 1; }", error},
      {"A a { ; }", error},
  });
}

TEST(Property, NeedsASemicolon) {
  const std::string error = "error: expected a \";\" after property definition";
  expectScenes({
      {"A a { x = 1 }", error},
      {"A a { x = 1", error},
      {"A a { x = 1 y = 2; }", error},
      {"A a { x = 1, 2; }", error},
      {"A a { x = 1); }", error},
      {"A a { x = b[0]; }", error},
      {"A a { x = b::c.d; }", error},
  });
}

TEST(Property, NeedsAValue) {
  expectScenes({
      {"A a { x = ; }", notAToken(";")},
      {"A a { x = }", notAToken("}")},
      {"A a { x =", notAToken("")},
  });
}

TEST(Property, LeavesTheTokenBehindItself) {
  TextParser source("x = 1 + 2; y");
  const auto_ast<PropertyAST> property(source.started().parseProperty());
  EXPECT_STREQ(property->name.chars(), "x");
  EXPECT_EQ(sexpression(property->value), "(+ 1 2)");
  EXPECT_STREQ(source.parser._currentToken().getSpelling(), "y");
}

TEST(Property, StartsUnlinkedAndWithoutRecords) {
  TextParser source("x = 1;");
  const auto_ast<PropertyAST> property(source.started().parseProperty());
  EXPECT_EQ(property->next, nullptr);
  EXPECT_EQ(property->extra, nullptr);
  EXPECT_EQ(property->records, nullptr);
}

TEST(Property, ItsLineIsThatOfTheTokenBehindItsName) {
  const ParsedScene scene("A a {\n x\n\n =\n 1;\n y = 2; }");
  const PropertyAST* first = scene.object("a").firstProperty;
  EXPECT_EQ(first->line, 4);
  EXPECT_STREQ(first->file.chars(), "scenes/test.scene");
  EXPECT_EQ(first->next->line, 6);
}

TEST(Property, ItsFileIsThatOfTheTokenBehindItsName) {
  const std::filesystem::path folder(testing::TempDir());
  std::ofstream(folder / "kelp_property_name.inc") << "\n\nx";
  const std::string text = "A a {\n#include \"kelp_property_name.inc\"\n\n= 1; }";
  const std::string name = (folder / "outer.scene").string();
  TextParser source(text, name.c_str());
  const auto_ast<ProgramAST> program(source.parser.parseProgram());
  ASSERT_NE(program.get(), nullptr);
  EXPECT_EQ(program->firstObject->firstProperty->file.chars(), name);
  EXPECT_EQ(program->firstObject->firstProperty->line, 4);
}

TEST(Property, TakesTheFramesOfTheMomentWhenItIsAdded) {
  SourcesReader reader;
  const std::string text = "A a { x = 1 ; y = 2 ; }";
  reader.openText(text.data(), static_cast<int64_t>(text.size()), "test");
  WatchedScanner scanner(&reader);
  scanner.before = [&](int token) {
    reader.readerParam1 = token;
    reader.readerParam2 = 100 + token;
  };
  TreeParser parser(&scanner);
  const auto_ast<ProgramAST> program(parser.parseProgram());
  const PropertyAST* property = program->firstObject->firstProperty;
  // When x is added, y is the current token and = has been read behind it.
  ASSERT_NE(property->records, nullptr);
  EXPECT_EQ(property->records->t1, 9);
  EXPECT_EQ(property->records->t2, 109);
  EXPECT_EQ(property->records->next, nullptr);
  EXPECT_EQ(property->next->records->t1, 13);
}
