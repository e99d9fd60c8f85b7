// The messages about text that no token can be made of and about files, behind every token of a
// scene with all forms.
#include <gtest/gtest.h>

#include <algorithm>
#include <set>
#include <sstream>

#include "kelp/scene.h"
#include "tests/support/balance.h"
#include "tests/support/figures.h"
#include "tests/support/temporaryfiles.h"

using namespace Kelp;
using namespace KelpTest;
using namespace std::string_literals;

namespace {

// One blank between the tokens, and none within.
constexpr const char* kScene =
    "A a { x = - 1 + ( b . c [ 0 ] . x ) * sin ( d ) / 2.5e3 ; s = \"t\" ; r = e :: f ; "
    "l = List ( 1 , List ( ) ) ; i = interpolate ( ( 0 , g ) , ( 1 , 2 ) ) ; v = Vector ( 1 , 2 , "
    "3 ) ; c = Color ( 1 , 2 , 3 ) ; q = AColor ( 1 , 2 , 3 , 4 ) ; m = Matrix ( v , v , v ) ; t = "
    "Transform ( m , v ) ; h = TransformHex ( \"00\" ) ; 5 = ListIntHex ( \"11\" ) ; j = ListInt ( "
    "1 , - 2 ) ; k = ListFloat ( + 1 , ) ; n = ListString ( \"u\" , \"v\" ) ; o = ListVector ( "
    "Vector ( 1 , 2 , 3 ) ) ; p = ListColor ( Color ( 1 , 2 , 3 ) , ) ; } B { } C c { }";

// A fault at the start of a line.
struct Fault {
  std::string text;
  std::string message;  // # stands for the line that the fault begins on, % for the folder
  int column = 1;       // where the fault is found, if it is not its start
  int linesOn = 0;      // how far behind its start the message sees it
};

const std::vector<Fault>& faults() {
  static const std::vector<Fault> all = {
      {"\"abc", "The string that begins on line # never ends"},
      {"\"abc\n\n;", "The string that begins on line # never ends"},
      {"\"abc\\\";", "The string that begins on line # never ends"},
      {"\"", "The string that begins on line # never ends"},
      {"/*", "The comment that begins on line # never ends"},
      {"/* abc *\n\n/", "The comment that begins on line # never ends"},
      {"\0"s, "NUL byte on line #"},
      {" \t\0;"s, "NUL byte on line #", 3},
      {"/**/\0"s, "NUL byte on line #", 5},
      {"// a\0b"s, "NUL byte on line #"},
      {"// a\0\n;"s, "NUL byte on line #"},
      {"/* a\0 */"s, "NUL byte on line #"},
      {"/* a\n\0 */"s, "NUL byte on line #", 1, 1},
      {"\"a\0\""s, "NUL byte on line #"},
      {"\"a\n\n\0\""s, "NUL byte on line #", 1, 2},
      {"\"a\\\0\""s, "NUL byte on line #"},
      {"#include", "#include needs the name of a file in double quotes on line #"},
      {"#include b", "#include needs the name of a file in double quotes on line #"},
      {"#include <b>\n", "#include needs the name of a file in double quotes on line #"},
      {"#include \"b", "#include needs the name of a file in double quotes on line #"},
      {"#include \"b\nc\"", "#include needs the name of a file in double quotes on line #"},
      {"#include \"b\0\""s, "NUL byte on line #"},
      {"#include \"\"", "#include needs the name of a file"},
      {"#include \"b\" c", "Text after the file name of #include on line #"},
      {"#include \"b\";\n", "Text after the file name of #include on line #"},
      {"#include \"b\" /* c */ d", "Text after the file name of #include on line #"},
      {"#include \"missing\"", "Cannot read \"%missing\": No such file or directory"},
      {"\t#include \"missing\" // a", "Cannot read \"%missing\": No such file or directory", 2},
      {"#include \"no/missing\"", "Cannot read \"%no/missing\": No such file or directory"},
      {"#include \"/nonexistent/a\"", "Cannot read \"/nonexistent/a\": No such file or directory"},
      {"#include \"folder\"", "Cannot read \"%folder\": Is a directory"},
      {"#include \"empty/b\"", "Cannot read \"%empty/b\": Not a directory"},
      {"#include \"main.scene\"", "File \"%main.scene\" includes itself"},
      {"#include \"folder/../main.scene\"", "File \"%folder/../main.scene\" includes itself"},
  };
  return all;
}

std::string replaced(std::string text, const std::string& part, const std::string& by) {
  const size_t at = text.find(part);
  return at == std::string::npos ? text : text.replace(at, part.size(), by);
}

// The scene cut behind each of its tokens, and before the first.
std::vector<std::string> beginnings() {
  std::vector<std::string> all = {""};
  std::istringstream tokens(kScene);
  std::string token;
  while (tokens >> token) all.push_back(all.back() + token + ' ');
  return all;
}

class SourceMessages : public testing::Test {
 protected:
  SourceMessages() {
    files.write("folder/file", "");
    files.write("empty", "");
  }

