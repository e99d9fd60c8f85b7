#include "bench/scenegenerator.h"

#include <array>

namespace KelpBench {

namespace {

constexpr uint32_t kVertices = 20000;

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

std::string numbered(const char* name, int64_t i) { return name + std::to_string(i); }

// Writes one object after another. Numbers are drawn in an order that the code spells out.
class Generator {
 public:
  Generator(Content generated, Syntax syntax) : content(generated), out(syntax) {}

  void addObject(int64_t i) {
    if (i > 0) out.next();
    switch (content) {
      case Content::kMesh:
        _addMesh(i);
        break;
      case Content::kObjects:
        _addNode(i);
        break;
      case Content::kExpressions:
        _addRig(i);
        break;
      case Content::kHex:
        _addHexMesh(i);
        break;
    }
  }

 private:
  template <size_t kCount>
  std::array<uint32_t, kCount> _draw(const std::array<uint32_t, kCount>& bounds) {
    std::array<uint32_t, kCount> drawn{};
    for (size_t i = 0; i < kCount; ++i) drawn[i] = numbers.below(bounds[i]);
    return drawn;
  }

  void _property(const char* name, Part part, std::string_view plain) {
    out.begin(Part::kProperty, name);
    out.leaf(part, plain);
    out.end();
  }

  void _property(const char* name, const Decimal& decimal) {
    out.begin(Part::kProperty, name);
    out.number(decimal);
    out.end();
  }

  void _triple(Part part, const Decimal& first, const Decimal& second, const Decimal& third) {
    out.begin(part);
    out.number(first);
    out.next();
    out.number(second);
    out.next();
    out.number(third);
    out.end();
  }

  // As exporters print them: sign, up to three digits, six decimals.
  Decimal _coordinate() {
    const auto [whole, decimals, sign] = _draw<3>({200, 1000000, 2});
    return {whole, 6, decimals, sign != 0};
  }

  void _addVectors(const char* property) {
    out.begin(Part::kLongProperty, property);
    out.begin(Part::kVectorList);
    for (uint32_t i = 0; i < kVertices; ++i) {
      if (i > 0) out.next();
      const Decimal x = _coordinate();
      const Decimal y = _coordinate();
      const Decimal z = _coordinate();
      _triple(Part::kVector, x, y, z);
    }
    out.end();
    out.end();
  }

  void _addFaces() {
    out.begin(Part::kLongProperty, "faces");
    out.begin(Part::kIntList);
    for (uint32_t i = 0; i < kVertices * 3; ++i) {
      if (i > 0) out.next();
      out.number({numbers.below(kVertices)});
    }
    out.end();
    out.end();
  }

  void _addMesh(int64_t i) {
    out.begin(Part::kObject, "Mesh", numbered("mesh_", i));
    _property("material", Part::kName, numbered("material_", i % 7));
    out.next();
    _addVectors("vertices");
    _addVectors("normals");
    _addFaces();
    out.end();
  }

  void _addHex(const char* property, Part part) {
    constexpr uint32_t kDigitsOfAValue = 8;
    std::string digits(size_t{kVertices} * 3 * kDigitsOfAValue, '0');
    for (char& digit : digits) digit = "0123456789abcdef"[numbers.below(16)];
    out.begin(Part::kLongProperty, property);
    out.leaf(part, digits);
    out.end();
  }

  void _addHexMesh(int64_t i) {
    out.begin(Part::kObject, "Mesh", numbered("mesh_", i));
    out.next();
    _addHex("vertices", Part::kHexVectorList);
    _addHex("faces", Part::kHexIntList);
    out.end();
  }

  void _addTriples() {
    const auto [z, y, x] = _draw<3>({100, 100, 100});
    out.begin(Part::kProperty, "position");
    _triple(Part::kVector, {x, 1, 5}, {y, 2, 25, true}, {z});
    out.end();
    const auto [blue, green, red] = _draw<3>({1000, 1000, 1000});
    const auto channel = [](uint32_t value) {
      return Decimal{0, value < 10 ? 1 : value < 100 ? 2 : 3, value};
    };
    out.begin(Part::kProperty, "tint");
    _triple(Part::kColor, channel(red), channel(green), channel(blue));
    out.end();
  }

  void _addNode(int64_t i) {
    out.begin(Part::kObject, "Node", numbered("node_", i));
    _property("label", Part::kText, numbered("node number ", i));
    _property("visible", {numbers.below(2)});
    _addTriples();
    _property("parent", Part::kName, numbered("node_", i / 2));
    const auto [material, geometry] = _draw<2>({50, 50});
    _property("geometry", Part::kName, numbered("mesh_", geometry));
    _property("material", Part::kName, numbered("mesh_", material) + ".material");
    for (uint32_t extra = numbers.below(4); extra > 0; --extra) {
      const auto [decimals, whole] = _draw<2>({1000, 1000});
      _property(numbered("setting_", extra).c_str(), {whole, 3, decimals});
    }
    out.next();
    out.end();
  }

  void _member(const char* member, const std::string& object) {
    out.begin(Part::kMember, member);
    out.leaf(Part::kReference, object);
    out.end();
  }

  // (rig_I.base + N.5) * 2
  void _gainProduct(int64_t i, uint32_t whole) {
    out.begin(Part::kMultiplication);
    out.begin(Part::kGroup);
    out.begin(Part::kAddition);
    _member("base", numbered("rig_", i));
    out.next();
    out.numberValue({whole, 1, 5});
    out.end();
    out.end();
    out.next();
    out.numberValue({2});
    out.end();
  }

