// Every scene of examples/ is good.
#include <gtest/gtest.h>

#include <filesystem>

#include "kelp/scene.h"

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
