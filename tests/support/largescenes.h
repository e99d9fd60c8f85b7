// Scenes at the limits that writers have to bear.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "kelp/scene.h"
#include "tests/support/smallstack.h"

namespace KelpTest {

inline constexpr int kManyEntries = 1000000;
inline constexpr int kDeepNesting = 10000;

inline std::string repeated(const std::string& piece, int count) {
  std::string text;
  text.reserve(piece.size() * static_cast<size_t>(count));
  for (int i = 0; i < count; ++i) text += piece;
  return text;
}

/// A value in which `opening` and `closing` nest to the limit around an innermost value.
inline std::string nested(const std::string& opening, const std::string& innermost,
                          const std::string& closing) {
  return repeated(opening, kDeepNesting - 1) + innermost + repeated(closing, kDeepNesting - 1);
}

struct LargeValue {
  const char* name;
  std::string text;
};

/// Values of up to a million entries, and of ten thousand levels.
inline std::vector<LargeValue> largeValues() {
  return {
      {"sum", "1" + repeated("+1", kManyEntries - 1)},
      {"list", "List(1" + repeated(",1", kManyEntries - 1) + ")"},
      {"interpolation", "interpolate((1,2)" + repeated(",(1,2)", kManyEntries - 1) + ")"},
      {"integers", "ListInt(1" + repeated(",1", kManyEntries / 10) + ")"},
      {"indices", "a.b[1" + repeated("][1", kManyEntries / 10) + "]"},
      {"negations", nested("-(", "1", ")")},
      {"right operands", nested("1-(", "1", ")")},
      {"vectors", nested("Vector(1,2,", "3", ")")},
      {"calls", nested("sin(", "1", ")")},
      {"lists", nested("List(", "1", ")")},
      {"element of element", nested("a.b[", "1", "]")},
  };
}

/// Parses on a stack that is large enough for every value and gives the scene to `use` on one that
/// only code without recursion gets along with.
inline void withSceneOnSmallStack(const std::string& value,
                                  const std::function<void(Kelp::Scene&)>& use) {
  runOnStackOf(kHugeStack, [&] {
    Kelp::Scene scene = Kelp::Scene::fromText("A a { x = " + value + "; }", "large.scene");
    runOnStackOf(kSmallStack, [&] { use(scene); });
  });
}

}  // namespace KelpTest
