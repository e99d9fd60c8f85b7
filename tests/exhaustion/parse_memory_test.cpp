// Parses that run out of memory: at every heap request, at every block of a pool or map, and at
// every element of a node class.
#include <gtest/gtest.h>

#include <memory>

#include "tests/exhaustion/parsing.h"

using namespace KelpTest;

namespace {

class ParseMemory : public testing::Test {
 protected:
  static void SetUpTestSuite() { surplus = std::make_unique<SurplusNodes>(); }
  static void TearDownTestSuite() { surplus.reset(); }

 private:
  static inline std::unique_ptr<SurplusNodes> surplus;
};

// Without the scenes that ask for no nodes at all.
std::vector<NamedScene> scenesWithObjects() {
  std::vector<NamedScene> scenes;
  for (const NamedScene& scene : goodScenes()) {
    if (!scene.text.empty()) scenes.push_back(scene);
  }
  return scenes;
}

const std::vector<NamedScene>& largeScenes() {
  static const std::vector<NamedScene> scenes = [] {
    std::string objects;
    for (int i = 0; i <= 2000; ++i) objects += "P o" + std::to_string(i) + "{}";
    return std::vector<NamedScene>{{"many_objects.scene", objects}};
  }();
  return scenes;
}

}  // namespace

TEST_F(ParseMemory, EveryRequestThatFailsLeavesNothing) {
  Points points;
  const std::vector<NamedScene> scenes = allScenes();
  for (const Workload& parse : parsesOf(scenes)) points += failEveryRequest(parse, {12});
  points.report("memory A, scenes", "heap requests of parses");
}

TEST_F(ParseMemory, EveryRequestOfEveryRuleThatFailsLeavesNothing) {
  Points points;
  for (const Workload& parse : parsesOfRules()) points += failEveryRequest(parse);
  points.report("memory A, rules", "heap requests of single rules");
}

TEST_F(ParseMemory, EveryBlockThatIsRefusedLeavesNothing) {
  Points points;
  const std::vector<NamedScene> scenes = scenesWithObjects();
  for (const Workload& parse : parsesOf(scenes)) points += failEveryBlock(parse);
  for (const Workload& parse : parsesOf(largeScenes())) points += failEveryBlock(parse);
  points.report("memory B, blocks", "blocks of maps and scratch");
}

TEST_F(ParseMemory, EveryNodeThatIsRefusedLeavesNothing) {
  Points points;
  for (const NamedScene& scene : scenesWithObjects()) {
    points += failEveryElement(parsesOf({scene}).front());
  }
  points.report("memory B, nodes", "nodes of parses");
}

TEST_F(ParseMemory, EveryNodeOfAFailingSceneThatIsRefusedLeavesNothing) {
  Points points;
  for (const Workload& parse : parsesOf(failingScenes())) points += failEveryElement(parse);
  points.report("memory B, failing scenes", "nodes of parses that fail anyway");
}

TEST_F(ParseMemory, EveryNodeOfEveryRuleThatIsRefusedLeavesNothing) {
  Points points;
  for (const Workload& parse : parsesOfRules()) points += failEveryElement(parse);
  points.report("memory B, rules", "nodes of single rules");
}
