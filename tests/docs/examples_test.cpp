// Every scene of examples/ is good, and so is the one in the README.
#include <gtest/gtest.h>

#include <filesystem>

#include "kelp/scene.h"
#include "tests/docs/markdown.h"

TEST(Examples, AllParseAndHaveObjects) {
  int found = 0;
  for (const auto& entry : std::filesystem::directory_iterator(KELP_SOURCE_DIR "/examples")) {
    if (entry.path().extension() != ".scene") continue;
    const Kelp::Scene scene = Kelp::Scene::fromFile(entry.path().string());
    EXPECT_TRUE(scene) << scene.error();
    EXPECT_FALSE(scene.objects().empty()) << entry.path();
    ++found;
  }
  EXPECT_GE(found, 6);
}

TEST(Examples, SceneOfTheReadmeParses) {
  const auto blocks = KelpTest::blocksOf(KelpTest::projectFile("README.md"), "scene");
  ASSERT_EQ(blocks.size(), 1U);
  const Kelp::Scene scene =
      Kelp::Scene::fromText(blocks[0].text, KELP_SOURCE_DIR "/examples/readme.scene");
  EXPECT_TRUE(scene) << scene.error();
}
