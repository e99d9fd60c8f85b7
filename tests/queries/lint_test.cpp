#include "kelp/queries/lint.h"

#include <gtest/gtest.h>

#include <string>

#include "kelp/scene.h"
#include "tests/support/largescenes.h"
#include "tests/support/trees.h"

using namespace Kelp;
using KelpTest::ParsedScene;

namespace {

LintCodes allCodes() {
  LintCodes codes;
  for (const LintRule& rule : lintRules()) codes.insert(rule.code);
  return codes;
}

// One line a finding: message [code].
std::string found(const ProgramAST& program, const LintCodes& codes) {
  std::string text;
  lintProgram(program, codes, [&text](const Finding& finding) {
    text += finding.message + " [" + std::string(finding.code) + "]\n";
  });
  return text;
}

std::string found(const std::string& text, const LintCodes& codes) {
  const Scene scene = Scene::fromText(text, "a.scene");
  return scene ? found(*scene.program(), codes) : "error: " + scene.error().message;
}

// Messages of one rule alone, each with the end of its line.
std::string messages(const std::string& text, std::string_view code) {
  std::string lines = found(text, {code});
  const std::string mark = " [" + std::string(code) + "]";
  for (size_t at; (at = lines.find(mark)) != std::string::npos;) lines.erase(at, mark.size());
  return lines;
}

struct Row {
  std::string text;
  std::string messages;
};

void expectMessages(std::string_view code, std::initializer_list<Row> rows) {
  for (const Row& row : rows) {
    SCOPED_TRACE(row.text);
    EXPECT_EQ(messages(row.text, code), row.messages);
  }
}

}  // namespace

TEST(Lint, CodesAreDistinctAndDescribed) {
  EXPECT_EQ(allCodes().size(), lintRules().size());
  for (const LintRule& rule : lintRules()) {
    EXPECT_EQ(rule.code.find_first_not_of("abcdefghijklmnopqrstuvwxyz-"), std::string_view::npos);
    EXPECT_FALSE(rule.description.empty());
  }
  LintCodes others = defaultLintCodes();
  others.insert("unused-object");
  EXPECT_EQ(others, allCodes());
  EXPECT_FALSE(defaultLintCodes().contains("unused-object"));
}

TEST(Lint, DanglingReference) {
  expectMessages(
      "dangling-reference",
      {{"A a { x = b; y = b.z; z = b::v; w = a; } B b {}", ""},
       {"A a { x = b; }", "\"a.x\" refers to \"b\", but no object has that name\n"},
       {"A { x = b.c[d::e]; }",
        "\"A.x\" refers to \"b\", but no object has that name\n"
        "\"A.x\" refers to \"d\", but no object has that name\n"},
       {"A a { x = b + b.y; x = b; } ",
        "\"a.x\" refers to \"b\", but no object has that name\n"
        "\"a.x\" refers to \"b\", but no object has that name\n"},
       {"A a { x = B; } A b {}", "\"a.x\" refers to \"B\", but no object has that name\n"}});
}

TEST(Lint, UnusedObject) {
  expectMessages("unused-object",
                 {{"", ""},
                  {"A a { x = b.y; } B b { x = List(a::v); }", ""},
                  {"Settings { x = a; } A a {}", ""},
                  {"A a { x = b; } B b {}", "\"a\" is referred to by no other object\n"},
                  {"A a { x = a.y; y = none; }", "\"a\" is referred to by no other object\n"},
                  {"A { x = a; } B a {} C a {}", "\"a\" is referred to by no other object\n"}});
}

TEST(Lint, RepeatedProperty) {
  const std::string message = " was assigned before, at a.scene:";
  const std::string end = "; the last assignment counts\n";
  expectMessages("repeated-property",
                 {{"A a { x = 1; X = 1; y = 1; } A b { x = 1; } B a { x = 1; }", ""},
                  {"A a { x = 1; y = 2; \"x\" = 3; }", "\"a.x\"" + message + "1" + end},
                  {"A a {\nx = 1;\nx = 2;\nx = 3;\n}",
                   "\"a.x\"" + message + "2" + end + "\"a.x\"" + message + "3" + end},
                  {"A a {\nx = 1; }\nB b {}\nA a { x = 2; }", "\"a.x\"" + message + "2" + end},
                  {"A { \"\" = 1; \"\" = 2; }", "\"A.\"" + message + "1" + end}});
}

