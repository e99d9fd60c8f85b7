// Lists and transforms that SceneTextWriter writes in the other one of their forms.
#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <filesystem>
#include <random>
#include <vector>

#include "kelp/queries/hexvalues.h"
#include "kelp/scene.h"
#include "kelp/writers/sceneformat.h"
#include "kelp/writers/scenetextwriter.h"
#include "tests/support/figures.h"
#include "tests/support/scenemaker.h"
#include "tests/support/sexpression.h"
#include "tests/support/trees.h"

using namespace Kelp;
using namespace KelpTest;

namespace {

namespace fs = std::filesystem;

struct Written {
  std::string text;
  int64_t approximated = 0;
};

template <class Node>
Written written(Node& node, ConstantForm constants) {
  Written result;
  SceneTextWriter writer([&result](std::string_view piece) { result.text += piece; });
  writer.constants = constants;
  writer.write(node);
  writer.finish();
  result.approximated = writer.approximatedNumbers();
  return result;
}

// Without the end of the line.
std::string rewritten(const std::string& value, ConstantForm constants) {
  const ParsedExpression parsed(value);
  const std::string text = written(*parsed.tree.get(), constants).text;
  return text.substr(0, text.size() - 1);
}

std::string encoded(const std::string& value) {
  return rewritten(value, ConstantForm::kHexadecimal);
}

std::string decoded(const std::string& value) { return rewritten(value, ConstantForm::kNumbers); }

const std::string kPlacedHex =
    "TransformHex(\"0000803f0000000000000000000000000000803f00000000"
    "00000000000000000000803fcdcccc3d00000080000080ff\")";
const std::string kPlaced =
    "Transform(Matrix(Vector(1, 0, 0), Vector(0, 1, 0), Vector(0, 0, 1)), "
    "Vector(0.1, -0, -1e309))";

// A transform of which one number is another.
std::string transformWith(const std::string& number) {
  return "Transform(Matrix(Vector(1, 0, 0), Vector(0, " + number +
         ", 0), Vector(0, 0, 1)), Vector(0, 0, 0))";
}

std::string hexOf(const std::vector<uint32_t>& numbers) {
  std::string digits(numbers.size() * 8, '\0');
  encodeHexNumbers(numbers.data(), numbers.size(), digits.data());
  return digits;
}

bool isHex(const std::string& text) { return text.starts_with("TransformHex(\""); }

Scene read(const std::string& text, const std::string& name) {
  Scene scene = Scene::fromText(text, name);
  EXPECT_TRUE(scene) << scene.error() << '\n' << text;
  return scene;
}

// Both ways lead back, and the layout is that of every scene. Gives false when a hexadecimal form
// cannot be decoded.
bool comesBack(const Scene& scene, const std::string& name) {
  Written numbers;
  try {
    numbers = written(*scene.program(), ConstantForm::kNumbers);
  } catch (const NotWritableException&) {
    return false;
  }
  EXPECT_EQ(formatText(numbers.text), numbers.text);
  const Scene plain = read(numbers.text, name);
  const Written hex = written(*plain.program(), ConstantForm::kHexadecimal);
  EXPECT_EQ(hex.approximated, 0);
  EXPECT_EQ(formatText(hex.text), hex.text);
  const Scene encodedScene = read(hex.text, name);
  const Written again = written(*encodedScene.program(), ConstantForm::kNumbers);
  EXPECT_EQ(again.text, numbers.text);
  EXPECT_EQ(again.approximated, 0);
  EXPECT_EQ(sexpression(*read(again.text, name).program()), sexpression(*plain.program()));
  return true;
}

}  // namespace

TEST(ConstantForms, ListsAreEncodedAndDecoded) {
  const struct {
    const char* numbers;
    const char* hex;
  } rows[] = {
      {"ListInt(1, -1, -2147483648)", "ListIntHex(\"01000000ffffffff00000080\")"},
      {"ListFloat(1, 0.1, -0)", "ListFloatHex(\"0000803fcdcccc3d00000080\")"},
      {"ListFloat(1e309, -1e309)", "ListFloatHex(\"0000807f000080ff\")"},
      {"ListFloat(1e-45)", "ListFloatHex(\"01000000\")"},
      {"ListVector(Vector(1, 2, 3))", "ListVectorHex(\"0000803f0000004000004040\")"},
      {"ListColor(Color(1, 2, 3))", "ListColorHex(\"0000803f0000004000004040\")"},
      {"ListInt()", "ListIntHex(\"\")"},
      {"ListVector()", "ListVectorHex(\"\")"},
  };
  for (const auto& row : rows) {
    EXPECT_EQ(encoded(row.numbers), row.hex);
    EXPECT_EQ(decoded(row.hex), row.numbers);
    EXPECT_EQ(encoded(row.hex), row.hex);
    EXPECT_EQ(decoded(row.numbers), row.numbers);
  }
  EXPECT_EQ(decoded("ListIntHex(\"ABCDEF00\")"), "ListInt(15715755)");
}

