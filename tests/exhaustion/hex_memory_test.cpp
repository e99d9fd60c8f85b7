// Decoding and encoding hexadecimal texts, and writing either form, when memory runs out: at every
// heap request.
#include <gtest/gtest.h>

#include <string>

#include "kelp/queries/hexvalues.h"
#include "kelp/scene.h"
#include "kelp/writers/scenetextwriter.h"
#include "tests/exhaustion/operation.h"

using namespace Kelp;
using namespace KelpTest;

namespace {

class HexOperation final : public Operation {
 public:
  void act() override {
    list = decodeHexList<Vector>(kDigits);
    text = encodeHexList(list.elements.data, static_cast<size_t>(list.elements.count));
    const HexList<Vector> bad = decodeHexList<Vector>(kDigits + 'g');
    problem = bad.error.describe();
    written.clear();
    SceneTextWriter writer([this](std::string_view piece) { written += piece; });
    writer.constants = ConstantForm::kNumbers;
    writer.write(*scene.program());
    writer.constants = ConstantForm::kHexadecimal;
    writer.write(*scene.find("a"));
    writer.finish();
  }

  void check(bool completed) override {
    // Each is whole or as if new.
    EXPECT_TRUE(list.elements.count == 0 || list.elements.count == 300);
    EXPECT_TRUE(text.empty() || text == kDigits);
    if (!completed) return;
    EXPECT_EQ(text, kDigits);
    EXPECT_EQ(problem, "character 7201 is no hexadecimal digit: \"g\"");
    EXPECT_NE(written.find("ListVector("), std::string::npos);
    EXPECT_NE(written.find("TransformHex("), std::string::npos);
  }

 private:
  static inline const std::string kDigits = std::string(24 * 300, '4');

  const Scene scene = Scene::fromText(
      "A a { x = ListVectorHex(\"" + kDigits +
      "\"); y = Transform(Matrix(Vector(1, 0, 0), Vector(0, 1, 0), Vector(0, 0, 1)),"
      " Vector(0, 0, 0)); }");
  HexList<Vector> list;
  std::string text;
  std::string problem;
  std::string written;
};

}  // namespace

TEST(HexMemory, EveryRequestThatFailsLeavesNothing) {
  const Points points = failEveryRequest(workload<HexOperation>("hexadecimal texts", 100));
  EXPECT_GT(points.failures, 10);
  points.report("memory A, hexadecimal", "heap requests of decoding and encoding");
}
