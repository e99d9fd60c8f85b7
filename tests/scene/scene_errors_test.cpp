// Why a scene could not be read, and where.
#include <gtest/gtest.h>

#include <sstream>
#include <string>

#include "kelp/scene.h"
#include "tests/support/temporaryfiles.h"

using namespace Kelp;
using namespace std::string_literals;
using KelpTest::TemporaryFiles;

namespace {

std::string report(const SceneError& error) {
  std::ostringstream out;
  out << error;
  return out.str();
}

std::string reportOf(const std::string& text) { return report(Scene::fromText(text, "s").error()); }

}  // namespace

TEST(SceneErrors, SyntaxErrorPointsAtTheTokenNotUnderstood) {
  const std::pair<std::string, const char*> rows[] = {
      // the first token
      {"5", "s:1:1: Expected identifier\n5\n^"},
      {"}", "s:1:1: Expected identifier\n}\n^"},
      {"\n  ;", "s:2:3: Expected identifier\n  ;\n  ^"},
      // the second
      {"A 5 {}", "s:1:3: expected a \"{\" at beginning of object definition\nA 5 {}\n  ^"},
      // in the middle
      {"A a {\n  x : 1;\n}", "s:2:5: expected a \"=\" after property name\n  x : 1;\n    ^"},
      {"A a {\n  x = 1\n  y = 2;\n}",
       "s:3:3: expected a \";\" after property definition\n  y = 2;\n  ^"},
      {"A a { x = (1; }", "s:1:13: Expected \")\"\nA a { x = (1; }\n            ^"},
      {"A a { x = Vector(1 2, 3); }",
       "s:1:20: Expected \",\" in Vector definition\nA a { x = Vector(1 2, 3); }\n"
       "                   ^"},
      {"A a { x = -a + @; }",
       "s:1:16: Token \"@\" not recognized as valid token\nA a { x = -a + @; }\n               ^"},
      {"A a {} #", "s:1:8: Expected identifier\nA a {} #\n       ^"},
      // at the end
      {"A", "s:1:2: expected a \"{\" at beginning of object definition\nA\n ^"},
      {"A a {", "s:1:6: expected a \"{\" at end of object definition\nA a {\n     ^"},
      {"A a {\n  x = 1;\n", "s:3:1: expected a \"{\" at end of object definition\n\n^"},
      {"A a { x = (1", "s:1:13: Expected \")\"\nA a { x = (1\n            ^"},
      {"A a { x = TransformHex(",
       "s:1:24: Expected \")\" after TransformHex definition\nA a { x = TransformHex(\n"
       "                       ^"},
  };
  for (const auto& [text, expected] : rows) EXPECT_EQ(reportOf(text), expected) << text;
}

TEST(SceneErrors, LexicalErrorPointsAtWhatBeganThere) {
  const std::pair<std::string, const char*> rows[] = {
      // the first token, the look-ahead behind it, and later ones
      {" \"abc", "s:1:2: The string that begins on line 1 never ends\n \"abc\n ^"},
      {"\n/* a\nb", "s:2:1: The comment that begins on line 2 never ends\n/* a\n^"},
      {"A \"abc\ndef", "s:1:3: The string that begins on line 1 never ends\nA \"abc\n  ^"},
      {"A a {\n  x = \"abc;\n}\n",
       "s:2:7: The string that begins on line 2 never ends\n  x = \"abc;\n      ^"},
      {"A a { x = 1; /* }",
       "s:1:14: The comment that begins on line 1 never ends\nA a { x = 1; /* }\n"
       "             ^"},
      {"A\na {\0}"s, "s:2:4: NUL byte on line 2\na {?}\n   ^"},
      {"A a {}\n #include b",
       "s:2:2: #include needs the name of a file in double quotes on line 2\n #include b\n ^"},
  };
  for (const auto& [text, expected] : rows) EXPECT_EQ(reportOf(text), expected) << text;
}

