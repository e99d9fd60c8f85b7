// The front door and the writers when memory runs out: at every heap request of reading a text or
// a file with includes, of listing its objects, of writing and counting its tree, and of copying.
#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <string_view>

#include "kelp/queries/statistics.h"
#include "kelp/scene.h"
#include "kelp/source/filebytes.h"
#include "kelp/writers/treewriter.h"
#include "tests/exhaustion/parsing.h"
#include "tests/support/sexpression.h"
#include "tests/support/temporaryfiles.h"

using namespace Kelp;
using namespace KelpTest;

namespace {

SceneOptions everyOption() {
  SceneOptions options;
  options.includePaths = {"somewhere", "a directory whose name is too long to be kept inside"};
  options.nameAffix = "affix_";
  options.lastFrame = 10;
  options.collectReferences = true;
  return options;
}

// What stands in a scene, or why it could not be read.
std::string contentsOf(const Scene& scene) {
  if (scene) return sexpression(*scene.program());
  return scene.error().position() + ": " + scene.error().describe();
}

// Reads a scene from memory, or from its file.
class ReadOperation final : public Operation {
 public:
  ReadOperation(const NamedScene& readScene, bool mapped) : source(readScene) {
    options.mapFiles = mapped;
    isFile = std::filesystem::exists(source.name);
    restartSeeds();
    expected = contentsOf(read());
    restartSeeds();
  }

  void act() override {
    scene = read();
    scene.objects();
  }

  void check(bool completed) override {
    if (completed) {
      EXPECT_EQ(contentsOf(scene), expected);
    }
    // A scene that was assigned before memory ran out is whole, any other is as if new.
    if (scene.program() == nullptr) {
      EXPECT_TRUE(scene.objects().empty());
    }
  }

 private:
  Scene read() const {
    return isFile ? Scene::fromFile(source.name, options)
                  : Scene::fromText(source.text, source.name, options);
  }

  const NamedScene source;
  SceneOptions options = everyOption();
  bool isFile;
  std::string expected;
  Scene scene;
};

// A checksum of what is written, which needs no memory.
class Checksum {
 public:
  void add(std::string_view text) {
    for (const char c : text) checksum = checksum * 1099511628211U + static_cast<unsigned char>(c);
  }

  uint64_t checksum = 0;
};

// Writes and counts the tree of a scene.
class WriteOperation final : public Operation {
 public:
  explicit WriteOperation(const NamedScene& written)
      : scene(Scene::fromText(written.text, written.name)), tree(contentsOf(scene)) {}

  void act() override {
    if (!scene) return;
    TreeWriter writer([this](std::string_view piece) { buffer.add(piece); });
    writer.write(*scene.program());
    listed = true;
    statistics = countProgram(*scene.program());
  }

  void check(bool completed) override {
    // Writers only read: the tree is as it was, and can be written.
    EXPECT_EQ(contentsOf(scene), tree);
    const uint64_t before = buffer.checksum;
    const bool whole = listed;
    buffer.checksum = 0;
    act();
    EXPECT_EQ(buffer.checksum == before, whole);
    EXPECT_TRUE(whole || !completed);
    EXPECT_EQ(statistics.objects, scene.program()->numObjects);
  }

 private:
  Scene scene;
  const std::string tree;
  Checksum buffer;
  bool listed = false;
  Statistics statistics;
};

// Every kind of copy that the library makes of a text.
class CopyOperation final : public Operation {
 public:
  void act() override {
    const CharString copied(kText.c_str());
    CharString shared(copied);
    shared.splitBuffer(2 * copied.length(), 1);
    shared.append(copied.chars());
    joined.set(copied.chars(), shared.chars());
    joined = makeCharString("a", joined.chars(), copied.chars());
    elements.allocArray(3);
    for (int i = 0; i < 3; ++i) elements[i] = joined.chars();
    const PtrArray<CharString> sharedElements(elements);
    bytes = FileBytes::copy(kText.data(), kText.size());
    for (const char c : kText) characters += c;
  }

  void check(bool completed) override {
    // Each holds what it held before or what it was to get.
    EXPECT_TRUE(joined.isNull() || joined.length() >= 3 * static_cast<int>(kText.size()));
    EXPECT_TRUE(elements.count == 0 || elements.count == 3);
    EXPECT_EQ(std::string_view(characters.data, static_cast<size_t>(characters.count)),
              std::string_view(kText).substr(0, static_cast<size_t>(characters.count)));
    if (completed) {
      EXPECT_EQ(characters.count, static_cast<int>(kText.size()));
      EXPECT_EQ(bytes.size, kText.size());
    }
  }

 private:
  static inline const std::string kText = std::string(1500, 't');

  CharString joined;
  PtrArray<CharString> elements;
  FileBytes bytes;
  Table<char> characters;
};

std::vector<NamedScene> scenesToWrite() {
  std::vector<NamedScene> scenes;
  for (const NamedScene& scene : goodScenes()) {
    if (!scene.text.empty()) scenes.push_back(scene);
  }
  return scenes;
}

}  // namespace

TEST(SceneMemory, EveryRequestOfReadingThatFailsLeavesNothing) {
  Points points;
  for (const NamedScene& scene : allScenes()) {
    points += failEveryRequest(workloadOn<ReadOperation>(scene, false), {6});
  }
  points.report("memory A, front door", "heap requests of reading");
}

TEST(SceneMemory, EveryRequestOfReadingIncludedFilesThatFailsLeavesNothing) {
  const TemporaryFiles files;
  const std::string piece = "B b { x = a.y; s = \"text\"; } ";
  files.write("one.inc", piece + "#include \"deep/two.inc\"\n" + piece);
  files.write("deep/two.inc", piece + "\n#include \"three.inc\"\n");
  files.write("deep/three.inc", piece + piece);
  files.write("cycle.inc", "#include \"cycle.inc\"\n");
  Points points;
  for (const char* rest : {"", "#include \"missing.inc\"\n", "#include \"cycle.inc\"\n", "C { ="}) {
    const NamedScene scene = {files.path("main.scene"),
                              "A a {}\n#include \"one.inc\"\nC c {}\n" + std::string(rest)};
    files.write("main.scene", scene.text);
    for (const bool mapped : {false, true}) {
      points += failEveryRequest(workloadOn<ReadOperation>(scene, mapped));
    }
  }
  points.report("memory A, files", "heap requests of reading files with includes");
}

TEST(SceneMemory, EveryRequestOfAWriterThatFailsLeavesTheTreeAsItWas) {
  Points points;
  for (const NamedScene& scene : scenesToWrite()) {
    points += failEveryRequest(workloadOn<WriteOperation>(scene), {6});
  }
  points.report("memory A, writers", "heap requests of writers");
}

TEST(SceneMemory, EveryRequestOfACopyThatFailsLeavesWhatWasThere) {
  const Points points = failEveryRequest(workload<CopyOperation>("copies", 1500));
  points.report("memory A, copies", "heap requests of copies");
}
