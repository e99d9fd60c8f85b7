// Reading object by object when memory runs out: at every heap request, block and node.
#include <gtest/gtest.h>

#include <memory>
#include <string>

#include "kelp/stream.h"
#include "tests/exhaustion/parsing.h"
#include "tests/support/sexpression.h"
#include "tests/support/streamed.h"

using namespace Kelp;
using namespace KelpTest;

namespace {

// Half of the objects of a scene in a scene, and its error.
StreamResult keepHalf(const NamedScene& scene, size_t windowBytes) {
  StreamOptions options = withWindow(windowBytes);
  options.collectReferences = true;
  options.lastFrame = 10;
  int seen = 0;
  return forEachObject(
      SceneSource::text(scene.text, scene.name),
      [&seen](const ObjectAST&) { return ++seen % 2 == 0 ? ObjectFate::kDrop : ObjectFate::kKeep; },
      options);
}

std::string shown(const StreamResult& result) {
  return sexpression(*result.kept.program()) + shownError(result.error);
}

class StreamOperation final : public Operation {
 public:
  StreamOperation(const NamedScene& readScene, size_t windowBytes, const std::string& outcome)
      : scene(readScene), window(windowBytes), expected(outcome) {
    restartSeeds();
  }

  void act() override { result = keepHalf(scene, window); }

  void check(bool completed) override {
    if (completed) {
      EXPECT_EQ(shown(result), expected);
    } else {
      EXPECT_FALSE(result.kept);
    }
  }

 private:
  const NamedScene scene;
  const size_t window;
  const std::string expected;
  StreamResult result;
};

Workload streamOf(const NamedScene& scene, size_t window) {
  restartSeeds();
  return workloadOn<StreamOperation>(scene, window, shown(keepHalf(scene, window)));
}

class StreamMemory : public testing::Test {
 protected:
  static void SetUpTestSuite() { surplus = std::make_unique<SurplusNodes>(); }
  static void TearDownTestSuite() { surplus.reset(); }

 private:
  static inline std::unique_ptr<SurplusNodes> surplus;
};

}  // namespace

TEST_F(StreamMemory, EveryRequestThatFailsLeavesNothing) {
  Points points;
  for (const NamedScene& scene : allScenes()) {
    for (const size_t window : std::initializer_list<size_t>{16, 100000}) {
      points += failEveryRequest(streamOf(scene, window), {4});
    }
  }
  points.report("memory A, streams", "heap requests of reading object by object");
}

TEST_F(StreamMemory, EveryBlockAndNodeThatFailsLeavesNothing) {
  Points points;
  for (const NamedScene& scene : goodScenes()) {
    if (scene.text.empty()) continue;
    const Workload stream = streamOf(scene, 16);
    points += failEveryBlock(stream, {4});
    points += failEveryElement(stream);
  }
  points.report("memory B, streams", "blocks and nodes of reading object by object");
}
