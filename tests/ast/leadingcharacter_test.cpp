// Both ends of every range that a character's bytes may lie in.
#include <gtest/gtest.h>

#include <string>

#include "kelp/ast/treetext.h"

using Kelp::leadingCharacter;

namespace {

struct Range {
  size_t length;
  int firstFrom, firstTo;
  int secondFrom, secondTo;
};

std::string character(const Range& range, int first, int second, char later) {
  std::string text{static_cast<char>(first), static_cast<char>(second)};
  text.append(range.length - 2, later);
  return text;
}

}  // namespace

TEST(LeadingCharacter, EndsOfAllRanges) {
  for (const Range& range : {Range{2, 0xC2, 0xDF, 0x80, 0xBF}, Range{3, 0xE0, 0xE0, 0xA0, 0xBF},
                             Range{3, 0xE1, 0xEC, 0x80, 0xBF}, Range{3, 0xED, 0xED, 0x80, 0x9F},
                             Range{3, 0xEE, 0xEF, 0x80, 0xBF}, Range{4, 0xF0, 0xF0, 0x90, 0xBF},
                             Range{4, 0xF1, 0xF3, 0x80, 0xBF}, Range{4, 0xF4, 0xF4, 0x80, 0x8F}}) {
    for (const int first : {range.firstFrom, range.firstTo}) {
      SCOPED_TRACE(first);
      for (const char later : {'\x80', '\xBF'}) {
        const std::string lowest = character(range, first, range.secondFrom, later);
        const std::string highest = character(range, first, range.secondTo, later);
        EXPECT_EQ(leadingCharacter(lowest), range.length);
        EXPECT_EQ(leadingCharacter(highest), range.length);
        EXPECT_EQ(leadingCharacter(lowest + "\x80"), range.length);
        EXPECT_EQ(leadingCharacter(character(range, first, range.secondFrom - 1, later)), 0U);
        EXPECT_EQ(leadingCharacter(character(range, first, range.secondTo + 1, later)), 0U);
        EXPECT_EQ(leadingCharacter(lowest.substr(0, range.length - 1)), 0U);
      }
    }
  }
}

TEST(LeadingCharacter, LaterBytesThatContinueNothing) {
  for (const char* text : {"\xE1\x80\x7F", "\xE1\x80\xC0", "\xF1\x80\x7F\x80", "\xF1\x80\xC0\x80",
                           "\xF1\x80\x80\x7F", "\xF1\x80\x80\xC0"}) {
    EXPECT_EQ(leadingCharacter(text), 0U) << testing::PrintToString(text);
  }
}

TEST(LeadingCharacter, FirstBytesOfOneAndOfNone) {
  for (const char* text : {"\x01", "\x7F", "a\x80"}) EXPECT_EQ(leadingCharacter(text), 1U);
  for (const char* text : {"\x80\x80", "\xBF\x80", "\xC1\x80", "\xF5\x80\x80\x80", "\xFF\x80"}) {
    EXPECT_EQ(leadingCharacter(text), 0U);
  }
}
