// What a reader refuses to read: limits on bytes, includes and strings, and folders to stay in.
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <chrono>
#include <filesystem>
#include <string>
#include <thread>

#include "kelp/utils/exceptions.h"
#include "tests/support/allocations.h"
#include "tests/support/parsing.h"
#include "tests/support/temporaryfiles.h"
#include "tests/support/tokenlist.h"

using namespace Kelp;
using namespace std::chrono_literals;

namespace {

class ReaderLimits : public testing::Test {
 protected:
  /// The tokens of a scene, "error: MESSAGE" behind the last good one.
  std::string tokensOf(const std::string& text, const std::string& name = "main.scene") {
    const std::string path = files.write(name, text);
    try {
      reader.openFile(path.c_str());
    } catch (const InvalidSourceFile& failure) {
      return std::string("not opened: ") + failure.message.chars();
    }
    return KelpTest::remainingTokens(scanner);
  }

  const KelpTest::TemporaryFiles files;
  SourcesReader reader;
  Scanner scanner{&reader};
};

const char* const kTooManyBytes = "The scene has more than 10 bytes";

}  // namespace

// ---- bytes -------------------------------------------------------------------------------------

TEST_F(ReaderLimits, AsManyBytesAsAllowedAreRead) {
  for (const bool map : {false, true}) {
    reader.mapFiles = map;
    reader.limits.maxBytes = 10;
    EXPECT_EQ(tokensOf("0123456789"), "num:0123456789");
    EXPECT_EQ(tokensOf("0123456789a"), std::string("not opened: ") + kTooManyBytes);
    reader.limits.maxBytes = 0;
    EXPECT_EQ(tokensOf("0123456789 a"), "num:0123456789 id:a");
  }
}

TEST_F(ReaderLimits, TextInMemoryCountsAsAFileDoes) {
  reader.limits.maxBytes = 10;
  reader.openText("0123456789", 10, "text");
  EXPECT_EQ(KelpTest::remainingTokens(scanner), "num:0123456789");
  reader.openText("a", 1, "text");
  EXPECT_THROW(reader.openText("0123456789a", 11, "text"), InvalidSourceFile);
  EXPECT_EQ(KelpTest::remainingTokens(scanner), "id:a");  // the text that was open still is
}

TEST_F(ReaderLimits, BorrowedTextCountsAsWell) {
  const std::string text = "0123456789" + std::string(SourcesReader::kPadding, '\0');
  reader.limits.maxBytes = 10;
  reader.borrowText(text.data(), 10, "text");
  EXPECT_EQ(KelpTest::remainingTokens(scanner), "num:0123456789");
  EXPECT_THROW(reader.borrowText(text.data(), 11, "text"), InvalidSourceFile);
}

TEST_F(ReaderLimits, IncludesCountEveryTime) {
  files.write("two", "bb");
  reader.limits.maxBytes = 17 + 2 + 17 + 2;
  const std::string include = "#include \"two\" //";
  EXPECT_EQ(tokensOf(include + "\n" + include.substr(0, 15)), "id:bb id:bb");
  EXPECT_EQ(reader.bytesRead(), 33 + 2 + 2);
  reader.limits.maxBytes = 33 + 2 + 1;
  EXPECT_EQ(tokensOf(include + "\n" + include.substr(0, 15)),
            "id:bb error: The scene has more than 36 bytes");
}

TEST_F(ReaderLimits, BytesOfEarlierScenesDoNotCount) {
  reader.limits.maxBytes = 10;
  for (int scene = 0; scene < 3; ++scene) EXPECT_EQ(tokensOf("01234567"), "num:01234567");
  EXPECT_EQ(reader.bytesRead(), 24);
}

TEST_F(ReaderLimits, FileWithoutAnEndIsGivenUp) {
  reader.limits.maxBytes = 1 << 20;
  try {
    reader.openFile("/dev/zero");
    FAIL();
  } catch (const InvalidSourceFile& failure) {
    EXPECT_STREQ(failure.message.chars(), "The scene has more than 1048576 bytes");
  }
}

// ---- includes ----------------------------------------------------------------------------------

TEST_F(ReaderLimits, AsManyIncludesAsAllowedAreFollowed) {
  files.write("b", "b");
  reader.limits.maxIncludes = 2;
  const std::string line = "#include \"b\"\n";
  EXPECT_EQ(tokensOf(line + line), "id:b id:b");
  EXPECT_EQ(tokensOf(line + line + line), "id:b id:b error: The scene includes more than 2 files");
  reader.limits.maxIncludes = 0;
  EXPECT_EQ(tokensOf(line + line + line), "id:b id:b id:b");
}

