// Builtin calls by a table of functions that claims what no call can hold.
#include <gtest/gtest.h>

#include <climits>

#include "tests/support/balance.h"
#include "tests/support/trees.h"

using namespace Kelp;
using namespace KelpTest;

namespace {

// The call as a function of that many arguments reads it; null and the error's text otherwise.
struct ClaimedCall {
  ClaimedCall(std::string_view text, int numArgs) : source(text) {
    try {
      node.reset(source.started()._parseBuiltinCall(23, numArgs));
    } catch (const InvalidSyntaxException& failure) {
      error = failure.message.chars();
    }
  }
  TextParser source;
  auto_ast<ExpressionAST> node{nullptr};
  std::string error;
};

constexpr const char* kNotClosed = "Expected \")\" to close function call";

}  // namespace

TEST(HostileFunctions, MoreArgumentsThanACallHoldsAreNotRead) {
  for (const int claimed : {4, 5, 6, 1000, INT_MAX}) {
    expectBalanced([claimed] {
      const ClaimedCall fitting("f(1, 2, 3, 4)", claimed);
      ASSERT_NE(fitting.node.get(), nullptr) << fitting.error;
      const auto& call = as<BuiltinFunctionAST>(fitting.node.get());
      EXPECT_EQ(call.numArgs, 4);
      EXPECT_EQ(call.funcID, 23);
      EXPECT_EQ(as<NumberExpressionAST>(call.args[3]).value, 4);
      EXPECT_EQ(ClaimedCall("f(1, 2, 3, 4, 5)", claimed).error, kNotClosed);
      EXPECT_EQ(ClaimedCall("f(1, 2, 3, 4, 5, 6, 7, 8)", claimed).error, kNotClosed);
    });
  }
}

TEST(HostileFunctions, FewerThanNoneAreNone) {
  for (const int claimed : {0, -1, INT_MIN}) {
    expectBalanced([claimed] {
      const ClaimedCall empty("f()", claimed);
      ASSERT_NE(empty.node.get(), nullptr) << empty.error;
      EXPECT_EQ(as<BuiltinFunctionAST>(empty.node.get()).numArgs, 0);
      EXPECT_EQ(ClaimedCall("f(1)", claimed).error, kNotClosed);
    });
  }
}
