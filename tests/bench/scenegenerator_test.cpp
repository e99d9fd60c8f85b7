// The contents of the benchmarks: the same at any time, and the same in every syntax.
#include "bench/scenegenerator.h"

#include <gtest/gtest.h>
#include <rapidjson/document.h>

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "kelp/scene.h"

namespace {

using KelpBench::Content;
using KelpBench::generate;
using KelpBench::GeneratedText;
using KelpBench::Syntax;

constexpr size_t kBytes = 30000;

struct Row {
  const char* name;
  Content content;
  uint64_t fingerprint;  // of the scene text
};

// Other contents would make all figures of before worthless.
constexpr Row kRows[] = {{"mesh", Content::kMesh, 11309876182654379399U},
                         {"objects", Content::kObjects, 13662093864628872088U},
                         {"expressions", Content::kExpressions, 9186745975465796057U},
                         {"hex", Content::kHex, 402525397515032424U}};

// FNV-1a.
uint64_t fingerprintOf(std::string_view text) {
  uint64_t hash = 14695981039346656037U;
  for (const char c : text) hash = (hash ^ static_cast<unsigned char>(c)) * 1099511628211U;
  return hash;
}

// All runs of digits, with the point and the sign that belong to them.
std::vector<std::string_view> numbersIn(std::string_view text) {
  const auto isDigit = [&](size_t i) {
    return i < text.size() && text[i] >= '0' && text[i] <= '9';
  };
  const auto isPartOfNumber = [&](size_t i) {
    if (text[i] == '-') return isDigit(i + 1);
    if (text[i] == '.') return i > 0 && isDigit(i - 1) && isDigit(i + 1);
    return isDigit(i);
  };
  std::vector<std::string_view> numbers;
  for (size_t i = 0; i < text.size(); ++i) {
    const size_t start = i;
    while (i < text.size() && isPartOfNumber(i)) ++i;
    if (i > start) numbers.push_back(text.substr(start, i - start));
  }
  return numbers;
}

TEST(SceneGenerator, SceneTextsStayAsTheyAre) {
  for (const Row& row : kRows) {
    EXPECT_EQ(fingerprintOf(generate(row.content, Syntax::kScene, kBytes).text), row.fingerprint)
        << row.name;
  }
}

TEST(SceneGenerator, SceneTextHasTheObjectsThatAreCounted) {
  for (const Row& row : kRows) {
    const GeneratedText scene = generate(row.content, Syntax::kScene, kBytes);
    const Kelp::Scene read = Kelp::Scene::fromText(scene.text, row.name);
    ASSERT_TRUE(read) << row.name << ": " << read.error().message;
    EXPECT_EQ(static_cast<int64_t>(read.objects().size()), scene.objects) << row.name;
  }
}

TEST(SceneGenerator, JsonHasTheObjectsThatAreCounted) {
  for (const Row& row : kRows) {
    const GeneratedText json = generate(row.content, Syntax::kJson, kBytes);
    rapidjson::Document document;
    document.Parse(json.text.c_str());
    ASSERT_TRUE(document.IsArray()) << row.name;
    EXPECT_EQ(static_cast<int64_t>(document.Size()), json.objects) << row.name;
  }
}

TEST(SceneGenerator, EverySyntaxHasTheSameNumbersInTheSameOrder) {
  for (const Row& row : kRows) {
    const std::string scene = generate(row.content, Syntax::kScene, kBytes).text;
    const std::string json = generate(row.content, Syntax::kJson, kBytes).text;
    const std::string xml = generate(row.content, Syntax::kXml, kBytes).text;
    ASSERT_GT(numbersIn(scene).size(), 100U) << row.name;
    EXPECT_TRUE(numbersIn(scene) == numbersIn(json)) << row.name;
    EXPECT_TRUE(numbersIn(scene) == numbersIn(xml)) << row.name;
  }
}

TEST(SceneGenerator, TextIsLongerThanWantedByLessThanAnObject) {
  for (const Row& row : kRows) {
    const GeneratedText shorter = generate(row.content, Syntax::kScene, kBytes);
    const size_t oneMore = shorter.text.size() + 1;
    EXPECT_GE(shorter.text.size(), kBytes) << row.name;
    EXPECT_EQ(generate(row.content, Syntax::kScene, shorter.text.size()).objects, shorter.objects)
        << row.name;
    EXPECT_EQ(generate(row.content, Syntax::kScene, oneMore).objects, shorter.objects + 1)
        << row.name;
  }
}

}  // namespace
