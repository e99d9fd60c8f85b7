// How a host hears how far reading has come.
#include <gtest/gtest.h>

#include <stdexcept>
#include <string>
#include <vector>

#include "kelp/stream.h"
#include "tests/support/parsing.h"
#include "tests/support/temporaryfiles.h"

using namespace Kelp;

namespace {

std::string objects(int count) {
  std::string text;
  for (int i = 0; i < count; ++i) text += "A a" + std::to_string(i) + " { x = 1; }\n";
  return text;
}

struct Heard {
  SceneOptions options() {
    SceneOptions told;
    told.onProgress = [this](int64_t count) { bytes.push_back(count); };
    return told;
  }

  void expectProgressTo(int64_t end) const {
    ASSERT_FALSE(bytes.empty());
    for (size_t i = 1; i < bytes.size(); ++i) EXPECT_LE(bytes[i - 1], bytes[i]);
    EXPECT_EQ(bytes.back(), end);
  }

  std::vector<int64_t> bytes;
};

}  // namespace

TEST(Progress, IsToldEveryThousandObjects) {
  const std::string text = objects(5500);
  Heard heard;
  ASSERT_TRUE(Scene::fromText(text, heard.options()));
  heard.expectProgressTo(static_cast<int64_t>(text.size()));
  EXPECT_GE(heard.bytes.size(), 6U);
  EXPECT_LE(heard.bytes.size(), 8U);
  EXPECT_LT(heard.bytes.front(), static_cast<int64_t>(text.size() / 5));
}

TEST(Progress, CountsIncludedFiles) {
  const KelpTest::TemporaryFiles files;
  const std::string part = objects(1500);
  files.write("part", part);
  const std::string scene = "A z { }\n#include \"part\"\nB b { }\n";
  Heard heard;
  ASSERT_TRUE(Scene::fromFile(files.write("scene", scene), heard.options()));
  heard.expectProgressTo(static_cast<int64_t>(part.size() + scene.size()));
}

TEST(Progress, IsToldOfStreams) {
  const std::string text = objects(5500);
  Heard heard;
  StreamOptions options;
  static_cast<SceneOptions&>(options) = heard.options();
  const auto drop = [](const ObjectAST&) { return ObjectFate::kDrop; };
  ASSERT_TRUE(forEachObject(SceneSource::text(text), drop, options));
  EXPECT_EQ(heard.bytes.size(), 5U);
  heard.expectProgressTo(static_cast<int64_t>(text.size()));
}

TEST(Progress, WhatItThrowsEndsTheReading) {
  const int live = KelpTest::livePoolElements();
  const std::string text = objects(5500);
  SceneOptions options;
  options.onProgress = [](int64_t) { throw std::runtime_error("enough"); };
  EXPECT_THROW(Scene::fromText(text, options), std::runtime_error);
  StreamOptions streamOptions;
  static_cast<SceneOptions&>(streamOptions) = options;
  const auto drop = [](const ObjectAST&) { return ObjectFate::kDrop; };
  EXPECT_THROW(forEachObject(SceneSource::text(text), drop, streamOptions), std::runtime_error);
  EXPECT_EQ(KelpTest::livePoolElements(), live);
}