TEST_F(ReaderLimits, FilesThatDoubleAtEveryStepEnd) {
  // 2^40 includes, but only 41 deep.
  constexpr int kFiles = 40;
  for (int i = 0; i < kFiles; ++i) {
    const std::string next = "#include \"" + std::to_string(i + 1) + "\"\n";
    files.write(std::to_string(i), next + next);
  }
  files.write(std::to_string(kFiles), "");
  EXPECT_EQ(tokensOf("#include \"0\""), "error: The scene includes more than 100000 files");
}

TEST_F(ReaderLimits, FileIncludedAgainIsReadOnce) {
  files.write("b", "b");
  std::string text;
  for (int i = 0; i < 100; ++i) text += "#include \"b\"\n";
  const int64_t before = KelpTest::liveAllocations();
  EXPECT_EQ(tokensOf(text).size(), 100 * 5 - 1);  // "id:b" with blanks between
  EXPECT_LT(KelpTest::liveAllocations() - before, 30);
}

TEST_F(ReaderLimits, FileThatChangedIsReadAgain) {
  files.write("b", "before");
  EXPECT_EQ(tokensOf("#include \"b\""), "id:before");
  files.write("b", "behind it");
  EXPECT_EQ(tokensOf("#include \"b\""), "id:behind id:it");
}

TEST_F(ReaderLimits, FileThatWasReplacedIsReadAgain) {
  namespace fs = std::filesystem;
  const std::string path = files.write("b", "before");
  const auto stamp = fs::last_write_time(path);
  const auto sameBut = [&](const char* text, std::chrono::nanoseconds later) {
    const std::string other = files.write("other", text);
    fs::last_write_time(other, stamp + later);
    fs::rename(other, path);
  };
  EXPECT_EQ(tokensOf("#include \"b\""), "id:before");
  sameBut("behind", {});
  EXPECT_EQ(tokensOf("#include \"b\""), "id:behind");
  fs::remove(path);
  fs::create_symlink("/proc/sys/kernel/ostype", path);  // on another device
  EXPECT_EQ(tokensOf("#include \"b\""), "id:Linux");
  fs::remove(path);
  EXPECT_EQ(tokensOf("#include \"b\""),
            "error: Cannot read \"" + path + "\": No such file or directory");
}

TEST_F(ReaderLimits, FileThatWasWrittenAnewIsReadAgain) {
  const std::string path = files.write("b", "before");
  EXPECT_EQ(tokensOf("#include \"b\""), "id:before");
  const auto stamp = std::filesystem::last_write_time(path);
  const auto written = [&](const char* text, std::chrono::nanoseconds later) {
    files.write("b", text);
    std::filesystem::last_write_time(path, stamp + later);
    return tokensOf("#include \"b\"");
  };
  EXPECT_EQ(written("behind", 1ns), "id:behind");
  EXPECT_EQ(written("beyond", 1ns + 1s), "id:beyond");
}

TEST_F(ReaderLimits, PipesAndDevicesAreNotIncluded) {
  // Opening this pipe would wait for a writer, and the device never ends.
  ASSERT_EQ(::mkfifo(files.path("pipe").c_str(), 0600), 0);
  EXPECT_EQ(tokensOf("#include \"pipe\""),
            "error: Cannot read \"" + files.path("pipe") + "\": not a regular file");
  EXPECT_EQ(tokensOf("#include \"/dev/zero\""),
            "error: Cannot read \"/dev/zero\": not a regular file");
}

// ---- folders -----------------------------------------------------------------------------------

namespace {

// A scene's folder beside another one.
class Confined : public ReaderLimits {
 protected:
  Confined() {
    files.write("scene/in", "in");
    files.write("scene/sub/deep", "deep\n#include \"../in\"");
    files.write("scene/sub/out", "#include \"../../other/far\"");
    files.write("other/far", "far");
    files.write("scene2/far", "far");
    reader.limits.confine = true;
  }

  std::string included(const std::string& path) {
    return tokensOf("#include \"" + path + "\"", "scene/main.scene");
  }
  std::string refused(const std::string& path) const {
    return "error: File \"" + path + "\" lies outside the scene's folder";
  }
  std::string inScene(const std::string& path) const { return files.path("scene/" + path); }
};

}  // namespace

TEST_F(Confined, FilesBelowTheScenesFolderAreIncluded) {
  EXPECT_EQ(included("in"), "id:in");
  EXPECT_EQ(included("sub/deep"), "id:deep id:in");
  EXPECT_EQ(included("sub/../in"), "id:in");
  EXPECT_EQ(included("../scene/in"), "id:in");
  EXPECT_EQ(included(inScene("in")), "id:in");
}

