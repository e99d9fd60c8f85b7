// Texts of errors that end in the middle of a character.
#include <gtest/gtest.h>

#include "kelp/scene.h"

using Kelp::Scene;

TEST(ErrorText, FirstByteOfACharacterAtTheEndIsKept) {
  EXPECT_EQ(Scene::fromText("5", "name\xC2").error().position(), "name\xC2:1:1");
}

TEST(ErrorText, FirstByteOfATwoByteControlBeforeAnOtherCharacterIsKept) {
  EXPECT_EQ(Scene::fromText("5", "\xC2x\xC2\xC0").error().position(), "\xC2x\xC2\xC0:1:1");
}

TEST(ErrorText, TwoByteControlAtEitherEndIsMadeHarmless) {
  EXPECT_EQ(Scene::fromText("5", "\xC2\x9Bname").error().position(), "?name:1:1");
  EXPECT_EQ(Scene::fromText("5", "name\xC2\x9B").error().position(), "name?:1:1");
}
