#include "kelp/parser/nearestcall.h"

#include <gtest/gtest.h>

#include <string>

#include "kelp/parser/messages.h"

TEST(NearestCall, IsOneOrTwoEditsAway) {
  const struct {
    const char* word;
    const char* expected;
  } rows[] = {
      {"Vectr", "Vector"},
      {"Vecotr", "Vector"},
      {"vector", "Vector"},
      {"VECTOR", "Vector"},
      {"Vectorr", "Vector"},
      {"Vekctorr", "Vector"},
      {"Vek_torr", ""},
      {"ListVectors", "ListVector"},
      {"ListIntHx", "ListIntHex"},
      {"Colour", "Color"},
      {"Acolor", "AColor"},
      {"sine", "sin"},
      {"sn", "sin"},
      {"isn", "sin"},
      {"sqr", "sqrt"},
      {"smothstep", "smoothstep"},
      {"interpolation", ""},
      {"interpolat", "interpolate"},
      {"normalise", "normalize"},
      {"randomint", "randomInt"},
      {"foo", ""},
      {"x", ""},
      {"", ""},
      {"TransformHexxx", "TransformHex"},
      {"aaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaa", ""},
  };
  for (const auto& row : rows) EXPECT_EQ(Kelp::nearestCall(row.word), row.expected) << row.word;
}

TEST(NearestCall, TakesTheNearestOfSeveral) {
  EXPECT_EQ(Kelp::nearestCall("atan3"), "atan");
  EXPECT_EQ(Kelp::nearestCall("ListColorHe"), "ListColorHex");
}

TEST(WordIn, FindsWhatWasPutIn) {
  using Kelp::Message;
  const auto text = [](Message message, const char* word) {
    return std::string(Kelp::messageText(message, word).chars());
  };
  const std::string unknown = text(Message::kUnknownFunctor, "foo");
  EXPECT_EQ(Kelp::wordIn(unknown, Message::kUnknownFunctor), "foo");
  EXPECT_EQ(Kelp::wordIn(unknown, Message::kNotAToken).data(), nullptr);
  EXPECT_EQ(Kelp::wordIn(text(Message::kUnknownFunctor, ""), Message::kUnknownFunctor), "");
  EXPECT_EQ(Kelp::wordIn(text(Message::kNotAToken, "foo"), Message::kUnknownFunctor).data(),
            nullptr);
  EXPECT_EQ(Kelp::wordIn("Functor \" not recognized", Message::kUnknownFunctor).data(), nullptr);
  EXPECT_EQ(Kelp::wordIn("", Message::kUnknownFunctor).data(), nullptr);
}