TEST(Lint, SimilarName) {
  const std::string end = " in the case of letters only\n";
  expectMessages("similar-name", {{"A a {} A b {} B a {} C {} D {} A a_ {}", ""},
                                  {"A lamp {} A Lamp {}", "\"Lamp\" differs from \"lamp\"" + end},
                                  {"A lamp {\nx = 1; } B LAMP {} A Lamp {} B lamp {}",
                                   "\"LAMP\" differs from \"lamp\" at a.scene:2" + end +
                                       "\"Lamp\" differs from \"lamp\" at a.scene:2" + end},
                                  {"A \xC3\xA4 {} A \xC3\x84 {} A z@ {} A z$ {}", ""}});
}

TEST(Lint, NumberOverflow) {
  const std::string one = " has a number that is infinite or not-a-number\n";
  expectMessages(
      "number-overflow",
      {{"A a { x = 1e308; y = -1.#INF; z = nan; w = 1.#QNAN; v = ListFloat(3e38, 1.#INF); }", ""},
       {"A a { x = ListInt(1e400); y = ListString(\"1e400\"); z = \"1e400\"; w = 1e-400; }", ""},
       {"A a { x = 1e309; }", "\"a.x\"" + one},
       {"A a { x = 0e400; }", "\"a.x\"" + one},
       {"A a { x = -sin(2 * 1e400); y = b.c[1e400]; }", "\"a.x\"" + one + "\"a.y\"" + one},
       {"A a { x = ListFloat(1, -1e39); }", "\"a.x\"" + one},
       {"A a { x = ListVector(Vector(1, 2, 3), Vector(1e39, -1e39, 1e39)); }",
        "\"a.x\" has 3 numbers that are infinite or not-a-number\n"},
       {"A a { x = List(ListColor(Color(1e39, 1e39, 0e400)), 1e400); }",
        "\"a.x\" has 4 numbers that are infinite or not-a-number\n"}});
}

TEST(Lint, HexDigit) {
  const auto message = [](const std::string& property, int character) {
    return '"' + property + "\" has hexadecimal text whose character " + std::to_string(character) +
           " is no hexadecimal digit\n";
  };
  expectMessages(
      "hex-digit",
      {{"A a { x = ListIntHex(\"0123456789abcdefABCDEF\"); y = TransformHex(\"\"); }", ""},
       {"A a { x = ListInt(1); y = \"xyz\"; z = ListString(\"xyz\"); w = ListIntHex(xyz); }", ""},
       {"A a { x = ListIntHex(\"00 \"); }", message("a.x", 3)},
       {"A a { x = ListFloatHex(\"g0h\"); }", message("a.x", 1)},
       {"A a { x = ListVectorHex(\"00/\"); y = ListColorHex(\"0:\"); }",
        message("a.x", 3) + message("a.y", 2)},
       {"A a { x = List(ListIntHex(\"@\"), TransformHex(\"0G\"), ListIntHex(\"00`\")); }",
        message("a.x", 1) + message("a.x", 2) + message("a.x", 3)}});
}

TEST(Lint, HexLength) {
  const auto digits = [](size_t number) { return '"' + std::string(number, '0') + '"'; };
  const auto scene = [&digits](const std::string& form, size_t number) {
    return "A a { x = " + form + '(' + digits(number) + "); }";
  };
  const auto message = [](size_t number, const std::string& end) {
    return "\"a.x\" has hexadecimal text of " + std::to_string(number) + " characters" + end + '\n';
  };
  const std::string several = " where a multiple of ";
  expectMessages(
      "hex-length",
      {{scene("ListIntHex", 0), ""},
       {scene("ListIntHex", 16), ""},
       {scene("ListFloatHex", 8), ""},
       {scene("ListVectorHex", 48), ""},
       {scene("ListColorHex", 24), ""},
       {scene("TransformHex", 96), ""},
       {scene("ListIntHex", 7), message(7, ", an odd number")},
       {scene("ListIntHex", 12), message(12, several + "8 is needed")},
       {scene("ListFloatHex", 2), message(2, several + "8 is needed")},
       {scene("ListVectorHex", 32), message(32, several + "24 is needed")},
       {scene("ListColorHex", 8), message(8, several + "24 is needed")},
       {scene("ListColorHex", 25), message(25, ", an odd number")},
       {scene("TransformHex", 0), message(0, " where 96 are needed")},
       {scene("TransformHex", 192), message(192, " where 96 are needed")},
       {"A a { x = ListIntHex(1); }", "\"a.x\" has a hexadecimal form without a text\n"},
       {"A a { x = TransformHex(b); }", "\"a.x\" has a hexadecimal form without a text\n"},
       {"A a { x = ListInt(); y = ListFloat(1); z = ListString(\"0\"); }", ""}});
}

