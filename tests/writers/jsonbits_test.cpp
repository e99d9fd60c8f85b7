// What JSON text keeps when it is read back by another program.
#include <gtest/gtest.h>
#include <rapidjson/document.h>

#include <bit>
#include <functional>

#include "kelp/ast/expressions.h"
#include "kelp/scene.h"
#include "kelp/writers/jsontext.h"
#include "tests/support/largescenes.h"
#include "tests/support/written.h"

namespace {

constexpr unsigned kExactAndWithoutRecursion =
    rapidjson::kParseFullPrecisionFlag | rapidjson::kParseIterativeFlag;

rapidjson::Document readBack(const std::string& text) {
  rapidjson::Document document;
  document.Parse<kExactAndWithoutRecursion>(text.data(), text.size());
  return document;
}

std::string treeJson(const Kelp::Scene& scene) { return KelpTest::treeJson(*scene.program()); }

// What is written by the calls.
std::string jsonText(const std::function<void(Kelp::JsonText&)>& write) {
  std::string text;
  Kelp::JsonText json([&text](std::string_view piece) { text += piece; });
  write(json);
  json.newLine();
  return text;
}

const rapidjson::Value& valueOf(const rapidjson::Document& document) {
  return document["objects"][0]["properties"][0]["value"];
}

}  // namespace

TEST(JsonBits, DoublesReadBackToTheSameBits) {
  const double values[] = {0.0,          -0.0,
                           1.0,          -1.0,
                           0.1,          1.0 / 3.0,
                           5e-324,       1e-310,
                           2.5e-308,     1e22,
                           1e23,         1e16,
                           1e15,         9007199254740993.0,
                           1e18,         1e19,
                           1e308,        0.30000000000000004,
                           123456789.125};
  const std::string text = jsonText([&values](Kelp::JsonText& json) {
    json.beginArray();
    for (const double value : values) json.number(value);
    json.endArray();
  });
  const rapidjson::Document document = readBack(text);
  ASSERT_FALSE(document.HasParseError()) << text;
  for (rapidjson::SizeType i = 0; i < std::size(values); ++i) {
    EXPECT_EQ(std::bit_cast<uint64_t>(document[i].GetDouble()), std::bit_cast<uint64_t>(values[i]))
        << values[i];
  }
}

TEST(JsonBits, FloatsReadBackToTheSameBits) {
  const float values[] = {0.0F,        -0.0F,          0.1F,          1.0F / 3.0F,
                          1e-45F,      1.1754942e-38F, 3.4028235e38F, 1e-10F,
                          16777216.0F, 33554428.0F,    7.038531e-26F};
  const std::string text = jsonText([&values](Kelp::JsonText& json) {
    json.beginArray();
    for (const float value : values) json.number(value);
    json.endArray();
  });
  const rapidjson::Document document = readBack(text);
  ASSERT_FALSE(document.HasParseError()) << text;
  for (rapidjson::SizeType i = 0; i < std::size(values); ++i) {
    const auto read = static_cast<float>(document[i].GetDouble());
    EXPECT_EQ(std::bit_cast<uint32_t>(read), std::bit_cast<uint32_t>(values[i])) << values[i];
  }
}

TEST(JsonBits, ListsOfASceneReadBackToTheSameBits) {
  const Kelp::Scene scene = Kelp::Scene::fromText(
      "A { x = ListFloat(.1, 3e-45, -0, 16777217, 1e38, .3333333); }", "a.scene");
  ASSERT_TRUE(scene) << scene.error();
  auto* list = dynamic_cast<Kelp::ListTypeExpressionAST<float>*>(
      scene.program()->firstObject->firstProperty->value);
  ASSERT_NE(list, nullptr);
  const rapidjson::Document document = readBack(treeJson(scene));
  const rapidjson::Value& elements = valueOf(document)["elements"];
  ASSERT_EQ(elements.Size(), 6U);
  for (int i = 0; i < 6; ++i) {
    const auto read = static_cast<float>(elements[static_cast<rapidjson::SizeType>(i)].GetDouble());
    EXPECT_EQ(std::bit_cast<uint32_t>(read), std::bit_cast<uint32_t>(list->elements[i]));
  }
}

TEST(JsonBits, TextsReadBackCharacterForCharacter) {
  std::string text;
  for (int c = 1; c < 128; ++c) text += static_cast<char>(c);
  text += "\xC3\xA9 \xE2\x82\xAC \xF0\x9F\x8C\xBF";
  const std::string written = jsonText([&text](Kelp::JsonText& json) { json.text(text); });
  const rapidjson::Document document = readBack(written);
  ASSERT_TRUE(document.IsString()) << written;
  EXPECT_EQ(std::string(document.GetString(), document.GetStringLength()), text);
}

TEST(JsonBits, SumOfAMillionTermsIsAnArrayOfAMillion) {
  const std::string sum = "1" + KelpTest::repeated("+1", KelpTest::kManyEntries - 1);
  KelpTest::withSceneOnSmallStack(sum, [](Kelp::Scene& scene) {
    ASSERT_TRUE(scene) << scene.error();
    const rapidjson::Document document = readBack(treeJson(scene));
    ASSERT_FALSE(document.HasParseError());
    EXPECT_EQ(valueOf(document)["operands"].Size(), 1000000U);
    EXPECT_EQ(valueOf(document)["operators"].Size(), 999999U);
  });
}

TEST(JsonBits, NeitherLengthNorDepthNeedsStack) {
  constexpr size_t kQuicklyReadBack = 5000000;
  for (const KelpTest::LargeValue& value : KelpTest::largeValues()) {
    SCOPED_TRACE(value.name);
    KelpTest::withSceneOnSmallStack(value.text, [](Kelp::Scene& scene) {
      ASSERT_TRUE(scene) << scene.error();
      const std::string text = treeJson(scene);
      EXPECT_GT(text.size(), static_cast<size_t>(KelpTest::kDeepNesting));
      EXPECT_EQ(text.substr(text.size() - 6), "}]}]}\n");
      if (text.size() > kQuicklyReadBack) return;
      const rapidjson::Document document = readBack(text);
      ASSERT_FALSE(document.HasParseError());
      EXPECT_TRUE(valueOf(document).IsObject());
    });
  }
}
