// Scenes: settings, then text. It is read, filtered, written down and released.
#include <sstream>

#include "kelp/scene.h"
#include "tests/fuzz/checks.h"
#include "tests/fuzz/targets.h"
#include "tests/models/mismatch.h"
#include "tests/support/sexpression.h"
#include "tests/support/smallstack.h"
#include "tests/support/written.h"

namespace KelpTest {

using namespace Kelp;

namespace {

struct Settings {
  SceneOptions options;
  bool filtered;
  bool onSmallStack;
};

// One byte says which limits there are, the next ones how tight they are.
void readLimits(ByteChoices& input, SceneOptions& options) {
  const uint8_t bits = input.byte();
  if ((bits & 1U) != 0) options.limits.maxBytes = 4 * (1 + input.byte());
  if ((bits & 2U) != 0) options.limits.maxIncludes = 1 + input.byte();
  if ((bits & 4U) != 0) options.limits.maxStringLength = input.byte();
  if ((bits & 8U) != 0) options.maxObjects = 1 + input.byte();
  options.limits.confine = (bits & 16U) != 0;
  if ((bits & 32U) != 0) options.includePaths.push_back(KELP_SOURCE_DIR "/tests/fuzz/includes");
}

Settings readSettings(ByteChoices& input) {
  Settings settings;
  const uint8_t bits = input.byte();
  const uint8_t depth = input.byte();
  settings.options.collectReferences = (bits & 1U) != 0;
  if ((bits & 2U) != 0) settings.options.nameAffix = "affix_";
  settings.options.affixIsSuffix = (bits & 4U) != 0;
  settings.filtered = (bits & 8U) != 0;
  if ((bits & 16U) != 0) settings.options.lastFrame = 24;
  settings.onSmallStack = bits >> 5U == 7;
  settings.options.maxNestingDepth = depth;  // 0: only the stack counts
  if (bits >> 5U == 4 || bits >> 5U == 5) readLimits(input, settings.options);
  return settings;
}

// Includes are taken from one folder; inputs that would reach out of it are not tried, unless the
// reader refuses them anyway.
bool leavesFolder(const std::string& text) {
  constexpr char kWord[] = "#include";
  for (size_t at = text.find(kWord); at != std::string::npos; at = text.find(kWord, at + 1)) {
    const size_t quote = text.find('"', at);
    const size_t slash = text.find('/', at);
    if (slash < text.find('"', quote == std::string::npos ? quote : quote + 1)) return true;
  }
  return false;
}

Scene readScene(const std::string& text, const Settings& settings) {
  static const std::string name = KELP_SOURCE_DIR "/tests/fuzz/includes/fuzzed.scene";
  BuiltinFunctionAST::rndGen.reset();
  Scene scene = Scene::fromText(text, name, settings.options);
  if (scene && settings.filtered) filterByName(scene.parser(), scene.program());
  return scene;
}

// The S-expression costs stack; the listing costs none.
std::string outcomeOf(const Scene& scene, const Settings& settings) {
  std::ostringstream out;
  if (!scene) {
    out << scene.error();
    return out.str();
  }
  out << KelpTest::treeListing(*scene.program());
  if (settings.options.maxNestingDepth > 0) out << sexpression(*scene.program());
  return out.str();
}

void expectLimitsKept(const Scene& scene, const SceneOptions& options) {
  if (!scene) return;
  const int64_t bytes = scene.reader().bytesRead();
  const int64_t objects = scene.program()->numObjects;
  const SourceLimits& limits = options.limits;
  expectThat("maxBytes", limits.maxBytes == 0 || bytes <= limits.maxBytes);
  expectThat("maxObjects", options.maxObjects == 0 || objects <= options.maxObjects);
}

}  // namespace

int fuzzText(const uint8_t* data, size_t size) {
  takeDownGoodScenes();
  ByteChoices input(data, size);
  Shortage shortage(input);
  const Settings settings = readSettings(input);
  const std::string text = input.rest();
  if (!settings.options.limits.confine && leavesFolder(text)) return 0;
  const NodeBalance balance;
  if (settings.onSmallStack) {
    runOnStackOf(kSmallStack, [&] { shortage.run([&] { readScene(text, settings); }); });
    balance.expectRestored(shortage);
  }
  std::string outcomes[2];
  for (std::string& outcome : outcomes) {
    Scene scene;
    const bool whole = shortage.run([&] { scene = readScene(text, settings); });
    if (whole) {
      expectLimitsKept(scene, settings.options);
      outcome = outcomeOf(scene, settings);
    }
    scene = Scene();
    balance.expectRestored(shortage);
  }
  if (shortage.hasStruck()) {
    expectGoodSceneToParse(size);
  } else {
    expectSame("the second reading", outcomes[0], outcomes[1]);
  }
  return 0;
}

}  // namespace KelpTest
