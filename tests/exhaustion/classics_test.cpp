// Defects that parsers of this kind have had when memory ran out, one by one.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "tests/exhaustion/heldelements.h"
#include "tests/exhaustion/parsing.h"
#include "tests/support/failures.h"
#include "tests/support/filters.h"
#include "tests/support/richscenes.h"
#include "tests/support/sexpression.h"

using namespace Kelp;
using namespace KelpTest;

namespace {

template <class Act>
int64_t requestsOf(const Act& act) {
  const int64_t before = allocationCount();
  act();
  return allocationCount() - before;
}

std::string namedTimes(const std::string& piece, int count) {
  std::string text;
  for (int i = 0; i < count; ++i) text += piece;
  return text;
}

}  // namespace

// Left operands, negations and components were lost when the node that was to hold them failed.
TEST(HalfBuilt, SumOfEveryKindIsReleasedAtEveryPoint) {
  const SurplusNodes surplus;
  const std::string sum = "1+2*-Vector(a.b[1],c,2)";
  const Workload parse = parsesOf({{"sum.scene", "A a { x = " + sum + "; }"}}).front();
  EXPECT_GT(failEveryRequest(parse, {1000}).failures, 10);
  EXPECT_GT(failEveryElement(parse).failures, 10);
}

// The node died while the table already pointed into it.
TEST(RecordedReferences, NodeWhoseNameCannotBeRecordedIsReleased) {
  for (const std::string reference : {"b", "b.c", "b::c", "b.c[1].x"}) {
    // The hundred names before it fill the table's first array.
    const std::string full = "A a { x = List(d" + namedTimes(", d", 98) + ", ";
    parsedScene(full + reference + "); }");
    const int live = livePoolElements();
    CharString earlier("earlier");
    int64_t failures = 0;
    bool failed = true;
    for (int64_t n = 1; failed; ++n) {
      TextParser source(full + reference + "); }");
      source.parser.collectReferenceNames = 1;
      source.parser.referenceNames += &earlier;
      auto_ast<ProgramAST> program(nullptr);
      failed = runsOutOfMemory(n, [&] { program.reset(source.parser.parseProgram()); });
      EXPECT_EQ(source.parser.referenceNames.count, failed ? 1 : 101) << reference << ' ' << n;
      if (!failed) {
        EXPECT_EQ(source.parser.referenceNames.capacity, 200);
        break;
      }
      EXPECT_EQ(livePoolElements(), live) << reference << ' ' << n;
      ++failures;
    }
    EXPECT_GT(failures, 3);
  }
}

// The nodes of a merged object live on in the older one, and so do the names recorded in them.
TEST(RecordedReferences, OfAMergedObjectFollowARename) {
  FilteredScene scene("A b {} A a { x = 1; } A a { x = b; y = b.c; z = b::d; w = b.c[1]; }");
  EXPECT_EQ(scene.program->numObjects, 2);
  scene.rename({{"b", "n"}});
  EXPECT_EQ(scene.references(), (std::vector<std::string>{"n", "n", "n", "n"}));
  EXPECT_STREQ(as<ObjectReferenceAST>(scene.object("a").findProperty("x")->value).name.chars(),
               "n");
}

// The table pointed into a program that had failed, and the next parse's filter wrote there.
TEST(RecordedReferences, OfAFailedParseAreNotRenamed) {
  TextParser source("A a { x = b; y = c");
  source.parser.collectReferenceNames = 1;
  EXPECT_EQ(source.parser.parseProgram(), nullptr);
  const std::string good = "A b {} A d { x = b; }";
  source.reader.openText(good.data(), static_cast<int64_t>(good.size()), "good.scene");
  source.parser.lookahead = -1;
  const auto_ast<ProgramAST> program(source.parser.parseProgram());
  ASSERT_NE(program.get(), nullptr);
  FunctionFilter renaming([](const CharString&, CharString& name, void*) {
    name = "n";
    return 1;
  });
  source.parser.doFilter(program.get(), &renaming);
  ASSERT_EQ(source.parser.referenceNames.count, 1);
  EXPECT_STREQ(source.parser.referenceNames.data[0]->chars(), "n");
}

// The program was no longer guarded when its error was written down.
TEST(FailureRecord, ThatCannotBeMadeReleasesTheProgramAndStaysEmpty) {
  for (const std::string& scene : brokenScenes()) {
    const auto parse = [](TextParser& source) {
      source.parser.collectReferenceNames = 1;
      EXPECT_EQ(source.parser.parseProgram(), nullptr);
    };
    TextParser unharmed(scene);
    parse(unharmed);
    TextParser counted(scene);
    const int64_t requests = requestsOf([&] { parse(counted); });
    const int live = livePoolElements();
    for (const bool persistent : {false, true}) {
      TextParser source(scene);
      // A long text takes two requests, of which the last one fails.
      EXPECT_TRUE(runsOutOfMemory(
          requests, [&] { parse(source); }, persistent))
          << scene;
      EXPECT_TRUE(source.parser.errorInfo.getErrorText().isNull());
      EXPECT_EQ(source.parser.errorInfo.getErrorLine(), 0);
      EXPECT_EQ(source.parser.referenceNames.count, 0);
      EXPECT_EQ(livePoolElements(), live);
    }
  }
}

// The value had left its guard when the pool of properties turned out to be empty.
TEST(Property, WhoseNodeIsRefusedReleasesItsValue) {
  const char* text = "x = List(a, -b.c, \"text\") + 1;";
  {
    TextParser unharmed(text);
    const auto_ast<PropertyAST> property(unharmed.started().parseProperty());
  }
  TextParser source(text);
  source.started();
  FreeElements<PropertyAST>::findRefusals();
  const int live = livePoolElements();
  const int properties = PropertyAST::pool.liveCount();
  {
    const HeldElements<PropertyAST> held(FreeElements<PropertyAST>::count());
    const RefusedBlocks refused([] { return true; });
    EXPECT_THROW(source.parser.parseProperty(), ExceptionMsg);
  }
  FreeElements<PropertyAST>::noteRefusal();
  EXPECT_EQ(PropertyAST::pool.liveCount(), properties + 1) << "another pool was empty";
  EXPECT_EQ(livePoolElements(), live + 1);
}

// The elements' array comes last of all; what was collected for it must not reach the next list.
TEST(TypedList, WhoseArrayIsRefusedLeavesNothingForTheNextOne) {
  for (const std::string list :
       {"ListInt(1, 2, 3)", "ListFloat(1, 2, 3)", "ListVector(Vector(1, 2, 3), Vector(4, 5, 6))",
        "ListColor(Color(1, 2, 3))", "ListString(\"a\", \"b\")"}) {
    const std::string expected = parsedExpression(list);
    TextParser source(list);
    const auto parseAgain = [&] {
      source.reader.openText(list.data(), static_cast<int64_t>(list.size()), "list.scene");
      source.parser.lookahead = -1;
      source.started();
    };
    const auto_ast<ExpressionAST> first(source.started().parseExpression());
    parseAgain();
    const int64_t before = allocationCount();
    const auto_ast<ExpressionAST> second(source.parser.parseExpression());
    const int64_t requests = allocationCount() - before;
    parseAgain();
    const int64_t live = liveAllocations();
    EXPECT_TRUE(runsOutOfMemory(requests, [&] { source.parser.parseExpression(); })) << list;
    EXPECT_EQ(liveAllocations(), live) << list;
    parseAgain();
    const auto_ast<ExpressionAST> last(source.parser.parseExpression());
    EXPECT_EQ(sexpression(last.get()), expected);
  }
}
