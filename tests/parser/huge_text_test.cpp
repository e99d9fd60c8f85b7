// Texts of more characters than an int counts: refused or recorded whole, never with a wrong
// length.
#include <gtest/gtest.h>

#include <climits>
#include <cstdint>

#include "tests/support/figures.h"
#include "tests/support/trees.h"

using namespace Kelp;
using namespace KelpTest;

namespace {

// What becomes of a scene whose one value holds that many characters between quotes.
struct HugeScene {
  HugeScene(const std::string& before, size_t characters, const std::string& behind) {
    std::string text = "A a { x = " + before + "\"";
    text.append(characters, '7');
    text += "\"" + behind + "; }";
    reader.limits.maxStringLength = INT64_MAX;  // by default the reader takes no such text
    reader.openText(text.data(), static_cast<int64_t>(text.size()), "scenes/test.scene");
    std::string().swap(text);
    try {
      program.reset(parser.parseProgram());
    } catch (const std::bad_alloc&) {
    }
  }
  ExpressionAST* value() { return program.get()->getObject("a")->firstProperty->value; }

  SourcesReader reader;
  Scanner scanner{&reader};
  TreeParser parser{&scanner};
  auto_ast<ProgramAST> program{nullptr};
};

// Everyday runs stay far below the limit: the texts take gigabytes.
const size_t kBase = hasTimeForAll() ? size_t{INT_MAX} : size_t{1} << 20U;

}  // namespace

TEST(HugeText, HexadecimalTextIsRecordedWhole) {
  HugeScene scene("ListIntHex(", kBase + 1000, ")");
  ASSERT_NE(scene.program.get(), nullptr);
  const auto& list = as<ListTypeExpressionAST<int>>(scene.value());
  EXPECT_EQ(list.textRef[1], kBase + 1000);
  EXPECT_EQ(list.textLength, 0);
}

TEST(HugeText, StringIsRecordedWholeOrRefused) {
  const int live = livePoolElements();
  {
    HugeScene scene("", kBase + 1000, "");
    if (hasTimeForAll()) {
      EXPECT_EQ(scene.program.get(), nullptr);
    } else {
      ASSERT_NE(scene.program.get(), nullptr);
      const auto& string = as<StringExpressionAST>(scene.value());
      EXPECT_EQ(string.span[1], kBase + 1000);
      EXPECT_EQ(string.spanLength, static_cast<int32_t>(kBase + 1000));
    }
  }
  EXPECT_EQ(livePoolElements(), live);
}

TEST(HugeText, LongestStringThatIsTakenHasItsLength) {
  const size_t length = kBase - 1000;
  HugeScene scene("", length, "");
  ASSERT_NE(scene.program.get(), nullptr);
  const auto& string = as<StringExpressionAST>(scene.value());
  EXPECT_EQ(string.span[1], length);
  EXPECT_EQ(string.spanLength, static_cast<int32_t>(length));
  EXPECT_GT(string.spanLength, 0);
}

TEST(HugeText, ColumnBehindItIsTheLastThatAnIntCounts) {
  HugeScene scene("ListIntHex(", kBase + 1000, ") nonsense");
  EXPECT_EQ(scene.program.get(), nullptr);
  // In front of the quotes and behind the text there are a few characters more.
  const int column = scene.scanner.locate(1).column;
  if (hasTimeForAll()) {
    EXPECT_EQ(column, INT_MAX);
  } else {
    EXPECT_EQ(column, static_cast<int>(kBase) + 1000 + 26);
  }
}
