// One thread at a time may use scenes; which one may change. Under ThreadSanitizer these tests show
// that a join is all the order that needs.
#include <gtest/gtest.h>

#include <exception>
#include <future>
#include <thread>

#include "kelp/scene.h"
#include "tests/support/balance.h"
#include "tests/support/filters.h"
#include "tests/support/richscenes.h"
#include "tests/support/sexpression.h"

using namespace Kelp;
using namespace KelpTest;

namespace {

// Runs `act` on a thread of its own and waits; what it throws is thrown here.
template <class Act>
auto onAnotherThread(Act act) {
  return std::async(std::launch::async, act).get();
}

std::string treesOfRichScenes() {
  std::string trees;
  for (const std::string& text : richScenes()) trees += parsedScene(text) + '\n';
  return trees;
}

std::string richText() {
  std::string text;
  for (const std::string& scene : richScenes()) text += scene + '\n';
  return text;
}

SceneOptions recording() {
  SceneOptions options;
  options.collectReferences = true;
  return options;
}

}  // namespace

TEST(Handover, ASceneReadOnOneThreadIsReleasedOnAnother) {
  const int live = livePoolElements();
  Scene scene = onAnotherThread([] { return Scene::fromText(richText()); });
  ASSERT_TRUE(scene) << scene.error().describe();
  const std::string tree = sexpression(*scene.program());
  onAnotherThread([moved = std::make_shared<Scene>(std::move(scene)), &tree] {
    EXPECT_EQ(sexpression(*moved->program()), tree);
  });
  EXPECT_EQ(livePoolElements(), live);
}

TEST(Handover, ThreadsThatReadInTurnReadTheSame) {
  const std::string here = treesOfRichScenes();
  for (int turn = 0; turn < 8; ++turn) EXPECT_EQ(onAnotherThread(treesOfRichScenes), here);
  EXPECT_EQ(treesOfRichScenes(), here);
}

TEST(Handover, ElementsReturnedOnOneThreadAreTakenOnAnother) {
  onAnotherThread([] {
    Scene filling = Scene::fromText(richText());
    EXPECT_TRUE(filling);
  });
  const int64_t bytes = ObjectAST::pool.bytesAllocated();
  for (int turn = 0; turn < 4; ++turn) {
    onAnotherThread([] { EXPECT_TRUE(Scene::fromText(richText())); });
  }
  EXPECT_EQ(ObjectAST::pool.bytesAllocated(), bytes);
}

TEST(Handover, ASceneIsReadMergedFilteredAndReleasedByFourThreads) {
  const int live = livePoolElements();
  auto first = std::make_unique<Scene>();
  auto second = std::make_unique<Scene>();
  onAnotherThread([&] { *first = Scene::fromText("A a { r = b; } B b {}", recording()); });
  onAnotherThread([&] { *second = Scene::fromText("A a { s = 1; } C c {}"); });
  onAnotherThread([&] { first->program()->mergeProgram(second->program(), 0, 0, nullptr); });
  onAnotherThread([&] {
    FunctionFilter renaming([](const CharString&, CharString& name, void*) {
      name.append("_renamed");
      return 1;
    });
    first->filter(renaming);
  });
  const std::string expected = R"((scene (obj "A" "a_renamed" (= "r" (ref "b_renamed")) (= "s" 1)))"
                               R"( (obj "B" "b_renamed") (obj "C" "c_renamed")))";
  EXPECT_EQ(onAnotherThread([&] { return sexpression(*first->program()); }), expected);
  onAnotherThread([&] { second.reset(); });
  onAnotherThread([&] { first.reset(); });
  EXPECT_EQ(livePoolElements(), live);
}

TEST(Handover, AFailureIsReportedToTheThreadThatAsks) {
  const int live = livePoolElements();
  for (const std::string& text : brokenScenes()) {
    const Scene here = Scene::fromText(text, "broken.scene");
    const Scene there = onAnotherThread([&] { return Scene::fromText(text, "broken.scene"); });
    EXPECT_FALSE(there);
    EXPECT_EQ(there.error().message, here.error().message);
    EXPECT_EQ(there.error().position(), here.error().position());
  }
  EXPECT_EQ(livePoolElements(), live);
}

TEST(Handover, ASyntaxErrorCrossesToAnotherThread) {
  std::exception_ptr thrown;
  std::thread([&] {
    TextParser source("foo(1)");
    try {
      source.started().parseExpression();
    } catch (const InvalidSyntaxException&) {
      thrown = std::current_exception();
    }
  }).join();
  try {
    std::rethrow_exception(thrown);
    FAIL() << "nothing was thrown";
  } catch (const InvalidSyntaxException& error) {
    EXPECT_STREQ(error.message.chars(), "Functor \"foo\" not recognized");
  }
}

TEST(Handover, AnUnreadableSourceCrossesToAnotherThread) {
  EXPECT_THROW(onAnotherThread([] {
                 SourcesReader reader;
                 reader.openFile("/nonexistent/kitchen.scene");
               }),
               InvalidSourceFile);
}

TEST(Handover, ExhaustedMemoryCrossesToAnotherThread) {
  const int live = livePoolElements();
  EXPECT_THROW(onAnotherThread([] {
                 const FailingAllocation failing(20, true);
                 return Scene::fromText(richText());
               }),
               std::bad_alloc);
  EXPECT_EQ(livePoolElements(), live);
  EXPECT_EQ(onAnotherThread(treesOfRichScenes), treesOfRichScenes());
}

TEST(Handover, AParserMadeOnOneThreadParsesOnAnother) {
  TextParser source("A a { x = (((1 + random(0, 1)))); }");
  auto_ast<ProgramAST> program(nullptr);
  onAnotherThread([&] { program.reset(source.parser.parseProgram()); });
  ASSERT_NE(program.get(), nullptr);
  EXPECT_EQ(program->numObjects, 1);
}

TEST(Handover, SeedsGoOnFromThreadToThread) {
  const auto seedsOfThree = [](auto draw) {
    BuiltinFunctionAST::rndGen.reset();
    std::vector<float> seeds;
    for (int i = 0; i < 3; ++i) seeds.push_back(draw());
    return seeds;
  };
  const auto draw = [] {
    const Scene scene = Scene::fromText("A a { x = random(0, 1); }");
    auto* call = dynamic_cast<BuiltinFunctionAST*>(scene.objects()[0].firstProperty->value);
    return call->seed;
  };
  EXPECT_EQ(seedsOfThree([&] { return onAnotherThread(draw); }), seedsOfThree(draw));
}
