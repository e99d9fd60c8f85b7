// Where a streamed scene may come from, and what goes wrong there.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>
#include <stdexcept>
#include <thread>

#include "tests/support/allocations.h"
#include "tests/support/streamed.h"
#include "tests/support/temporaryfiles.h"

using namespace Kelp;
using namespace KelpTest;

namespace {

std::string manyObjects() {
  std::string text;
  for (int i = 0; i < 50; ++i) {
    text += "A a" + std::to_string(i) + " { x = 1e+5; /* } */ s = \"}\"; }\n";
  }
  return text;
}

// A text that is delivered in pieces of a few bytes.
SceneSource inPieces(const std::string& text, size_t piece) {
  return SceneSource::function(
      [text, piece, at = size_t{0}](char* buffer, size_t size) mutable {
        const size_t number = text.copy(buffer, std::min(size, piece), at);
        at += number;
        return number;
      },
      "scene");
}

// A text behind which the source fails.
SceneSource failingBehind(const std::string& text) {
  return SceneSource::function(
      [text, at = size_t{0}](char* buffer, size_t size) mutable {
        const size_t number = text.copy(buffer, size, at);
        at += number;
        if (number == 0) throw InvalidSourceFile("the line is dead");
        return number;
      },
      "scene");
}

}  // namespace

TEST(StreamSources, PiecesOfAnySizeGiveTheSame) {
  const std::string text = manyObjects();
  const ObjectsAndError expected = wholeText(text, "scene");
  for (const size_t piece : std::initializer_list<size_t>{1, 2, 3, 7, 100}) {
    EXPECT_EQ(streamed(inPieces(text, piece), withWindow(64)), expected);
  }
}

TEST(StreamSources, PipeThatDeliversByteByByteIsReadWhole) {
  int ends[2];
  ASSERT_EQ(::pipe(ends), 0);
  const std::string text = manyObjects();
  std::thread writer([&] {
    for (const char& c : text) EXPECT_EQ(::write(ends[1], &c, 1), 1);
    ::close(ends[1]);
  });
  const ObjectsAndError outcome =
      streamed(SceneSource::descriptor(ends[0], "scene"), withWindow(64));
  writer.join();
  EXPECT_EQ(outcome, wholeText(text, "scene"));
  EXPECT_EQ(::close(ends[0]), 0);  // it stays the caller's
}

TEST(StreamSources, NamedPipeIsAFile) {
  const TemporaryFiles files;
  const std::string path = files.path("pipe");
  ASSERT_EQ(::mkfifo(path.c_str(), 0600), 0);
  std::thread writer([&] {
    const int descriptor = ::open(path.c_str(), O_WRONLY | O_CLOEXEC);
    EXPECT_EQ(::write(descriptor, "A a { }", 7), 7);
    ::close(descriptor);
  });
  const ObjectsAndError outcome = streamed(SceneSource::file(path), withWindow(64));
  writer.join();
  EXPECT_EQ(outcome, wholeText("A a { }", path));
}

TEST(StreamSources, FileIsOpenedAnewForEveryReading) {
  const TemporaryFiles files;
  const SceneSource source = SceneSource::file(files.write("a.scene", "A a { }"));
  for (int i = 0; i < 2; ++i) EXPECT_EQ(streamed(source, {}).objects.size(), 1U);
  const SceneSource text = SceneSource::text("A a { }");
  for (int i = 0; i < 2; ++i) EXPECT_EQ(streamed(text, {}).objects.size(), 1U);
}

TEST(StreamSources, UnreadableOnesAreReportedAsOfAScene) {
  const TemporaryFiles files;
  for (const std::string& path : {files.path("none"), files.directory.string()}) {
    const ObjectsAndError outcome = streamed(SceneSource::file(path), {});
    EXPECT_TRUE(outcome.objects.empty());
    EXPECT_EQ(outcome.error, shownError(Scene::fromFile(path).error()));
  }
  EXPECT_EQ(streamed(SceneSource::descriptor(-1, "closed"), {}).error,
            "unreadable: Cannot read \"closed\": Bad file descriptor | closed:0 | :0:0\n");
}

TEST(StreamSources, ErrorOfReadingEndsTheSceneBehindTheObjectsBeforeIt) {
  const std::string unreadable = "unreadable: the line is dead | scene:0 | :0:0\n";
  const struct {
    const char* text;
    size_t objects;
  } rows[] = {{"", 0},
              {"A a {", 0},
              {"A a { } B b { } C c { ", 2},
              {"A a { } // behind", 0},
              {"A a { } B b { x = 1; } C c { x = 1; } D d { x = 1; } E", 3}};
  for (const auto& row : rows) {
    for (const size_t window : std::initializer_list<size_t>{1, 10, 1000}) {
      const ObjectsAndError outcome = streamed(failingBehind(row.text), withWindow(window));
      EXPECT_EQ(outcome.error, unreadable) << row.text << window;
      EXPECT_EQ(outcome.objects.size(), row.objects) << row.text << window;
    }
  }
}