  std::string messageOf(const Fault& fault, int line) const {
    const std::string message =
        replaced(fault.message, " line #", " line " + std::to_string(line + fault.linesOn));
    return replaced(message, "%", files.path(""));
  }

  // Anew: writing over a file has some systems bring the old one to the disk first.
  std::string written(const std::string& name, const std::string& text) const {
    std::filesystem::remove(files.path(name));
    return files.write(name, text);
  }

  static void expectError(const Scene& scene, const std::string& message, const std::string& file,
                          int line, int column) {
    const SceneError& error = scene.error();
    EXPECT_EQ(error.kind, SceneError::Kind::kInvalid);
    EXPECT_EQ(error.message, message);
    EXPECT_EQ(error.tokenFile, file);
    EXPECT_EQ(error.tokenLine, line);
    EXPECT_EQ(error.column, column);
    EXPECT_EQ(error.file, file);
    EXPECT_EQ(error.line, line);
    EXPECT_EQ(scene.parser().referenceNames.count, 0);
  }

  TemporaryFiles files;
  SceneOptions options = [] {
    SceneOptions collecting;
    collecting.collectReferences = true;
    return collecting;
  }();
};

}  // namespace

TEST_F(SourceMessages, EachArisesBehindEveryToken) {
  long long places = 0;
  std::set<std::string> texts;
  for (const std::string& before : beginnings()) {
    for (const Fault& fault : faults()) {
      SCOPED_TRACE(before + '\n' + fault.text);
      const std::string main = written("main.scene", before + '\n' + fault.text);
      const int live = livePoolElements();
      expectError(Scene::fromFile(main, options), messageOf(fault, 2), main, 2, fault.column);
      EXPECT_EQ(livePoolElements(), live);
      ++places;
      texts.insert(fault.message);
    }
  }
  reportFigure("message matrix, sources", grouped(static_cast<long long>(texts.size())) +
                                              " texts at " + grouped(places) + " places");
}

TEST_F(SourceMessages, EachArisesInAnIncludedFile) {
  for (const std::string before : {"", "\n\n", "A a { x = 1; }\n\n"}) {
    for (const Fault& fault : faults()) {
      SCOPED_TRACE(before + fault.text);
      const std::string part = written("part.inc", before + fault.text);
      const std::string main = written("main.scene", "\n#include \"part.inc\"\nB b { }");
      const int line = 1 + static_cast<int>(std::count(before.begin(), before.end(), '\n'));
      expectBalanced([&] {
        expectError(Scene::fromFile(main, options), messageOf(fault, line), part, line,
                    fault.column);
      });
    }
  }
}

// The parser's caller meets the failure itself as long as no program exists.
TEST_F(SourceMessages, OnesInTheFirstTwoTokensAreThrown) {
  const std::vector<std::string> cuts = beginnings();
  for (size_t tokens = 0; tokens < cuts.size(); ++tokens) {
    const std::string text = cuts[tokens] + "\"abc";
    SCOPED_TRACE(text);
    expectBalanced([&] {
      TextParser source(text);
      bool thrown = false;
      try {
        EXPECT_EQ(source.parser.parseProgram(), nullptr);
      } catch (const InvalidSourceFile& failure) {
        thrown = true;
        EXPECT_STREQ(failure.message.chars(), "The string that begins on line 1 never ends");
        EXPECT_TRUE(source.parser.errorInfo.getErrorText().isNull());
      }
      EXPECT_EQ(thrown, tokens < 2);
    });
  }
}

TEST_F(SourceMessages, OneFileMoreThan64ArisesBehindEveryToken) {
  files.write("63.inc", "A deepest { }\n");
  for (int i = 1; i < 63; ++i) {
    files.write(std::to_string(i) + ".inc", "#include \"" + std::to_string(i + 1) + ".inc\"\n");
  }
  files.write("0.inc", "#include \"1.inc\"\n");
  const std::string good = written("main.scene", "#include \"1.inc\"\n");
  EXPECT_TRUE(Scene::fromFile(good, options));
  for (const std::string& before : beginnings()) {
    const std::string main = written("main.scene", before + "\n#include \"0.inc\"");
    expectError(Scene::fromFile(main, options),
                "Files are included more than 64 deep at \"63.inc\"", files.path("62.inc"), 1, 1);
  }
}

TEST_F(SourceMessages, OnesOfTheScenesOwnFileHaveNoPlace) {
  struct Row {
    const char* name;
    const char* reason;
  };
  const Row rows[] = {
      {"missing", "No such file or directory"},
      {"no/missing", "No such file or directory"},
      {"empty/b", "Not a directory"},
      {"folder", "Is a directory"},
  };
  for (const Row& row : rows) {
    const std::string path = files.path(row.name);
    expectBalanced([&] {
      const Scene scene = Scene::fromFile(path, options);
      EXPECT_EQ(scene.error().kind, SceneError::Kind::kUnreadable);
      EXPECT_EQ(scene.error().message, "Cannot read \"" + path + "\": " + row.reason);
      EXPECT_EQ(scene.error().file, path);
      EXPECT_EQ(scene.error().line, 0);
      EXPECT_EQ(scene.error().tokenLine, 0);
    });
  }
}