TEST_F(Confined, FilesElsewhereAreRefused) {
  EXPECT_EQ(included("../other/far"), refused(inScene("../other/far")));
  EXPECT_EQ(included("../scene2/far"), refused(inScene("../scene2/far")));
  EXPECT_EQ(included("sub/out"), refused(inScene("sub/../../other/far")));
  EXPECT_EQ(included("/etc/passwd"), refused("/etc/passwd"));
  reader.limits.confine = false;
  EXPECT_EQ(included("../other/far"), "id:far");
}

TEST_F(Confined, AnswerDoesNotTellWhetherAFileExists) {
  EXPECT_EQ(included("../other/none"), refused(inScene("../other/none")));
  EXPECT_EQ(included("none"),
            "error: Cannot read \"" + inScene("none") + "\": No such file or directory");
}

TEST_F(Confined, LinksLeadWhereTheyPointTo) {
  std::filesystem::create_symlink(files.path("other/far"), inScene("link"));
  std::filesystem::create_directory_symlink(files.path("other"), inScene("folder"));
  std::filesystem::create_symlink(inScene("in"), files.path("other/back"));
  std::filesystem::create_symlink("loop", inScene("loop"));
  EXPECT_EQ(included("link"), refused(inScene("link")));
  EXPECT_EQ(included("folder/far"), refused(inScene("folder/far")));
  EXPECT_EQ(included("../other/back"), "id:in");
  EXPECT_EQ(included("loop"), refused(inScene("loop")));
}

TEST_F(Confined, TextInAFolderThatIsNotThereIncludesNothing) {
  const std::string text = "#include \"" + files.path("other/far") + "\"";
  reader.openText(text.data(), static_cast<int64_t>(text.size()), "no such folder/main.scene");
  EXPECT_EQ(KelpTest::remainingTokens(scanner), refused(files.path("other/far")));
}

TEST_F(Confined, IncludePathsAreAllowedToo) {
  reader.addIncludePath(files.path("other").c_str());
  EXPECT_EQ(included("far"), "id:far");
  EXPECT_EQ(included("../scene2/far"), refused(inScene("../scene2/far")));
}

TEST_F(Confined, TextInMemoryIsConfinedToTheFolderOfItsName) {
  for (const auto& [name, tokens] : {std::pair(inScene("text"), std::string("id:in")),
                                     std::pair(files.path("other/text"), refused(inScene("in")))}) {
    const std::string text = "#include \"" + inScene("in") + "\"";
    reader.openText(text.data(), static_cast<int64_t>(text.size()), name.c_str());
    EXPECT_EQ(KelpTest::remainingTokens(scanner), tokens);
  }
}

// ---- strings -----------------------------------------------------------------------------------

TEST_F(ReaderLimits, StringsAreAsLongAsNodesCanCount) {
  EXPECT_EQ(reader.limits.maxStringLength, 2147483646);
}

TEST_F(ReaderLimits, NegativeLengthAllowsNoString) {
  for (const bool plain : {true, false}) {
    KelpTest::TextParser source("A a { x = \"\"; }");
    source.reader.limits.maxStringLength = -1;
    source.parser.readsPlainText = plain;
    EXPECT_EQ(source.parser.parseProgram(), nullptr);
    EXPECT_STREQ(source.parser.errorInfo.getErrorText().chars(),
                 "The string that begins on line 1 has more than -1 characters");
  }
}

TEST_F(ReaderLimits, StringLongerThanAllowedFailsWhereItBegins) {
  reader.limits.maxStringLength = 5;
  EXPECT_EQ(tokensOf("\"12345\""), "str:12345");
  EXPECT_EQ(tokensOf("\n \"123\n456\""),
            "error: The string that begins on line 2 has more than 5 characters");
  EXPECT_EQ(scanner.locate(0).line, 2);
  EXPECT_EQ(scanner.locate(0).column, 2);
}

// ---- lines -------------------------------------------------------------------------------------

TEST_F(ReaderLimits, LinesThatNoIntCanCountBearTheLastNumber) {
  reader.openText("a\n b\n\"\n\" c", 10, "text");
  Token token;
  scanner.scan(token);
  reader.position.line = 2147483646;
  scanner.scan(token);
  EXPECT_EQ(reader.getCurrentLine(), 2147483647);
  scanner.scan(token);
  scanner.scan(token);
  EXPECT_EQ(token.getSpelling(), std::string("c"));
  EXPECT_EQ(reader.getCurrentLine(), 2147483647);
}
