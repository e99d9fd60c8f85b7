#include "bench/scenegenerator.h"

#include <cstdarg>
#include <cstdint>
#include <cstdio>

namespace KelpBench {

namespace {

// A linear congruential generator (Knuth's MMIX constants): the same numbers everywhere.
class Numbers {
 public:
  /// From 0 to below `bound`.
  uint32_t below(uint32_t bound) {
    state = state * 6364136223846793005U + 1442695040888963407U;
    return static_cast<uint32_t>((state >> 33) % bound);
  }

 private:
  uint64_t state = 1;
};

class SceneText {
 public:
  explicit SceneText(size_t bytes) { text.reserve(bytes + bytes / 8); }

  [[gnu::format(printf, 2, 3)]] void add(const char* format, ...) {
    char line[256];
    va_list values;
    va_start(values, format);
    const int length = std::vsnprintf(line, sizeof line, format, values);
    va_end(values);
    text.append(line, static_cast<size_t>(length));
  }

  // A coordinate as exporters print them: sign, up to three digits, six decimals.
  void addCoordinate() {
    const uint32_t whole = numbers.below(200);
    const uint32_t decimals = numbers.below(1000000);
    add(numbers.below(2) == 0 ? "%u.%06u" : "-%u.%06u", whole, decimals);
  }

  void addVectors(const char* property, int count) {
    add("\t%s = ListVector(", property);
    for (int i = 0; i < count; ++i) {
      text += i == 0 ? "Vector(" : ", Vector(";
      addCoordinate();
      text += ", ";
      addCoordinate();
      text += ", ";
      addCoordinate();
      text += ')';
    }
    text += ");\n";
  }

  void addFaces(int count, uint32_t vertices) {
    text += "\tfaces = ListInt(";
    for (int i = 0; i < count; ++i) add(i == 0 ? "%u" : ", %u", numbers.below(vertices));
    text += ");\n";
  }

  void addHex(const char* property, const char* form, int digits) {
    add("\t%s = %s(\"", property, form);
    for (int i = 0; i < digits; ++i) text += "0123456789abcdef"[numbers.below(16)];
    text += "\");\n";
  }

  Numbers numbers;
  std::string text;
};

}  // namespace

std::string meshScene(size_t bytes) {
  constexpr int kVertices = 20000;
  SceneText scene(bytes + 2500000);
  for (int mesh = 0; scene.text.size() < bytes; ++mesh) {
    scene.add("Mesh mesh_%d {\n\tmaterial = material_%d;\n", mesh, mesh % 7);
    scene.addVectors("vertices", kVertices);
    scene.addVectors("normals", kVertices);
    scene.addFaces(kVertices * 3, kVertices);
    scene.add("}\n");
  }
  return std::move(scene.text);
}

std::string objectScene(size_t bytes) {
  SceneText scene(bytes);
  for (int i = 0; scene.text.size() < bytes; ++i) {
    scene.add("Node node_%d {\n\tlabel = \"node number %d\";\n\tvisible = %u;\n", i, i,
              scene.numbers.below(2));
    scene.add("\tposition = Vector(%u.5, -%u.25, %u);\n", scene.numbers.below(100),
              scene.numbers.below(100), scene.numbers.below(100));
    scene.add("\ttint = Color(0.%u, 0.%u, 0.%u);\n", scene.numbers.below(1000),
              scene.numbers.below(1000), scene.numbers.below(1000));
    scene.add("\tparent = node_%d;\n\tgeometry = mesh_%u;\n\tmaterial = mesh_%u.material;\n", i / 2,
              scene.numbers.below(50), scene.numbers.below(50));
    for (uint32_t extra = scene.numbers.below(4); extra > 0; --extra) {
      scene.add("\tsetting_%u = %u.%03u;\n", extra, scene.numbers.below(1000),
                scene.numbers.below(1000));
    }
    scene.add("}\n");
  }
  return std::move(scene.text);
}

std::string expressionScene(size_t bytes) {
  SceneText scene(bytes);
  for (int i = 0; scene.text.size() < bytes; ++i) {
    scene.add("Rig rig_%d {\n\tgain = (rig_%d.base + %u.5) * 2 - 1 / rig_%d.list[%u].x;\n", i, i,
              scene.numbers.below(100), i / 2, scene.numbers.below(9));
    scene.add("\tbase = clamp(sin(view::time * %u.25) + 1, -0.5, max(%u, 2));\n",
              scene.numbers.below(9), scene.numbers.below(9));
    scene.add("\tcurve = interpolate((0, %u), (0.5, Vector(1, %u, 0)), (1, -%u.75));\n",
              scene.numbers.below(50), scene.numbers.below(50), scene.numbers.below(50));
    scene.add("\tlist = List(rig_%d, List(1, 2, %u), -(3 - %u), \"text %u\");\n", i / 3,
              scene.numbers.below(99), scene.numbers.below(99), scene.numbers.below(99));
    scene.add("}\n");
  }
  return std::move(scene.text);
}

std::string hexScene(size_t bytes) {
  constexpr int kVertices = 20000;
  SceneText scene(bytes + 2500000);
  for (int mesh = 0; scene.text.size() < bytes; ++mesh) {
    scene.add("Mesh mesh_%d {\n", mesh);
    scene.addHex("vertices", "ListVectorHex", kVertices * 3 * 8);
    scene.addHex("faces", "ListIntHex", kVertices * 3 * 8);
    scene.add("}\n");
  }
  return std::move(scene.text);
}

}  // namespace KelpBench
