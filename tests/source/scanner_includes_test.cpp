#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "kelp/utils/exceptions.h"
#include "tests/support/allocations.h"
#include "tests/support/temporaryfiles.h"
#include "tests/support/tokenlist.h"

using namespace Kelp;
using namespace std::string_literals;
using KelpTest::tokensOf;

namespace {

class ScannerIncludes : public testing::Test {
 protected:
  // The tokens of a file that holds `text`.
  std::string tokensOfMain(const std::string& text) {
    reader.openFile(files.write("main.scene", text).c_str());
    return KelpTest::remainingTokens(scanner);
  }

  // The next token and where the reader then stands: "TOKEN FILE:LINE", without the directory.
  std::string next() {
    Token token;
    scanner.scan(token);
    std::string file = reader.getCurrentFile().chars();
    file.erase(0, files.directory.string().size() + 1);
    return KelpTest::shown(token) + ' ' + file + ':' + std::to_string(reader.getCurrentLine());
  }

  const KelpTest::TemporaryFiles files;
  SourcesReader reader;
  Scanner scanner{&reader};
};

}  // namespace

TEST_F(ScannerIncludes, TokensStandInPlaceOfTheLine) {
  files.write("b.inc", "b c");
  EXPECT_EQ(tokensOfMain("a\n#include \"b.inc\"\nd"), "id:a id:b id:c id:d");
}

TEST_F(ScannerIncludes, LinesOfATextAreForgottenWithIt) {
  files.write("b.inc", "b ");
  std::string text;
  for (int i = 0; i < 500; ++i) text += "#include \"b.inc\"\n";
  tokensOfMain(text);
  const int64_t before = KelpTest::liveAllocations();
  tokensOfMain(text);
  EXPECT_LT(KelpTest::liveAllocations() - before, 10);
}

TEST_F(ScannerIncludes, WaysToWriteTheLine) {
  files.write("b.inc", "b");
  for (const char* line :
       {"#include \"b.inc\"", "  \t#include \"b.inc\"", "#include\"b.inc\"",
        "#include \t \"b.inc\"", "#include \"b.inc\"   ", "#include \"b.inc\" // c",
        "#include \"b.inc\"//", "#include \"b.inc\" /* c */", "#include \"b.inc\"/* c */ // d",
        "#include \"b.inc\" /* c */ /* d */ ", "#include \"b.inc\" /* c\n d */",
        "#include \"b.inc\" /* c */ /* d\n e */", "#include \"b.inc\"\r"}) {
    EXPECT_EQ(tokensOfMain("a\n"s + line), "id:a id:b") << line;
    EXPECT_EQ(tokensOfMain(line + "\nz"s), "id:b id:z") << line;
  }
}

TEST_F(ScannerIncludes, FirstLineBehindAByteOrderMark) {
  files.write("b.inc",
              "\xEF\xBB\xBF"
              "b");
  EXPECT_EQ(tokensOfMain("\xEF\xBB\xBF#include \"b.inc\"\nc"), "id:b id:c");
}

TEST_F(ScannerIncludes, TextThatIsNoIncludeIsAMark) {
  files.write("b.inc", "b");
  const std::pair<const char*, const char*> rows[] = {
      {"a #include \"b.inc\"", "id:a ?:# id:include str:b.inc"},
      {"/**/ #include \"b.inc\"", "?:# id:include str:b.inc"},
      {"/*\n*/ #include \"b.inc\"", "?:# id:include str:b.inc"},
      {"##include \"b.inc\"", "?:# ?:# id:include str:b.inc"},
      {"#includes \"b.inc\"", "?:# id:includes str:b.inc"},
      {"#include5 \"b.inc\"", "?:# id:include5 str:b.inc"},
      {"#include\xC3\xA9 \"b.inc\"", "?:# id:include\xC3\xA9 str:b.inc"},
      {"#Include \"b.inc\"", "?:# id:Include str:b.inc"},
      {"# include \"b.inc\"", "?:# id:include str:b.inc"},
      {"#inc", "?:# id:inc"},
      {"#", "?:#"},
  };
  for (const auto& [text, tokens] : rows) EXPECT_EQ(tokensOfMain(text), tokens) << text;
}

TEST_F(ScannerIncludes, LineWithoutAQuotedNameFails) {
  const std::string message = "error: #include needs the name of a file in double quotes on line 1";
  for (const char* text : {"#include", "#include b.inc", "#include <b.inc>", "#include \"b.inc",
                           "#include \"b.inc\n\"", "#include \n\"b.inc\"", "#include // \"b.inc\"",
                           "#include 'b.inc'"}) {
    EXPECT_EQ(tokensOfMain(text), message) << text;
  }
  EXPECT_EQ(tokensOfMain("#include \"\""), "error: #include needs the name of a file");
}

