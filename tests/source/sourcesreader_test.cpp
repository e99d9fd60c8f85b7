#include "kelp/source/sourcesreader.h"

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <fstream>
#include <string>
#include <thread>

#include "kelp/source/filebytes.h"
#include "kelp/utils/exceptions.h"
#include "tests/support/allocations.h"
#include "tests/support/temporaryfiles.h"
#include "tests/support/tokenlist.h"

using namespace Kelp;
using KelpTest::TemporaryFiles;

namespace {

std::string openError(SourcesReader& reader, const std::string& path) {
  try {
    reader.openFile(path.c_str());
  } catch (const InvalidSourceFile& failure) {
    return failure.message.chars();
  }
  return "";
}

std::string tokensOfFile(const std::string& path, bool map) {
  SourcesReader reader;
  Scanner scanner(&reader);
  reader.mapFiles = map;
  reader.openFile(path.c_str());
  return KelpTest::remainingTokens(scanner);
}

void openText(SourcesReader& reader, std::string_view text, const char* name) {
  reader.openText(text.data(), static_cast<int64_t>(text.size()), name);
}

}  // namespace

TEST(SourcesReader, BeforeAnythingIsOpened) {
  const SourcesReader reader;
  EXPECT_TRUE(reader.getCurrentFile().isNull());
  EXPECT_TRUE(reader.getCurrentFileDir().isNull());
  EXPECT_EQ(reader.getCurrentLine(), 1);
  EXPECT_EQ(reader.readerParam1, 0.0);
  EXPECT_EQ(reader.readerParam2, 0.0);
  EXPECT_EQ(&reader.readerParam1 + 1, &reader.readerParam2);
  EXPECT_FALSE(reader.mapFiles);
  EXPECT_EQ(reader.bytesRead(), 0);
}

TEST(SourcesReader, FilesThatCannotBeOpened) {
  const TemporaryFiles files;
  const std::string file = files.write("a", "a");
  const std::pair<std::string, const char*> rows[] = {
      {files.path("missing"), "No such file or directory"},
      {files.directory.string(), "Is a directory"},
      {file + "/b", "Not a directory"},
      {files.path(std::string(300, 'n')), "File name too long"},
      {"", "No such file or directory"},
  };
  for (const bool map : {false, true}) {
    for (const auto& [path, reason] : rows) {
      SourcesReader reader;
      reader.mapFiles = map;
      EXPECT_EQ(openError(reader, path), "Cannot read \"" + path + "\": " + reason);
    }
  }
}

TEST(SourcesReader, FailureToOpenChangesNothing) {
  const TemporaryFiles files;
  SourcesReader reader;
  Scanner scanner(&reader);
  openText(reader, "a\nb", "text");
  Token token;
  scanner.scan(token);
  EXPECT_NE(openError(reader, files.path("missing")), "");
  EXPECT_EQ(reader.bytesRead(), 3);
  EXPECT_STREQ(reader.getCurrentFile().chars(), "text");
  EXPECT_EQ(KelpTest::remainingTokens(scanner), "id:b");
}

TEST(SourcesReader, ExhaustedMemoryChangesNothing) {
  const TemporaryFiles files;
  const std::string path = files.write("a.scene", "abc");
  bool failed = true;
  for (int64_t n = 1; failed; ++n) {
    SourcesReader reader;
    openText(reader, "t", "text");
    bool thrown = false;
    {
      const KelpTest::FailingAllocation failure(n);
      try {
        reader.openFile(path.c_str());
      } catch (const std::bad_alloc&) {
        thrown = true;
      }
      failed = failure.hasFailed();
    }
    EXPECT_EQ(thrown, failed) << n;
    EXPECT_EQ(reader.bytesRead(), failed ? 1 : 4) << n;
    EXPECT_STREQ(reader.getCurrentFile().chars(), failed ? "text" : path.c_str()) << n;
  }
}

TEST(SourcesReader, NamesAndDirectories) {
  const std::pair<const char*, const char*> rows[] = {
      {"a.scene", "."},         {"dir/a.scene", "dir"}, {"/a.scene", "/"},
      {"../x/a.scene", "../x"}, {"./a.scene", "."},     {"", "."},
  };
  for (const auto& [name, directory] : rows) {
    SourcesReader reader;
    openText(reader, "a", name);
    EXPECT_STREQ(reader.getCurrentFile().chars(), name);
    EXPECT_STREQ(reader.getCurrentFileDir().chars(), directory) << name;
  }
}

