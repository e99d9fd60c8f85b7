#include "kelp/ast/treetext.h"

#include <gtest/gtest.h>

#include <string>

#include "kelp/writers/workstack.h"

TEST(LeadingCharacter, LengthOfWellFormedCharactersZeroForOthers) {
  const struct {
    std::string_view text;
    size_t length;
  } rows[] = {
      {"", 0},
      {"ab", 1},
      {std::string_view("\0", 1), 1},
      {"\x7F", 1},
      {"\x80", 0},
      {"\xC1\xBF", 0},
      {"\xC2\x80x", 2},
      {"\xC2", 0},
      {"\xC2x", 0},
      {"\xDF\xBF", 2},
      {"\xE0\x9F\xBF", 0},
      {"\xE0\xA0\x80", 3},
      {"\xE2\x82", 0},
      {"\xE2\x82x", 0},
      {"\xED\x9F\xBF", 3},
      {"\xED\xA0\x80", 0},
      {"\xEF\xBF\xBF", 3},
      {"\xF0\x8F\xBF\xBF", 0},
      {"\xF0\x90\x80\x80", 4},
      {"\xF4\x8F\xBF\xBF", 4},
      {"\xF4\x90\x80\x80", 0},
      {"\xF5\x80\x80\x80", 0},
      {"\xF1\x80\x80", 0},
      {"\xFF", 0},
  };
  for (const auto& row : rows) {
    EXPECT_EQ(Kelp::leadingCharacter(row.text), row.length) << testing::PrintToString(row.text);
  }
}

TEST(WorkStack, StepsAddedByAStepFollowItInTheirOrder) {
  Kelp::WorkStack<int> steps;
  steps.add(1);
  steps.add(2);
  std::string order;
  const auto perform = [&](int step) {
    order += std::to_string(step) + ' ';
    if (step == 1) {
      for (const int next : {10, 11}) steps.add(next);
    }
    if (step == 10) {
      for (const int next : {100, 101, 102}) steps.add(next);
    }
  };
  steps.run(perform);
  EXPECT_EQ(order, "1 10 100 101 102 11 2 ");
  steps.add(3);
  steps.add(4);
  steps.run(perform);
  EXPECT_EQ(order, "1 10 100 101 102 11 2 3 4 ");
}
