// Written text parses to an equal tree, formatted text too, and formatting is done when it is done:
// over the golden scenes, the corpora, the examples, and scenes drawn at random.
#include <gtest/gtest.h>

#include <cstdio>
#include <filesystem>
#include <memory>

#include "kelp/scene.h"
#include "kelp/writers/sceneformat.h"
#include "kelp/writers/scenetextwriter.h"
#include "tests/support/corpus.h"
#include "tests/support/figures.h"
#include "tests/support/largescenes.h"
#include "tests/support/scenemaker.h"
#include "tests/support/sexpression.h"
#include "tests/support/smallstack.h"

using namespace Kelp;
using namespace KelpTest;

namespace {

namespace fs = std::filesystem;

std::string written(const ProgramAST& program) {
  std::string text;
  SceneTextWriter writer([&text](std::string_view piece) { text += piece; });
  writer.write(program);
  writer.finish();
  EXPECT_EQ(writer.approximatedNumbers(), 0);
  return text;
}

std::string treeOf(const Scene& scene) {
  return scene ? sexpression(*scene.program()) : "error: " + scene.error().message;
}

std::string treeOf(const std::string& text, const std::string& name) {
  return treeOf(Scene::fromText(text, name));
}

void expectWritesBack(const Scene& scene, const std::string& name) {
  const std::string text = written(*scene.program());
  EXPECT_EQ(treeOf(text, name), treeOf(scene)) << text;
  EXPECT_EQ(formatText(text), text);
}

// The name tells where includes are looked up.
void expectFormats(const std::string& text, const std::string& tree, const std::string& name) {
  const std::string formatted = formatText(text);
  EXPECT_EQ(treeOf(formatted, name), tree) << formatted;
  EXPECT_EQ(formatText(formatted), formatted);
}

std::string contentsOf(const fs::path& path) {
  const std::unique_ptr<std::FILE, int (*)(std::FILE*)> file(std::fopen(path.c_str(), "rb"),
                                                             std::fclose);
  std::string text(fs::file_size(path), '\0');
  EXPECT_EQ(std::fread(text.data(), 1, text.size(), file.get()), text.size());
  return text;
}

// How many of the files are good scenes.
int expectGoodScenesOf(const std::string& directory) {
  int scenes = 0;
  for (const auto& entry : fs::directory_iterator(KELP_SOURCE_DIR "/" + directory)) {
    if (entry.path().extension() != ".scene") continue;
    const std::string name = entry.path().string();
    const Scene scene = Scene::fromFile(name);
    if (!scene) continue;
    SCOPED_TRACE(name);
    ++scenes;
    expectWritesBack(scene, name);
    expectFormats(contentsOf(entry.path()), treeOf(scene), name);
  }
  return scenes;
}

}  // namespace

TEST(SceneText, AllGoodScenesOfTheProjectComeBack) {
  int scenes = 0;
  runOnStackOf(kHugeStack, [&scenes] {
    for (const char* directory : {"tests/scenes", "tests/corpus", "examples"}) {
      const int good = expectGoodScenesOf(directory);
      EXPECT_GT(good, 5) << directory;
      scenes += good;
    }
  });
  reportFigure("scene text", grouped(scenes) + " scenes of the corpora written and formatted back");
}

TEST(SceneText, DrawnScenesComeBack) {
  const int cases = hasTimeForAll() ? 10000 : 600;
  for (int i = 0; i < cases; ++i) {
    const std::string text = SceneMaker(static_cast<uint64_t>(i)).scene();
    const Scene scene = Scene::fromText(text, "drawn.scene");
    ASSERT_TRUE(scene) << scene.error() << '\n' << text;
    SCOPED_TRACE(text);
    expectWritesBack(scene, "drawn.scene");
    expectFormats(text, treeOf(scene), "drawn.scene");
    if (testing::Test::HasFailure()) break;
  }
  reportFigure("scene text", grouped(cases) + " drawn scenes written and formatted back");
}

TEST(SceneText, NamesWithAnAffixAreWrittenAsTheyAre) {
  SceneOptions options;
  options.nameAffix = "pre_";
  const Scene scene = Scene::fromText("A a { x = b; y = c.d + e::f; } B { }", options);
  EXPECT_EQ(written(*scene.program()),
            "A pre_a {\n  x = pre_b;\n  y = pre_c.d + pre_e::f;\n}\n\nB { }\n");
}

TEST(SceneText, NeitherLengthNorDepthNeedsStack) {
  for (const LargeValue& value : largeValues()) {
    SCOPED_TRACE(value.name);
    std::string text;
    withSceneOnSmallStack(value.text, [&text](Scene& scene) {
      ASSERT_TRUE(scene) << scene.error();
      text = written(*scene.program());
    });
    EXPECT_GT(text.size(), static_cast<size_t>(kDeepNesting));
    if (value.text.size() > kManyEntries / 2) continue;  // takes long and tells no more
    // All brackets of these values are needed but the innermost ones behind a minus.
    std::string tokens = value.text;
    const size_t unneeded = tokens.find("-(1)");
    if (unneeded != std::string::npos) tokens.replace(unneeded, 4, "-1");
    EXPECT_TRUE(formatText("A a { x = " + tokens + "; }") == text);  // too long to be shown
  }
}