TEST(SourcesReader, TextWithoutANameHasTheCurrentDirectory) {
  SourcesReader reader;
  openText(reader, "a", nullptr);
  EXPECT_TRUE(reader.getCurrentFile().isNull());
  EXPECT_STREQ(reader.getCurrentFileDir().chars(), ".");
}

TEST(SourcesReader, FileIsNamedAsItWasOpened) {
  const TemporaryFiles files;
  const std::string path = files.directory.string() + "/./a.scene";
  files.write("a.scene", "a");
  SourcesReader reader;
  reader.openFile(path.c_str());
  EXPECT_EQ(path, reader.getCurrentFile().chars());
}

TEST(SourcesReader, NameIsSharedAndCostsNoAllocation) {
  SourcesReader reader;
  openText(reader, "a", "dir/a.scene");
  const int64_t before = KelpTest::allocationCount();
  const CharString first = reader.getCurrentFile();
  const CharString second = reader.getCurrentFile();
  const CharString directory = reader.getCurrentFileDir();
  EXPECT_EQ(KelpTest::allocationCount(), before);
  EXPECT_EQ(first.buffer, second.buffer);
  EXPECT_EQ(directory.buffer, reader.getCurrentFileDir().buffer);
}

TEST(SourcesReader, TextIsCopied) {
  SourcesReader reader;
  Scanner scanner(&reader);
  std::string text = "abc";
  openText(reader, text, nullptr);
  text = "xyz";
  EXPECT_EQ(KelpTest::remainingTokens(scanner), "id:abc");
}

TEST(SourcesReader, EmptyTextNeedsNoCharacters) {
  SourcesReader reader;
  Scanner scanner(&reader);
  reader.openText(nullptr, 0, nullptr);
  EXPECT_EQ(KelpTest::remainingTokens(scanner), "");
}

TEST(SourcesReader, PaddingFollowsEverySource) {
  const auto page = static_cast<size_t>(::sysconf(_SC_PAGESIZE));
  const TemporaryFiles files;
  for (const size_t size : {size_t{3}, page - 1, page, 2 * page - 1, 2 * page}) {
    const std::string path = files.write("a.scene", std::string(size, 'a'));
    for (const bool map : {false, true}) {
      // Mappings made one after the other often lie side by side.
      SourcesReader readers[3];
      for (SourcesReader& reader : readers) {
        reader.mapFiles = map;
        reader.openFile(path.c_str());
        const Source& source = *reader.position.source;
        EXPECT_EQ(std::string(source.begin, source.end), std::string(size, 'a'));
        EXPECT_EQ(std::string(source.end, 64), std::string(64, '\0')) << size << map;
      }
    }
  }
}

TEST(SourcesReader, ReopeningStartsAnew) {
  const TemporaryFiles files;
  files.write("b.inc", "b1 b2");
  SourcesReader reader;
  Scanner scanner(&reader);
  reader.readerParam1 = 7.0;
  reader.openFile(files.write("a.scene", "a\n#include \"b.inc\"").c_str());
  Token token;
  scanner.scan(token);
  scanner.scan(token);
  openText(reader, "c", "c.scene");
  EXPECT_EQ(reader.getCurrentLine(), 1);
  EXPECT_STREQ(reader.getCurrentFile().chars(), "c.scene");
  EXPECT_EQ(KelpTest::remainingTokens(scanner), "id:c");
  EXPECT_EQ(reader.readerParam1, 7.0);
}

TEST(SourcesReader, BytesReadCountsAllFilesWhole) {
  const TemporaryFiles files;
  files.write("b.inc",
              "\xEF\xBB\xBF"
              "b");
  SourcesReader reader;
  Scanner scanner(&reader);
  const std::string text = "#include \"b.inc\"\n#include \"b.inc\"\n";
  reader.openFile(files.write("a.scene", text).c_str());
  EXPECT_EQ(reader.bytesRead(), 34);
  KelpTest::remainingTokens(scanner);
  EXPECT_EQ(reader.bytesRead(), 34 + 4 + 4);
}