TEST_F(ScannerIncludes, TextBehindTheNameFails) {
  files.write("b.inc", "b");
  for (const char* text : {"#include \"b.inc\" c", "#include \"b.inc\";", "#include \"b.inc\"\"",
                           "#include \"b.inc\" /* c */ d", "#include \"b.inc\" /",
                           "#include \"b.inc\" #include \"b.inc\""}) {
    EXPECT_EQ(tokensOfMain("\n"s + text), "error: Text after the file name of #include on line 2")
        << text;
  }
}

TEST_F(ScannerIncludes, MissingFileAndDirectoryFail) {
  const std::string missing = files.path("missing.inc");
  EXPECT_EQ(tokensOfMain("a #\n#include \"missing.inc\""),
            "id:a ?:# error: Cannot read \"" + missing + "\": No such file or directory");
  files.write("dir/b.inc", "b");
  EXPECT_EQ(tokensOfMain("#include \"dir\""),
            "error: Cannot read \"" + files.path("dir") + "\": Is a directory");
  EXPECT_EQ(tokensOfMain("#include \"" + missing + "\""),
            "error: Cannot read \"" + missing + "\": No such file or directory");
}

TEST_F(ScannerIncludes, FailureIsReportedAtTheLine) {
  EXPECT_EQ(tokensOfMain("a\n  #include \"missing.inc\"\nb").substr(0, 12), "id:a error: ");
  EXPECT_TRUE(scanner.failed());
  EXPECT_EQ(scanner.locate(0).line, 2);
  EXPECT_EQ(scanner.locate(0).column, 3);
  EXPECT_EQ(scanner.locate(0).sourceLine, "  #include \"missing.inc\"");
  EXPECT_EQ(reader.getCurrentLine(), 2);
  EXPECT_EQ(KelpTest::remainingTokens(scanner).substr(0, 6), "error:");
}

TEST_F(ScannerIncludes, LookedUpBesideTheIncludingFile) {
  files.write("sub/b.inc", "b\n#include \"c.inc\"\n#include \"../d.inc\"");
  files.write("sub/c.inc", "below");
  files.write("c.inc", "above");
  files.write("d.inc", "d");
  EXPECT_EQ(tokensOfMain("#include \"sub/b.inc\"\n#include \"c.inc\""),
            "id:b id:below id:d id:above");
}

TEST_F(ScannerIncludes, ThenAlongTheIncludePathsInTheirOrder) {
  files.write("one/b.inc", "one");
  files.write("two/b.inc", "two");
  files.write("two/c.inc", "c");
  files.write("beside.inc", "main");
  files.write("one/beside.inc", "path");
  reader.addIncludePath(files.path("none").c_str());
  reader.addIncludePath(files.path("one").c_str());
  reader.addIncludePath(files.path("two").c_str());
  EXPECT_EQ(tokensOfMain("#include \"b.inc\"\n#include \"c.inc\"\n#include \"beside.inc\""),
            "id:one id:c id:main");
}

TEST_F(ScannerIncludes, AbsolutePathIsTakenAsItIs) {
  const std::string path = files.write("far/b.inc", "b");
  EXPECT_EQ(tokensOfMain("#include \"" + path + "\""), "id:b");
}

TEST_F(ScannerIncludes, BackslashInANameIsACharacter) {
  files.write("b\\c.inc", "b");
  EXPECT_EQ(tokensOfMain("#include \"b\\c.inc\""), "id:b");
}

TEST_F(ScannerIncludes, TextInMemoryIncludesBesideItsName) {
  files.write("b.inc", "b");
  const std::string text = "#include \"b.inc\"";
  const auto length = static_cast<int64_t>(text.size());
  reader.openText(text.data(), length, files.path("not there.scene").c_str());
  EXPECT_EQ(KelpTest::remainingTokens(scanner), "id:b");
}

TEST_F(ScannerIncludes, FileThatIncludesItselfFails) {
  const std::string main = files.path("main.scene");
  EXPECT_EQ(tokensOfMain("a\n#include \"main.scene\""),
            "id:a error: File \"" + main + "\" includes itself");
}

TEST_F(ScannerIncludes, CycleFailsUnderAnyName) {
  const std::string back = files.path("sub/back.scene");
  files.write("sub/b.inc", "b\n#include \"back.scene\"");
  std::filesystem::create_symlink(files.path("main.scene"), back);
  EXPECT_EQ(tokensOfMain("a\n#include \"sub/b.inc\""),
            "id:a id:b error: File \"" + back + "\" includes itself");
}