TEST(ConstantForms, WhatHasOneFormOnlyStaysAsItIs) {
  for (const char* value :
       {"ListString(\"a\")", "List(1, 2)", "Vector(1, 2, 3)", "Color(1, 2, 3)",
        "AColor(1, 2, 3, 4)", "Matrix(Vector(1, 2, 3), Vector(1, 2, 3), Vector(1, 2, 3))",
        "interpolate((1, 2))", "5", "\"00000000\"", "a.b"}) {
    EXPECT_EQ(encoded(value), value);
    EXPECT_EQ(decoded(value), value);
  }
}

TEST(ConstantForms, FormsWithinOtherValuesAreTurnedToo) {
  EXPECT_EQ(encoded("List(ListInt(1), -a * 2)"), "List(ListIntHex(\"01000000\"), -a * 2)");
  EXPECT_EQ(decoded("List(ListIntHex(\"01000000\"), 5)"), "List(ListInt(1), 5)");
}

TEST(ConstantForms, TransformsOfConstantsAreEncodedAndDecoded) {
  EXPECT_EQ(encoded(kPlaced), kPlacedHex);
  EXPECT_EQ(decoded(kPlacedHex), kPlaced);
  EXPECT_EQ(decoded(kPlaced), kPlaced);
  EXPECT_EQ(encoded(kPlacedHex), kPlacedHex);
}

TEST(ConstantForms, TransformThatDecodingWouldChangeStaysAsItIs) {
  for (const char* kept : {"0.123456789", "16777217", "1e300", "1e-60", "a", "a.b", "1 + 1",
                           "-(-1)", "\"1\"", "sin(1)"}) {
    EXPECT_FALSE(isHex(encoded(transformWith(kept)))) << kept;
  }
  for (const char* good : {"0.1", "-0.1", "16777216", "1e309", "-1e309", "0e309", "-0e309", "-0",
                           "3.4028235e38", "1e-45"}) {
    EXPECT_TRUE(isHex(encoded(transformWith(good)))) << good;
    EXPECT_EQ(formatText(decoded(encoded(transformWith(good)))), formatText(transformWith(good)));
  }
  for (const char* kept :
       {"Transform(1, 2)", "Transform(Matrix(1, 2, 3), Vector(0, 0, 0))",
        "Transform(Matrix(Vector(1, 0, 0), Color(0, 1, 0), Vector(0, 0, 1)), Vector(0, 0, 0))",
        "Transform(Matrix(Vector(1, 0, 0), Vector(0, 1, 0), Vector(0, 0, 1)), Color(0, 0, 0))",
        "Transform(Matrix(Vector(1, 0, 0), Vector(0, 1, 0), Vector(0, 0, 1)), a)"}) {
    EXPECT_FALSE(isHex(encoded(kept))) << kept;
  }
}

// No text gives it: the sign of a not-a-number is the one that reading 0e309 gives.
TEST(ConstantForms, TransformWithANotANumberOfAnotherSignStaysAsItIs) {
  const ParsedExpression parsed(transformWith("0e309"));
  auto& matrix = as<MatrixExpressionAST>(as<TransformExpressionAST>(parsed.tree.get()).matrix);
  auto& row = as<VectorExpressionAST>(matrix.rows[1]);
  auto& number = as<NumberExpressionAST>(row.components[1]);
  ASSERT_TRUE(isHex(written(*parsed.tree.get(), ConstantForm::kHexadecimal).text));
  number.value = std::copysign(number.value, std::signbit(number.value) ? 1.0 : -1.0);
  const Written other = written(*parsed.tree.get(), ConstantForm::kHexadecimal);
  EXPECT_FALSE(isHex(other.text));
  EXPECT_EQ(other.approximated, 1);
}

TEST(ConstantForms, TransformLiesInItsLinesAsFormattingLaysIt) {
  std::string numbers;
  for (int i = 0; i < 12; ++i) numbers += "db0f49c0";  // -pi
  for (const char* around : {"", "List(1, ", "f.some_rather_long_name[1] * ("}) {
    const std::string closing = *around == '\0' ? "" : ")";
    const std::string text =
        decoded(around + ("TransformHex(\"" + numbers + "\")") + closing) + '\n';
    EXPECT_EQ(formatText(text), text);
    EXPECT_NE(text.find("-3.1415927"), std::string::npos);
  }
}