TEST(SceneErrors, ExcerptTellsThatTheLineWasCutHoweverLittle) {
  SceneError error;
  error.tokenLine = 1;
  error.column = 5;
  error.sourceLine = "abcde";
  EXPECT_EQ(error.excerpt(), "abcde\n    ^");
  error.lineColumn = 2;  // its first character is the line's second
  EXPECT_EQ(error.excerpt(), "...abcde\n      ^");
}

TEST(SceneErrors, FieldsOfASyntaxError) {
  const Scene scene = Scene::fromText("A a {\n  x = 1\n  y\n= 2;\n}", "dir/s.scene");
  const SceneError& error = scene.error();
  EXPECT_EQ(error.kind, SceneError::Kind::kInvalid);
  EXPECT_EQ(error.message, "expected a \";\" after property definition");
  EXPECT_EQ(error.file, "dir/s.scene");
  EXPECT_EQ(error.line, 4) << "the reader has read the token behind the one not understood";
  EXPECT_EQ(error.tokenFile, "dir/s.scene");
  EXPECT_EQ(error.tokenLine, 3);
  EXPECT_EQ(error.column, 3);
  EXPECT_EQ(error.sourceLine, "  y");
  EXPECT_EQ(error.position(), "dir/s.scene:3:3");
  EXPECT_EQ(error.excerpt(), "  y\n  ^");
  EXPECT_EQ(error.describe(), error.message);
}

TEST(SceneErrors, FieldsOfALexicalErrorAreTheSameForTheFirstTokenAndLaterOnes) {
  for (const std::string before : {"", "A a {} "}) {
    const Scene scene = Scene::fromText("\n" + before + "\"a\nb\nc", "s");
    const SceneError& error = scene.error();
    EXPECT_EQ(error.kind, SceneError::Kind::kInvalid);
    EXPECT_EQ(error.message, "The string that begins on line 2 never ends");
    EXPECT_EQ(error.file, "s");
    EXPECT_EQ(error.line, 2);
    EXPECT_EQ(error.tokenLine, 2);
    EXPECT_EQ(error.column, static_cast<int>(before.size()) + 1);
    EXPECT_EQ(error.sourceLine, before + "\"a");
  }
}

TEST(SceneErrors, ErrorsInIncludedFilesNameThem) {
  const TemporaryFiles files;
  const std::string path = files.path("b.inc");
  const std::string main = files.write("a.scene", "A a {\n#include \"b.inc\"\n}");
  files.write("b.inc", "x = 1;\ny = ;\n");
  EXPECT_EQ(report(Scene::fromFile(main).error()),
            path + ":2:5: Token \";\" not recognized as valid token\ny = ;\n    ^\nincluded from " +
                main + ":2");
  files.write("b.inc", "x = 1;\n\"y");
  EXPECT_EQ(report(Scene::fromFile(main).error()),
            path + ":2:1: The string that begins on line 2 never ends\n\"y\n^\nincluded from " +
                main + ":2");
}

TEST(SceneErrors, TokenAndReaderMayStandInDifferentFiles) {
  const TemporaryFiles files;
  const std::string main = files.write("a.scene", "A a {\n#include \"b.inc\"\n  = ;\n}");
  files.write("b.inc", "x = 1;\ny :");
  const Scene scene = Scene::fromFile(main);
  EXPECT_EQ(scene.error().message, "expected a \"=\" after property name");
  EXPECT_EQ(scene.error().tokenFile, files.path("b.inc"));
  EXPECT_EQ(scene.error().tokenLine, 2);
  EXPECT_EQ(scene.error().file, main);
  EXPECT_EQ(scene.error().line, 3);
}

TEST(SceneErrors, FirstLineOfAnIncludedFileIsShownWithThatFile) {
  const TemporaryFiles files;
  const std::string main = files.write("a.scene", "A a {\n#include \"b.inc\"\n  = ;\n}");
  const std::string included = files.write("b.inc", "y :");
  EXPECT_EQ(Scene::fromFile(main).error().position(), included + ":1:3");
}