TEST(SourcesReader, PipeIsReadToItsEnd) {
  const TemporaryFiles files;
  const std::string path = files.path("pipe");
  ASSERT_EQ(::mkfifo(path.c_str(), 0600), 0);
  const std::string name(200000, 'p');
  for (const bool map : {false, true}) {
    std::thread writer([&] { std::ofstream(path) << name << " end"; });
    const std::string tokens = tokensOfFile(path, map);
    writer.join();
    EXPECT_EQ(tokens, "id:" + name + " id:end");
  }
}

TEST(SourcesReader, DeviceIsReadToItsEnd) { EXPECT_EQ(tokensOfFile("/dev/null", true), ""); }

TEST(SourcesReader, FileWithoutAStatedSizeIsReadToItsEnd) {
  // The system gives such files the size 0.
  const std::string tokens = tokensOfFile("/proc/self/stat", true);
  EXPECT_EQ(tokens.substr(0, 4), "num:");
}

TEST(SourcesReader, FilesOfAnySizeGiveTheSameTokensMapped) {
  const auto page = static_cast<size_t>(::sysconf(_SC_PAGESIZE));
  const TemporaryFiles files;
  for (const size_t size : {size_t{0}, size_t{1}, page - 1, page, page + 1, 2 * page, 3 * page - 16,
                            3 * page - 1, 3 * page}) {
    for (const char last : {'n', '5', '.', ' ', '/'}) {
      std::string text = std::string(size / 2, 'a') + std::string(size - size / 2, ' ');
      if (size > 0) text.back() = last;
      const std::string path = files.write("a.scene", text);
      EXPECT_EQ(tokensOfFile(path, true), tokensOfFile(path, false)) << size << last;
    }
  }
}

TEST(SourcesReader, MappedUnendedStringStopsAtTheEndOfItsPages) {
  const auto page = static_cast<size_t>(::sysconf(_SC_PAGESIZE));
  const TemporaryFiles files;
  const std::string path = files.write("a.scene", '"' + std::string(2 * page - 1, 's'));
  EXPECT_EQ(tokensOfFile(path, true), "error: The string that begins on line 1 never ends");
}

TEST(SourcesReader, MappedFileThatGrowsKeepsItsEnd) {
  const auto page = static_cast<size_t>(::sysconf(_SC_PAGESIZE));
  const TemporaryFiles files;
  for (const size_t size : {size_t{10}, page, page + 10}) {
    const std::string path = files.write("a.scene", std::string(size, 'a'));
    SourcesReader reader;
    Scanner scanner(&reader);
    reader.mapFiles = true;
    reader.openFile(path.c_str());
    std::ofstream(path, std::ios::app) << "bbb ccc";
    EXPECT_EQ(KelpTest::remainingTokens(scanner), "id:" + std::string(size, 'a'));
  }
}

TEST(FileBytes, BorrowedOnesStayTheirOwners) {
  const std::string text = "abc" + std::string(FileBytes::kPadding, '\0');
  FileBytes bytes = FileBytes::copy("xy", 2);
  bytes = FileBytes::borrow(text.data(), 3);
  EXPECT_EQ(bytes.data, text.data());
  FileBytes other = std::move(bytes);
  EXPECT_EQ(other.data, text.data());
  EXPECT_EQ(other.size, 3U);
  other = FileBytes::copy("xy", 2);
  EXPECT_EQ(std::string(other.data, other.size), "xy");
}

TEST(FileBytes, MoveLeavesNothingBehind) {
  const TemporaryFiles files;
  const std::string path = files.write("a", "abc");
  for (const bool map : {false, true}) {
    FileBytes bytes = FileBytes::read(path, {.map = map});
    FileBytes other = FileBytes::copy("xy", 2);
    other = std::move(bytes);
    EXPECT_EQ(std::string(other.data, other.size), "abc");
    EXPECT_NE(other.inode, 0U);
    FileBytes& same = other;
    other = std::move(same);
    EXPECT_EQ(std::string(other.data, other.size), "abc");
  }
}
