#include "kelp/writers/linefiller.h"

#include <gtest/gtest.h>

#include <string>

using Kelp::Gap;
using Kelp::LineFiller;

namespace {

constexpr int kInOneBracket = LineFiller::kLevelsOfBracket;

// What becomes of a first piece and a second one of that width behind it.
std::string laidOut(const std::string& firstPiece, size_t width, Gap gap) {
  std::string text;
  LineFiller filler([&text](std::string_view part) { text += part; });
  filler.add(firstPiece);
  filler.add(std::string(width, 'b'), gap, kInOneBracket);
  filler.finish();
  return text;
}

TEST(LineFiller, LineEndsWhereTheNextPieceHasNoRoom) {
  const std::string first(10, 'a');
  EXPECT_EQ(laidOut(first, 89, Gap::kWrap), first + ' ' + std::string(89, 'b') + '\n');
  EXPECT_EQ(laidOut(first, 90, Gap::kWrap), first + "\n    " + std::string(90, 'b') + '\n');
}

TEST(LineFiller, LineThatIsNoLongerThanTheNextOnesIndentDoesNotEnd) {
  ASSERT_EQ(LineFiller::indentWithin(1), 4U);
  for (const size_t width : {1U, 95U, 96U, 97U, 100U, 101U, 300U}) {
    const std::string second(width, 'b');
    EXPECT_EQ(laidOut("aaaa", width, Gap::kWrap), "aaaa " + second + '\n');
    EXPECT_EQ(laidOut("aaa", width, Gap::kWrap), "aaa " + second + '\n');
  }
  const std::string wide(96, 'b');
  EXPECT_EQ(laidOut("aaaaa", 96, Gap::kWrap), "aaaaa\n    " + wide + '\n');
}

}  // namespace