TEST(Lint, FindingsComeInTheOrderOfTheText) {
  const std::string text = "A b { x = none; x = 1e400; } A B { y = ListIntHex(\"x\"); }";
  EXPECT_EQ(found(text, defaultLintCodes()),
            "\"b.x\" refers to \"none\", but no object has that name [dangling-reference]\n"
            "\"b.x\" was assigned before, at a.scene:1; the last assignment counts "
            "[repeated-property]\n"
            "\"b.x\" has a number that is infinite or not-a-number [number-overflow]\n"
            "\"B\" differs from \"b\" at a.scene:1 in the case of letters only [similar-name]\n"
            "\"B.y\" has hexadecimal text whose character 1 is no hexadecimal digit [hex-digit]\n"
            "\"B.y\" has hexadecimal text of 1 characters, an odd number [hex-length]\n");
  EXPECT_EQ(found(text, {"hex-digit", "no-such-rule"}),
            "\"B.y\" has hexadecimal text whose character 1 is no hexadecimal digit [hex-digit]\n");
  EXPECT_EQ(found(text, {}), "");
}

TEST(Lint, PlaceIsThatOfThePropertyOrOfTheObjectsFirst) {
  const Scene scene = Scene::fromText("A a {\n\nx = 1;\ny = none; } A b { x = 1; } A c {}", "s");
  std::string places;
  lintProgram(*scene.program(), {"unused-object", "dangling-reference"},
              [&places](const Finding& finding) {
                const PropertyAST* place = finding.place();
                places += std::string(finding.code) + ' ' + finding.object->name.chars() + ' ' +
                          (place != nullptr ? std::to_string(place->line) : "-") + '\n';
              });
  EXPECT_EQ(places,
            "unused-object a 3\ndangling-reference a 4\nunused-object b 4\nunused-object c -\n");
}

TEST(Lint, AbsentNamesAndValuesAreNoFindings) {
  const ParsedScene scene("A a { x = b; y = 1; z = 2; }");
  ObjectAST& object = scene.object("a");
  PropertyAST& first = *object.firstProperty;
  first.value->deleteThis();
  first.value = nullptr;
  first.next->name.freeMem();
  object.type.freeMem();
  EXPECT_EQ(found(*scene.program.get(), defaultLintCodes()), "");
}

TEST(Lint, NeitherLengthNorDepthNeedsStack) {
  for (const KelpTest::LargeValue& value : KelpTest::largeValues()) {
    SCOPED_TRACE(value.name);
    KelpTest::withSceneOnSmallStack(value.text, [](Scene& scene) {
      ASSERT_TRUE(scene) << scene.error();
      EXPECT_EQ(found(*scene.program(), defaultLintCodes()), "");
    });
  }
}

TEST(Lint, ManyPropertiesAndNamesAreSeenOnce) {
  std::string text = "A a {\n";
  for (int i = 0; i < 30000; ++i) text += "p" + std::to_string(i) + " = n;\n";
  text += "}\n";
  for (int i = 0; i < 30000; ++i) text += "B n" + std::to_string(i) + " {}\n";
  const Scene scene = Scene::fromText(text);
  int64_t findings = 0;
  lintProgram(*scene.program(), allCodes(), [&findings](const Finding&) { ++findings; });
  EXPECT_EQ(findings, 60001);  // all references dangle, no object is used
}
