// Every option of a scene reaches the part that it is for.
#include <gtest/gtest.h>

#include "kelp/scene.h"

using namespace Kelp;

TEST(OptionsReach, ReaderAndParser) {
  SceneOptions options;
  options.nameAffix = "_left";
  options.affixIsSuffix = true;
  options.firstFrame = 2;
  options.lastFrame = 3;
  options.collectReferences = true;
  options.maxNestingDepth = 7;
  options.mapFiles = true;
  const Scene scene = Scene::fromText("", options);
  EXPECT_STREQ(scene.parser().nameAffix.chars(), "_left");
  EXPECT_TRUE(scene.parser().affixIsSuffix);
  EXPECT_EQ(scene.reader().readerParam1, 2.0);
  EXPECT_EQ(scene.reader().readerParam2, 3.0);
  EXPECT_NE(scene.parser().collectReferenceNames, 0);
  EXPECT_EQ(scene.parser().maxNestingDepth, 7);
  EXPECT_TRUE(scene.reader().mapFiles);
}

TEST(OptionsReach, NoneIsSetUnlessAskedFor) {
  const Scene scene = Scene::fromText("");
  EXPECT_STREQ(scene.parser().nameAffix.chars(), "");
  EXPECT_FALSE(scene.parser().affixIsSuffix);
  EXPECT_EQ(scene.reader().readerParam1, 0.0);
  EXPECT_EQ(scene.reader().readerParam2, 0.0);
  EXPECT_EQ(scene.parser().collectReferenceNames, 0);
  EXPECT_EQ(scene.parser().maxNestingDepth, 10000);
  EXPECT_FALSE(scene.reader().mapFiles);
}