TEST(SceneErrors, IncludeThatEndsBetweenANameAndItsEqualsSign) {
  const TemporaryFiles files;
  const std::string main = files.write("a.scene", "A a {\n#include \"b.inc\"\n\n= 1;\n}");
  files.write("b.inc", "\nx");
  const Scene scene = Scene::fromFile(main);
  ASSERT_TRUE(scene);
  // The property is where the reader stood when it had read the token behind the name.
  EXPECT_EQ(scene.find("a")->firstProperty->file.chars(), main);
  EXPECT_EQ(scene.find("a")->firstProperty->line, 4);
}

TEST(SceneErrors, UnusableIncludeIsAnErrorOfItsLine) {
  const TemporaryFiles files;
  const std::string missing = files.path("b.inc");
  for (const std::string before : {"", "A a {}\n"}) {
    const std::string main = files.write("a.scene", before + " #include \"b.inc\"\n");
    const Scene scene = Scene::fromFile(main);
    EXPECT_EQ(scene.error().kind, SceneError::Kind::kInvalid);
    EXPECT_EQ(report(scene.error()), main + (before.empty() ? ":1:2" : ":2:2") +
                                         ": Cannot read \"" + missing +
                                         "\": No such file or directory\n #include \"b.inc\"\n ^");
  }
}

TEST(SceneErrors, UnreadableFileHasNoPlace) {
  const TemporaryFiles files;
  for (const std::string& path : {files.path("missing"), files.directory.string()}) {
    const Scene scene = Scene::fromFile(path);
    EXPECT_FALSE(scene);
    const SceneError& error = scene.error();
    EXPECT_EQ(error.kind, SceneError::Kind::kUnreadable);
    EXPECT_EQ(error.file, path);
    EXPECT_EQ(error.line, 0);
    EXPECT_EQ(error.tokenLine, 0);
    EXPECT_EQ(error.column, 0);
    EXPECT_EQ(error.position(), path);
    EXPECT_EQ(error.excerpt(), "");
    EXPECT_EQ(report(error), path + ": " + error.message);
    EXPECT_EQ(error.message.find("Cannot read \"" + path + "\": "), 0U);
  }
}

TEST(SceneErrors, TextWithoutANameIsCalledText) {
  EXPECT_EQ(report(Scene::fromText("5").error()), "<text>:1:1: Expected identifier\n5\n^");
  EXPECT_EQ(report(Scene::fromText("5", "").error()), "<text>:1:1: Expected identifier\n5\n^");
}

TEST(SceneErrors, EmptyMessageIsASyntaxError) {
  const Scene scene = Scene::fromText("A a { x = ListVector(Vector(1,2,3); }", "s");
  EXPECT_EQ(scene.error().message, "");
  EXPECT_EQ(scene.error().describe(), "syntax error");
  EXPECT_EQ(report(scene.error()), "s:1:35: syntax error\nA a { x = ListVector(Vector(1,2,3); }\n" +
                                       std::string(34, ' ') + "^");
}

TEST(SceneErrors, ColumnsAndCaretCountCharacters) {
  EXPECT_EQ(reportOf("\xC3\xA9\xE2\x82\xAC { \xF0\x9F\x98\x80 : 1; }"),
            "s:1:8: expected a \"=\" after property name\n\xC3\xA9\xE2\x82\xAC { "
            "\xF0\x9F\x98\x80 : 1; }\n       ^");
}

TEST(SceneErrors, TabsTakeOneColumn) {
  EXPECT_EQ(reportOf("A\ta {\n\tx\t: 1;"),
            "s:2:4: expected a \"=\" after property name\n x : 1;\n   ^");
}

TEST(SceneErrors, LineEndIsNotShown) {
  EXPECT_EQ(reportOf("A a {\r\n  5 5\r\n}"),
            "s:2:5: expected a \"=\" after property name\n  5 5\n    ^");
}

