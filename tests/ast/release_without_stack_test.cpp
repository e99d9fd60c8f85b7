#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "kelp/ast/release.h"
#include "tests/support/parsing.h"
#include "tests/support/smallstack.h"

using namespace Kelp;
using namespace KelpTest;

namespace {

// One tree with a child in every place that a class has for one.
constexpr const char* kEveryClass =
    "List(1, -2, Vector(3, 4, 5), Color(6, 7, 8), AColor(9, 10, 11, 12),"
    " Matrix(13, Vector(14, 15, 16), 17), Transform(18, 19), 20 + 21 * 22 - (23 - 24),"
    " interpolate((25, 26), (27, 28), (29, List(30, 31))), interpolate((32, 33)),"
    " clamp(34, 35, 36), a.b[37][38 + 39].x, a.b, a::b, c, \"text\", List(),"
    " ListInt(1, 2), ListString(\"x\"), ListFloatHex(\"00\"), TransformHex(\"11\"))";

ExpressionAST* parsed(const std::string& text) {
  TextParser source(text);
  return source.started().parseExpression();
}

// The values of released numbers, last released first: free elements keep their values.
std::vector<double> valuesLastReleased(int number) {
  std::vector<NumberExpressionAST*> taken;
  for (int i = 0; i < number; ++i) {
    taken.push_back(NumberExpressionAST::pool.newElement());
  }
  std::vector<double> values;
  for (int i = 0; i < number; ++i) values.push_back(taken[static_cast<size_t>(i)]->value);
  for (int i = number; i-- > 0;) taken[static_cast<size_t>(i)]->deleteThis();
  return values;
}

class HostNode final : public ExpressionAST {
 public:
  void deleteThis() override { ++released; }
  void visit(Visitor&) override {}
  ExpressionAST* getIth(int) override { return nullptr; }
  int released = 0;
};

}  // namespace

TEST(ReleaseWithoutStack, ReleasesEveryClassInTheOrderOfDeleteThis) {
  constexpr int kNumbers = 40;  // 1 to 39 and the member .x
  parsed(kEveryClass)->deleteThis();
  const std::vector<double> recursive = valuesLastReleased(kNumbers);
  releaseWithoutStack(parsed(kEveryClass));
  EXPECT_EQ(valuesLastReleased(kNumbers), recursive);
  EXPECT_EQ(recursive.back(), 1.0);
}

TEST(ReleaseWithoutStack, LeavesNothingOfAnyClass) {
  const int live = livePoolElements();
  releaseWithoutStack(parsed(kEveryClass));
  EXPECT_EQ(livePoolElements(), live);
}

TEST(ReleaseWithoutStack, NodesOfTheHostReleaseThemselves) {
  HostNode host;
  auto* sum = new BinaryExpressionAST;
  sum->left = NumberExpressionAST::newNumberExpressionAST(1);
  sum->right = &host;
  releaseWithoutStack(sum);
  EXPECT_EQ(host.released, 1);
  releaseWithoutStack(&host);
  EXPECT_EQ(host.released, 2);
}

TEST(ReleaseWithoutStack, DeepTreesAreReleasedOnSmallStacks) {
  struct Form {
    const char* open;
    const char* close;
  };
  const Form forms[] = {{"List(", ")"},
                        {"1+(", ")"},
                        {"-(", ")"},
                        {"abs(", ")"},
                        {"a.b[", "]"},
                        {"a.b[1][", "]"},
                        {"Vector(1,2,", ")"},
                        {"AColor(1,2,3,", ")"},
                        {"Matrix(1,", ",2)"},
                        {"Transform(1,", ")"},
                        {"interpolate((", ",1))"},
                        {"interpolate((1,2),(1,", "))"},
                        {"List(1,", ",2)"},
                        {"select(1,2,3,", ")"}};
  constexpr int kDepth = 10000;
  for (const Form& form : forms) {
    SCOPED_TRACE(form.open);
    std::string text;
    for (int i = 0; i < kDepth; ++i) text += form.open;
    text += '1';
    for (int i = 0; i < kDepth; ++i) text += form.close;
    const int live = livePoolElements();
    ExpressionAST* tree = nullptr;
    runOnStackOf(kHugeStack, [&] { tree = parsed(text); });
    ASSERT_NE(tree, nullptr);
    runOnStackOf(size_t{128} << 10U, [&] { tree->deleteThis(); });
    EXPECT_EQ(livePoolElements(), live);
  }
}