TEST_F(ScannerIncludes, FileMayBeIncludedAgainOnceItHasEnded) {
  files.write("b.inc", "b");
  EXPECT_EQ(tokensOfMain("#include \"b.inc\"\n#include \"b.inc\"\n"), "id:b id:b");
}

TEST_F(ScannerIncludes, SixtyFourFilesDeepAreAllowedAndNoMore) {
  const auto name = [](int i) { return std::to_string(i) + ".inc"; };
  std::string expected = "id:m";
  for (int i = 2; i <= 64; ++i) {
    const std::string next = i < 64 ? "\n#include \"" + name(i + 1) + '"' : "";
    files.write(name(i), "f" + std::to_string(i) + next);
    expected += " id:f" + std::to_string(i);
  }
  EXPECT_EQ(tokensOfMain("m\n#include \"2.inc\"\nend"), expected + " id:end");
  files.write(name(64), "f64\n#include \"65.inc\"");
  files.write(name(65), "f65");
  EXPECT_EQ(tokensOfMain("m\n#include \"2.inc\"\nend"),
            expected + " error: Files are included more than 64 deep at \"65.inc\"");
}

TEST_F(ScannerIncludes, SixtyFourAreCountedInDepthOnly) {
  files.write("b.inc", "b");
  std::string text;
  std::string expected;
  for (int i = 0; i < 100; ++i) {
    text += "#include \"b.inc\"\n";
    expected += i == 0 ? "id:b" : " id:b";
  }
  EXPECT_EQ(tokensOfMain(text), expected);
}

TEST_F(ScannerIncludes, EmptyFilesGiveNothing) {
  files.write("empty.inc", "");
  files.write("mark.inc", "\xEF\xBB\xBF");
  files.write("blank.inc", " \n// c\n");
  EXPECT_EQ(tokensOfMain("a\n#include \"empty.inc\"\n#include \"mark.inc\"\nb\n"
                         "#include \"blank.inc\"\n#include \"empty.inc\""),
            "id:a id:b");
}

TEST_F(ScannerIncludes, TokensDoNotRunAcrossTheEndOfAFile) {
  const std::string rest = "\n#include \"b.inc\"\nrest";
  const std::pair<const char*, const char*> rows[] = {
      {"na", "id:na id:rest"},
      {"1.", "num:1. id:rest"},
      {"1e", "num:1 id:e id:rest"},
      {"1.#", "num:1. ?:# id:rest"},
      {"/", "/ id:rest"},
      {"\"s\"", "str:s id:rest"},
      {"// c", "id:rest"},
      {"#include",
       "error: #include needs the name of a file in double "
       "quotes on line 1"},
      {"\"s", "error: The string that begins on line 1 never ends"},
      {"/* c", "error: The comment that begins on line 1 never ends"},
  };
  for (const auto& [included, tokens] : rows) {
    files.write("b.inc", included);
    EXPECT_EQ(tokensOfMain(rest), tokens) << included;
  }
}

TEST_F(ScannerIncludes, PositionIsThatOfTheLastToken) {
  files.write("sub/b.inc", "b1\nb2\n\n");
  reader.openFile(files.write("main.scene", "a\n#include \"sub/b.inc\"\n\nc\n\n").c_str());
  EXPECT_EQ(next(), "id:a main.scene:1");
  EXPECT_EQ(next(), "id:b1 sub/b.inc:1");
  EXPECT_EQ(std::string(reader.getCurrentFileDir().chars()), files.path("sub"));
  EXPECT_EQ(next(), "id:b2 sub/b.inc:2");
  EXPECT_EQ(scanner.locate(0).sourceLine, "b2");
  EXPECT_EQ(next(), "id:c main.scene:4");
  EXPECT_EQ(std::string(reader.getCurrentFileDir().chars()), files.directory.string());
  EXPECT_EQ(std::string(scanner.locate(1).file.chars()), files.path("sub/b.inc"));
  EXPECT_EQ(next(), "end main.scene:6");
}

TEST_F(ScannerIncludes, EndOfAllInputIsInTheScenesOwnFile) {
  files.write("b.inc", "b\n\n\n#include \"c.inc\"");
  files.write("c.inc", "c\n\n\n\n\n");
  reader.openFile(files.write("main.scene", "\n#include \"b.inc\"").c_str());
  EXPECT_EQ(next(), "id:b b.inc:1");
  EXPECT_EQ(next(), "id:c c.inc:1");
  EXPECT_EQ(next(), "end main.scene:2");
  EXPECT_EQ(next(), "end main.scene:2");
}