TEST(SceneErrors, LongLinesAreCutAroundTheToken) {
  const std::string before(150, 'a');
  const std::string behind(150, 'b');
  EXPECT_EQ(reportOf(before + " 5 " + behind),
            "s:1:152: expected a \"{\" at beginning of object definition\n..." +
                std::string(49, 'a') + " 5 " + std::string(48, 'b') + "...\n" +
                std::string(53, ' ') + "^");
  EXPECT_EQ(reportOf("5 " + behind),
            "s:1:1: Expected identifier\n5 " + std::string(98, 'b') + "...\n^");
  EXPECT_EQ(reportOf(before), "s:1:151: expected a \"{\" at beginning of object definition\n..." +
                                  std::string(50, 'a') + "\n" + std::string(53, ' ') + "^");
}

TEST(SceneErrors, CutsFallBetweenCharacters) {
  std::string before;
  for (int i = 0; i < 150; ++i) before += "\xC3\xA9";
  std::string shown;
  for (int i = 0; i < 49; ++i) shown += "\xC3\xA9";
  EXPECT_EQ(reportOf(before + " 5 " + before),
            "s:1:152: expected a \"{\" at beginning of object definition\n..." + shown + " 5 " +
                shown.substr(2) + "...\n" + std::string(53, ' ') + "^");
}

TEST(SceneErrors, LineOfExactlyTheShownLengthIsWhole) {
  const std::string line = "5 " + std::string(98, 'b');
  EXPECT_EQ(reportOf(line), "s:1:1: Expected identifier\n" + line + "\n^");
}

TEST(SceneErrors, ControlCharactersAreMadeHarmless) {
  const std::string text = "A a { x = \x1B[2J\x7F; }";
  const Scene scene = Scene::fromText(text, "s\x1B[2J\n.scene");
  EXPECT_EQ(scene.error().message, "Token \"\x1B\" not recognized as valid token");
  EXPECT_EQ(scene.error().sourceLine, text);
  EXPECT_EQ(report(scene.error()),
            "s?[2J?.scene:1:11: Token \"?\" not recognized as valid token\nA a { x = ?[2J?; }\n"
            "          ^");
}

TEST(SceneErrors, ControlCharactersOfTwoBytesAreMadeHarmlessToo) {
  // U+009B opens a command of many terminals; U+00A0 and U+00E9 are ordinary characters.
  EXPECT_EQ(reportOf("A a { x\xC2\x9B\xC2\xA0\xC3\xA9 \"\xC2\x80\xC2\x9F\" }"),
            "s:1:12: expected a \"=\" after property name\nA a { x?\xC2\xA0\xC3\xA9 \"??\" }\n"
            "           ^");
}

TEST(SceneErrors, MessageWithALongTokenIsWhole) {
  const std::string text(5000, 't');
  const Scene scene = Scene::fromText("A a { x = " + text + "(1); }", "s");
  EXPECT_EQ(scene.error().message, "Functor \"" + text + "\" not recognized");
  EXPECT_EQ(scene.error().column, 11);
}

TEST(SceneErrors, LimitsAreReportedAsErrorsOfTheText) {
  SceneOptions options;
  options.maxObjects = 2;
  EXPECT_TRUE(Scene::fromText("A a {} A a {}", options));
  const Scene three = Scene::fromText("A a {} A a {}\n A a {}", options);
  EXPECT_EQ(three.error().kind, SceneError::Kind::kInvalid);
  EXPECT_EQ(three.error().message, "The scene has more than 2 objects");
  EXPECT_EQ(three.error().position(), "<text>:2:2");
}

TEST(SceneErrors, SceneOfTooManyBytesIsUnreadable) {
  SceneOptions options;
  options.limits.maxBytes = 6;
  EXPECT_TRUE(Scene::fromText("A a {}", options));
  const Scene longer = Scene::fromText("A ab {}", "a.scene", options);
  EXPECT_EQ(longer.error().kind, SceneError::Kind::kUnreadable);
  EXPECT_EQ(longer.error().message, "The scene has more than 6 bytes");
  EXPECT_EQ(longer.error().position(), "a.scene");
}