// Bits in, bits out: only a payload of a not-a-number is lost, and is counted.
TEST(ConstantForms, DecodedFloatsReadBackToTheSameBits) {
  const int lists = hasTimeForAll() ? 1000 : 10;
  std::mt19937 random(7);
  int64_t payloads = 0;
  for (int i = 0; i < lists; ++i) {
    std::vector<uint32_t> patterns(10000);
    for (uint32_t& pattern : patterns) pattern = static_cast<uint32_t>(random());
    const std::string hex = hexOf(patterns);
    const ParsedExpression parsed("ListFloatHex(\"" + hex + "\")");
    const Written numbers = written(*parsed.tree.get(), ConstantForm::kNumbers);
    const ParsedExpression again(numbers.text);
    const auto list = elementsOf(as<ListTypeExpressionAST<float>>(again.tree.get()));
    ASSERT_EQ(list.elements.count, static_cast<int>(patterns.size()));
    int64_t changed = 0;
    for (size_t at = 0; at < patterns.size(); ++at) {
      const float value = list.elements.data[at];
      if (std::memcmp(&value, &patterns[at], sizeof value) == 0) continue;
      ++changed;
      ASSERT_TRUE(std::isnan(value) && (patterns[at] & 0x7f800000U) == 0x7f800000U);
    }
    ASSERT_EQ(numbers.approximated, changed);
    payloads += changed;
  }
  EXPECT_GT(payloads, 0);
  reportFigure("hexadecimal values", grouped(int64_t{10000} * lists) +
                                         " floats decoded to literals of the same bits, " +
                                         grouped(payloads) + " payloads of not-a-numbers apart");
}

TEST(ConstantForms, LongListsAreDecodedPieceByPiece) {
  for (const size_t count : {255U, 256U, 257U, 512U, 5000U}) {
    std::string numbers;
    std::string digits;
    for (size_t i = 0; i < count; ++i) {
      const auto value = static_cast<int>(i) * 77777;
      numbers += (i > 0 ? "," : "") + std::to_string(value);
      digits += encodeHexList(&value, 1);
    }
    const std::string plain = "ListInt(" + numbers + ")";
    EXPECT_EQ(decoded("ListIntHex(\"" + digits + "\")") + '\n', formatText(plain));
    EXPECT_EQ(encoded(plain), "ListIntHex(\"" + digits + "\")");
  }
}

TEST(ConstantForms, FormThatCannotBeDecodedIsRefusedWithItsPlace) {
  const std::string good(24 * 300, '0');
  const struct {
    std::string value;
    const char* problem;
  } rows[] = {
      {"ListIntHex(\"0g\")", "ListIntHex: character 2 is no hexadecimal digit: \"g\""},
      {"ListVectorHex(\"" + good + "00000000\")",
       "ListVectorHex: the text ends within an element, behind character 7208"},
      {"ListVectorHex(\"" + good + "0000 000\")",
       "ListVectorHex: character 7205 is no hexadecimal digit: byte 0x20"},
      {"ListFloatHex(five)", "ListFloatHex: there is no text to decode"},
      {"ListColorHex(\"00\")", "ListColorHex: the text ends within an element, behind character 2"},
      {"TransformHex(\"\")", "TransformHex: the text ends within an element, behind character 0"},
      {"TransformHex(5)", "TransformHex: there is no text to decode"},
  };
  for (const auto& row : rows) {
    const Scene scene = read("A a {}\nB b { ok = 1;\n  x = List(" + row.value + "); }", "b.scene");
    try {
      written(*scene.program(), ConstantForm::kNumbers);
      ADD_FAILURE() << row.value;
    } catch (const NotWritableException& error) {
      EXPECT_EQ(error.message.chars(),
                std::string("Cannot be decoded: object \"B b\", property \"x\", ") + row.problem);
      EXPECT_STREQ(error.file.chars(), "b.scene");
      EXPECT_EQ(error.line, 3);
    }
  }
}

TEST(ConstantForms, ScenesOfTheProjectComeBack) {
  int scenes = 0;
  int refused = 0;
  for (const char* directory : {"tests/scenes", "tests/corpus", "examples"}) {
    for (const auto& entry : fs::directory_iterator(fs::path(KELP_SOURCE_DIR) / directory)) {
      if (entry.path().extension() != ".scene") continue;
      const std::string name = entry.path().string();
      const Scene scene = Scene::fromFile(name);
      if (!scene) continue;
      SCOPED_TRACE(name);
      ++(comesBack(scene, name) ? scenes : refused);
    }
  }
  EXPECT_GT(scenes, 20);
  EXPECT_GT(refused, 0);
  reportFigure("hexadecimal values", grouped(scenes) + " scenes of the corpora there and back, " +
                                         grouped(refused) + " refused for their texts");
}

TEST(ConstantForms, DrawnScenesComeBack) {
  const int cases = hasTimeForAll() ? 10000 : 300;
  int scenes = 0;
  for (int i = 0; i < cases && !testing::Test::HasFailure(); ++i) {
    const std::string text = SceneMaker(static_cast<uint64_t>(i)).scene();
    SCOPED_TRACE(text);
    const Scene scene = read(text, "drawn.scene");
    if (comesBack(scene, "drawn.scene")) ++scenes;
  }
  EXPECT_GT(scenes, cases / 10);
  reportFigure("hexadecimal values", grouped(scenes) + " drawn scenes there and back");
}