TEST(StreamSources, ErrorOfTheSceneIsReportedEvenWhereItsLineCannotBeRead) {
  const ObjectsAndError outcome =
      streamed(failingBehind("A a { x = 5 watts; y = 1; z = 2; w = 3;"), withWindow(1));
  EXPECT_EQ(outcome.error.substr(0, 8), "invalid:");
  EXPECT_NE(outcome.error.find("scene:1:13\nA a { x = 5 watts;"), std::string::npos)
      << outcome.error;
}

TEST(StreamSources, WhatAFunctionThrowsPassesThrough) {
  const SceneSource source = SceneSource::function(
      [](char*, size_t) -> size_t { throw std::runtime_error("mine"); }, "scene");
  EXPECT_THROW(streamed(source, {}), std::runtime_error);
}

// ---- limits ------------------------------------------------------------------------------------

TEST(StreamLimits, FileThatIsTooLongIsRefusedAtOnce) {
  const TemporaryFiles files;
  const std::string path = files.write("a.scene", manyObjects());
  StreamOptions options = withWindow(100);
  options.limits.maxBytes = static_cast<int64_t>(manyObjects().size());
  EXPECT_EQ(streamed(SceneSource::file(path), options), wholeFile(path));
  --options.limits.maxBytes;
  const ObjectsAndError outcome = streamed(SceneSource::file(path), options);
  EXPECT_TRUE(outcome.objects.empty());
  EXPECT_EQ(outcome.error, shownError(Scene::fromFile(path, options).error()));
}

TEST(StreamLimits, PipeIsReadUntilItIsTooLong) {
  StreamOptions options = withWindow(100);
  options.limits.maxBytes = 500;
  const ObjectsAndError outcome = streamed(inPieces(manyObjects(), 10), options);
  EXPECT_EQ(outcome.error, "unreadable: The scene has more than 500 bytes | scene:0 | :0:0\n");
  EXPECT_GT(outcome.objects.size(), 3U);
}

TEST(StreamLimits, BytesOfIncludedFilesCountOnce) {
  const TemporaryFiles files;
  files.write("x.inc", " x = 1; y = 2;\n");
  const std::string text = "A a {\n#include \"x.inc\"\n z = 1; }\nA b {\n#include \"x.inc\"\n }\n";
  const std::string path = files.write("main.scene", text);
  const auto all = static_cast<int64_t>(text.size() + 2 * 15);
  for (size_t window = 1; window <= text.size(); ++window) {
    StreamOptions options = withWindow(window);
    for (const int64_t most : {all, all - 1}) {
      options.limits.maxBytes = most;
      EXPECT_EQ(streamed(SceneSource::file(path), options), wholeFile(path, options)) << window;
    }
    const StreamResult result = forEachObject(
        SceneSource::file(path), [](const ObjectAST&) { return ObjectFate::kDrop; },
        withWindow(window));
    EXPECT_EQ(result.bytes, all);
  }
}

TEST(StreamLimits, LargeIncludedFilesAreForgottenAndReadAgain) {
  const TemporaryFiles files;
  const std::string comment = "//" + std::string(17 << 20, '-') + "\n";
  const std::string large = files.write("0.inc", "B b { }\n" + comment);
  std::string text;
  for (int i = 1; i <= 8; ++i) {
    const std::string name = std::to_string(i) + ".inc";
    std::filesystem::create_hard_link(large, files.path(name));
    text += "#include \"" + name + "\"\nA a { }\n#include \"0.inc\"\n";
  }
  std::vector<int64_t> blocks;
  const StreamResult result = forEachObject(SceneSource::file(files.write("main.scene", text)),
                                            [&blocks](const ObjectAST&) {
                                              blocks.push_back(liveAllocations());
                                              return ObjectFate::kDrop;
                                            });
  EXPECT_TRUE(result);
  ASSERT_EQ(blocks.size(), 24U);
  EXPECT_LT(blocks.back() - blocks[2], 10);
}

TEST(StreamLimits, LargeIncludedFileStaysWhileItsLastTokenIsNeeded) {
  const TemporaryFiles files;
  files.write("large.inc", "B b { }\n//" + std::string(17 << 20, '-') + "\n 5");
  const std::string path = files.write("main.scene", "A a { }\n#include \"large.inc\"\nC c { }\n");
  const ObjectsAndError outcome = streamed(SceneSource::file(path), withWindow(10));
  EXPECT_EQ(outcome, wholeFile(path));
  EXPECT_NE(outcome.error.find("large.inc:3:2\n 5\n ^"), std::string::npos) << outcome.error;
}
