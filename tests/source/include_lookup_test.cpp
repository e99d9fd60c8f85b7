// Where included files are looked for, and what stops the search.
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <string>

#include "tests/support/temporaryfiles.h"
#include "tests/support/tokenlist.h"

using namespace Kelp;

namespace {

class IncludeLookup : public testing::Test {
 protected:
  // The tokens of a file that holds one #include line, or what stopped them.
  std::string tokensOfInclude(const std::string& line) {
    return tokensOfFile(files.write("main.scene", line));
  }

  std::string tokensOfFile(const std::string& path) {
    reader.openFile(path.c_str());
    return KelpTest::remainingTokens(scanner);
  }

  const KelpTest::TemporaryFiles files;
  SourcesReader reader;
  Scanner scanner{&reader};
};

}  // namespace

TEST_F(IncludeLookup, FileInsteadOfADirectoryIsPassedOver) {
  files.write("a", "wrong");
  files.write("more/a/b.inc", "right");
  reader.addIncludePath(files.path("more").c_str());
  EXPECT_EQ(tokensOfInclude("#include \"a/b.inc\"\n"), "id:right");
}

TEST_F(IncludeLookup, FileThatIsThereButUnusableEndsTheSearch) {
  const std::string loop = files.path("b.inc");
  ASSERT_EQ(::symlink("b.inc", loop.c_str()), 0);
  files.write("more/b.inc", "other");
  reader.addIncludePath(files.path("more").c_str());
  EXPECT_EQ(tokensOfInclude("#include \"b.inc\"\n"),
            "error: Cannot read \"" + loop + "\": Too many levels of symbolic links");
}

TEST_F(IncludeLookup, TextWithoutANameLooksInTheCurrentDirectory) {
  const std::string text = "#include \"there is no such file\"";
  reader.openText(text.data(), static_cast<int64_t>(text.size()), nullptr);
  EXPECT_EQ(KelpTest::remainingTokens(scanner),
            "error: Cannot read \"there is no such file\": No such file or directory");
}

TEST_F(IncludeLookup, IncludedFileThatIncludesItselfIsACycle) {
  const std::string included = files.write("a.inc", "a\n#include \"a.inc\"\n");
  EXPECT_EQ(tokensOfInclude("#include \"a.inc\"\n"),
            "id:a error: File \"" + included + "\" includes itself");
}

TEST_F(IncludeLookup, IncludedFileThatIncludesAnOuterOneIsACycle) {
  files.write("a.inc", "a\n#include \"b.inc\"\n");
  files.write("b.inc", "b\n#include \"main.scene\"\n");
  EXPECT_EQ(tokensOfInclude("#include \"a.inc\"\n"),
            "id:a id:b error: File \"" + files.path("main.scene") + "\" includes itself");
}

// File systems number their files each for itself.
TEST_F(IncludeLookup, FileOfTheSameNumberOnAnotherDeviceIsNoCycle) {
  const std::string path = files.write("main.scene", "a\n#include \"main.scene\"\n");
  reader.openFile(path.c_str());
  const_cast<Source*>(reader.position.source)->device += 1;
  // The included one lies where it did, so that it is the one that includes itself.
  EXPECT_EQ(KelpTest::remainingTokens(scanner),
            "id:a id:a error: File \"" + path + "\" includes itself");
}

TEST_F(IncludeLookup, SourceKnowsTheIdentityOfItsFile) {
  const std::string path = files.write("a.scene", "a");
  struct stat status {};
  ASSERT_EQ(::stat(path.c_str(), &status), 0);
  reader.openFile(path.c_str());
  EXPECT_EQ(reader.position.source->device, status.st_dev);
  EXPECT_EQ(reader.position.source->inode, status.st_ino);
  reader.openText("a", 1, path.c_str());
  EXPECT_EQ(reader.position.source->device, 0U);
  EXPECT_EQ(reader.position.source->inode, 0U);
}

TEST_F(IncludeLookup, SceneOpenedWithinAnIncludedFileEndsWithItself) {
  const std::string included = files.write("b.inc", "b");
  EXPECT_EQ(tokensOfInclude("c"), "id:c");
  reader.enterInclude(included);
  EXPECT_EQ(tokensOfFile(files.write("other.scene", "o")), "id:o");
}

TEST_F(IncludeLookup, CommentsBehindTheNameBeginAndEndWhereTheyDo) {
  files.write("b.inc", "b");
  for (const char* comments : {"/* c *//* d */", "/*/ c */", "/**/ // d", "/***/", "/* *//*/ */"}) {
    const std::string line = std::string("#include \"b.inc\" ") + comments;
    EXPECT_EQ(tokensOfInclude(line), "id:b") << line;
    EXPECT_EQ(tokensOfInclude(line + "\nz"), "id:b id:z") << line;
  }
  for (const char* text : {"/*/ z", "/* *//*/ z", "/* */ z", "/* *//"}) {
    const std::string line = std::string("#include \"b.inc\" ") + text + "\n";
    EXPECT_NE(tokensOfInclude(line).find("error: "), std::string::npos) << line;
  }
}

TEST_F(IncludeLookup, CommentThatNeverEndsBehindTheNameIsFoundAfterTheIncludedFile) {
  files.write("b.inc", "b");
  EXPECT_EQ(tokensOfInclude("#include \"b.inc\" /* c"),
            "id:b error: The comment that begins on line 1 never ends");
}