  // 1 / rig_I.list[N].x
  void _gainQuotient(int64_t i, uint32_t index) {
    out.begin(Part::kDivision);
    out.numberValue({1});
    out.next();
    out.begin(Part::kMember, "x");
    out.begin(Part::kIndex);
    _member("list", numbered("rig_", i));
    out.next();
    out.numberValue({index});
    out.end();
    out.end();
    out.end();
  }

  // gain = (rig_I.base + N.5) * 2 - 1 / rig_J.list[N].x;
  void _addGain(int64_t i) {
    const auto [index, whole] = _draw<2>({9, 100});
    out.begin(Part::kLongProperty, "gain");
    out.begin(Part::kSubtraction);
    _gainProduct(i, whole);
    out.next();
    _gainQuotient(i / 2, index);
    out.end();
    out.end();
  }

  // sin(view::time * N.25) + 1
  void _swing(uint32_t whole) {
    out.begin(Part::kAddition);
    out.begin(Part::kCall, "sin");
    out.begin(Part::kMultiplication);
    out.leaf(Part::kReference, "view::time");
    out.next();
    out.numberValue({whole, 2, 25});
    out.end();
    out.end();
    out.next();
    out.numberValue({1});
    out.end();
  }

  // base = clamp(sin(view::time * N.25) + 1, -0.5, max(N, 2));
  void _addBase() {
    const auto [most, whole] = _draw<2>({9, 9});
    out.begin(Part::kLongProperty, "base");
    out.begin(Part::kCall, "clamp");
    _swing(whole);
    out.next();
    out.numberValue({0, 1, 5, true});
    out.next();
    out.begin(Part::kCall, "max");
    out.numberValue({most});
    out.next();
    out.numberValue({2});
    out.end();
    out.end();
    out.end();
  }

  void _middlePair(uint32_t y) {
    out.begin(Part::kPair);
    out.numberValue({0, 1, 5});
    out.next();
    out.begin(Part::kVectorValue);
    out.numberValue({1});
    out.next();
    out.numberValue({y});
    out.next();
    out.numberValue({0});
    out.end();
    out.end();
  }

  void _pair(uint32_t time, const Decimal& value) {
    out.begin(Part::kPair);
    out.numberValue({time});
    out.next();
    out.numberValue(value);
    out.end();
  }

  // curve = interpolate((0, N), (0.5, Vector(1, N, 0)), (1, -N.75));
  void _addCurve() {
    const auto [last, middle, first] = _draw<3>({50, 50, 50});
    out.begin(Part::kLongProperty, "curve");
    out.begin(Part::kInterpolation);
    _pair(0, {first});
    out.next();
    _middlePair(middle);
    out.next();
    _pair(1, {last, 2, 75, true});
    out.end();
    out.end();
  }

  void _innerList(uint32_t last) {
    out.begin(Part::kList);
    out.numberValue({1});
    out.next();
    out.numberValue({2});
    out.next();
    out.numberValue({last});
    out.end();
  }

  void _negatedDifference(uint32_t subtrahend) {
    out.begin(Part::kNegation);
    out.begin(Part::kGroup);
    out.begin(Part::kSubtraction);
    out.numberValue({3});
    out.next();
    out.numberValue({subtrahend});
    out.end();
    out.end();
    out.end();
  }

  // list = List(rig_I, List(1, 2, N), -(3 - N), "text N");
  void _addList(int64_t i) {
    const auto [text, subtrahend, last] = _draw<3>({99, 99, 99});
    out.begin(Part::kLongProperty, "list");
    out.begin(Part::kList);
    out.leaf(Part::kReference, numbered("rig_", i));
    out.next();
    _innerList(last);
    out.next();
    _negatedDifference(subtrahend);
    out.next();
    out.leaf(Part::kString, numbered("text ", text));
    out.end();
    out.end();
  }

  void _addRig(int64_t i) {
    out.begin(Part::kObject, "Rig", numbered("rig_", i));
    out.next();
    _addGain(i);
    _addBase();
    _addCurve();
    _addList(i / 3);
    out.end();
  }

  Content content;
  Numbers numbers;

 public:
  ContentWriter out;
};

}  // namespace

GeneratedText generate(Content content, Syntax syntax, size_t sceneBytes) {
  // How many objects there are is decided by the scene text, whatever is wanted.
  Generator scene(content, Syntax::kScene);
  Generator wanted(content, syntax);
  scene.out.begin(Part::kProgram);
  wanted.out.begin(Part::kProgram);
  GeneratedText generated;
  for (const auto most = static_cast<int64_t>(sceneBytes); generated.sceneBytes < most;
       ++generated.objects) {
    scene.addObject(generated.objects);
    generated.sceneBytes += static_cast<int64_t>(scene.out.text.size());
    if (syntax == Syntax::kScene) {
      wanted.out.text += scene.out.text;
    } else {
      wanted.addObject(generated.objects);
    }
    scene.out.text.clear();
  }
  wanted.out.end();
  generated.values = scene.out.values;
  generated.listBytes = scene.out.listBytes;
  generated.text = std::move(wanted.out.text);
  return generated;
}

}  // namespace KelpBench
