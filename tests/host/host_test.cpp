// What hosts do to a reader besides reading: threads, forks, other locales and floating-point
// modes, files that change, owners that go in the wrong order.

#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>
#include <xmmintrin.h>

#include <atomic>
#include <cfenv>
#include <clocale>
#include <cstdio>
#include <exception>
#include <filesystem>
#include <fstream>
#include <locale>
#include <memory>
#include <sstream>
#include <string>
#include <thread>

#include "kelp/queries/statistics.h"
#include "kelp/scene.h"
#include "tests/support/figures.h"
#include "tests/support/filters.h"
#include "tests/support/largescenes.h"
#include "tests/support/parsing.h"
#include "tests/support/richscenes.h"
#include "tests/support/sexpression.h"
#include "tests/support/temporaryfiles.h"

using namespace Kelp;
#include "tests/support/written.h"

using namespace KelpTest;

namespace {

std::string listingOf(const ProgramAST& program) { return treeListing(program); }

// Reads every rich and every broken scene with everything a host can do to a program.
std::string useEverything() {
  std::string seen;
  for (const std::string& text : richScenes()) {
    FilteredScene scene(text);
    FilteredScene other(text);
    scene.rename({{"a", "renamed"}});
    other.program->mergeProgram(scene.program.get(), 1, 2, nullptr);
    CharString name("other");
    other.program->updateName(CharString("renamed"), name);
    seen += sexpression(*other.program.get()) + listingOf(*other.program.get());
    seen += std::to_string(countProgram(*other.program.get()).expressionNodes);
  }
  for (const std::string& text : brokenScenes()) {
    std::ostringstream out;
    out << Scene::fromText(text).error();
    seen += out.str();
  }
  return seen;
}

// What useEverything() gives, with random numbers drawn anew.
std::string everythingSeen() {
  BuiltinFunctionAST::rndGen.reset();
  return useEverything();
}

// Runs `act` in a forked process; true when it came to its end and nothing failed in it.
template <class Act>
bool runsInChild(Act act) {
  std::fflush(nullptr);
  const pid_t child = fork();
  if (child == 0) {
    act();
    _exit(testing::Test::HasFailure() ? 1 : 0);
  }
  int status = 0;
  waitpid(child, &status, 0);
  return WIFEXITED(status) && WEXITSTATUS(status) == 0;
}

class Host : public testing::Test {
 protected:
  static void TearDownTestSuite() {
    const int good =
        testing::UnitTest::GetInstance()->current_test_suite()->successful_test_count();
    reportFigure("host", std::to_string(good) +
                             " cases in one process good: fork, files that change, owners that go "
                             "early, threads, floating-point modes, locales");
  }
};

}  // namespace

TEST_F(Host, ForkedInTheMiddleBothGoOn) {
  const int live = livePoolElements();
  auto scene = std::make_unique<Scene>(Scene::fromText(richScenes()[4]));
  const std::string before = sexpression(*scene->program());
  const auto goOn = [&] {
    EXPECT_EQ(sexpression(*scene->program()), before);
    EXPECT_EQ(sexpression(*Scene::fromText(richScenes()[4]).program()), before);
    scene.reset();
    EXPECT_EQ(livePoolElements(), live);
  };
  BuiltinFunctionAST::rndGen.reset();
  Scene::fromText("A a { x = random(0, 1); }");
  EXPECT_TRUE(runsInChild(goOn));
  goOn();
}

TEST_F(Host, ForkedWhileAScannerReadsBothGoOn) {
  const std::string text = richScenes()[4];
  TextParser source(text);
  source.started();
  const auto goOn = [&] {
    const auto_ast<ObjectAST> object(source.parser.parseObject());
    EXPECT_NE(object.get(), nullptr);
  };
  EXPECT_TRUE(runsInChild(goOn));
  goOn();
}

TEST_F(Host, FilesThatShrinkAndGrowWhileTheyAreReadGiveASceneOrAnError) {
  const TemporaryFiles files;
  const std::string text = "A a { x = \"" + std::string(2000000, 's') + "\"; }";
  const std::string path = files.write("changing.scene", text);
  std::atomic<bool> done = false;
  std::thread writer([&] {
    for (size_t i = 0; !done; i = (i + 123457) % text.size()) {
      std::filesystem::resize_file(path, i);
      std::ofstream(path, std::ios::binary | std::ios::in) << text;
    }
  });
  const int live = livePoolElements();
  const int times = hasTimeForAll() ? 2000 : 20;
  for (int i = 0; i < times; ++i) {
    const Scene scene = Scene::fromFile(path);
    EXPECT_TRUE(scene || !scene.error().message.empty());
  }
  done = true;
  writer.join();
  EXPECT_EQ(livePoolElements(), live);
}

TEST_F(Host, FilesMayGoOnceTheyAreRead) {
  const TemporaryFiles files;
  const std::string longText(100000, 's');
  const std::string text =
      "A a { x = \"" + longText + "\"; y = ListIntHex(\"" + longText + "\"); }";
  const std::string path = files.write("shrinking.scene", text);
  const Scene scene = Scene::fromFile(path);
  std::filesystem::resize_file(path, 0);
  ASSERT_TRUE(scene);
  EXPECT_EQ(sexpression(*scene.program()), sexpression(*Scene::fromText(text).program()));
}

TEST_F(Host, MappedFilesMayBeReplacedWhileTheyAreUsed) {
  const TemporaryFiles files;
  const std::string text = "A a { x = \"" + std::string(100000, 's') + "\"; }";
  const std::string path = files.write("mapped.scene", text);
  SceneOptions options;
  options.mapFiles = true;
  const Scene scene = Scene::fromFile(path, options);
  std::filesystem::rename(files.write("new.scene", ""), path);
  ASSERT_TRUE(scene);
  EXPECT_EQ(sexpression(*scene.program()), sexpression(*Scene::fromText(text).program()));
}

TEST_F(Host, ParserScannerAndReaderMayGoBeforeTheProgramIsReleased) {
  const int live = livePoolElements();
  for (const std::string& text : richScenes()) {
    auto scene = std::make_unique<FilteredScene>(text);
    ProgramAST* program = scene->program.release();
    scene.reset();
    program->deleteThis();
  }
  EXPECT_EQ(livePoolElements(), live);
}

TEST_F(Host, TheTextMayGoOnceItIsRead) {
  auto text = std::make_unique<std::string>(richScenes()[4]);
  const std::string expected = parsedScene(*text);
  const Scene scene = Scene::fromText(*text);
  text->assign(text->size(), '!');
  text.reset();
  EXPECT_EQ(sexpression(*scene.program()), expected);
}

TEST_F(Host, AParserUsedAgainAfterAFailureBeginsWithTheOldLookAhead) {
  const std::string good = "A a { x = 1; }";
  TextParser source("A a { x = ; }");
  EXPECT_EQ(source.parser.parseProgram(), nullptr);
  source.reader.openText(good.data(), static_cast<int64_t>(good.size()), nullptr);
  EXPECT_EQ(source.parser.parseProgram(), nullptr);
  EXPECT_STREQ(source.parser.errorInfo.getErrorText().chars(), "Expected identifier");
}

TEST_F(Host, AParserUsedAgainWithoutTheOldLookAheadReadsTheNewText) {
  const int live = livePoolElements();
  for (const std::string& broken : brokenScenes()) {
    TextParser source(broken);
    EXPECT_EQ(source.parser.parseProgram(), nullptr);
    for (const std::string& text : richScenes()) {
      source.reader.openText(text.data(), static_cast<int64_t>(text.size()), nullptr);
      source.parser.lookahead = -1;
      const auto_ast<ProgramAST> program(source.parser.parseProgram());
      EXPECT_NE(program.get(), nullptr) << broken << '\n' << text;
    }
  }
  EXPECT_EQ(livePoolElements(), live);
}

TEST_F(Host, ReadOnOneThreadAndReleasedOnAnother) {
  const int live = livePoolElements();
  for (const std::string& text : richScenes()) {
    const std::string expected = parsedScene(text);
    Scene scene;
    std::thread([&] { scene = Scene::fromText(text); }).join();
    std::thread([&] { EXPECT_EQ(sexpression(*scene.program()), expected); }).join();
    std::thread([&] { scene = Scene(); }).join();
  }
  EXPECT_EQ(livePoolElements(), live);
}

TEST_F(Host, WhatWasThrownOnOneThreadIsCaughtOnAnother) {
  std::exception_ptr thrown;
  std::thread([&] {
    try {
      SourcesReader().openFile("/nothing/here.scene");
    } catch (...) {
      thrown = std::current_exception();
    }
  }).join();
  ASSERT_NE(thrown, nullptr);
  try {
    std::rethrow_exception(thrown);
  } catch (const InvalidSourceFile& failure) {
    const InvalidSourceFile copy = failure;
    thrown = nullptr;
    EXPECT_NE(std::string(copy.message.chars()).find("/nothing/here.scene"), std::string::npos);
  }
}

TEST_F(Host, FloatingPointModesStayAsTheHostSetThem) {
  constexpr unsigned kFlags = 0x3F;          // what has happened, not how to calculate
  constexpr unsigned kFlushToZero = 0x8040;  // both kinds
  const unsigned before = _mm_getcsr();
  for (const int rounding : {FE_TONEAREST, FE_UPWARD, FE_DOWNWARD, FE_TOWARDZERO}) {
    for (const unsigned extra : {0U, kFlushToZero}) {
      std::fesetround(rounding);
      _mm_setcsr(_mm_getcsr() | extra);
      const unsigned set = _mm_getcsr() & ~kFlags;
      useEverything();
      EXPECT_EQ(_mm_getcsr() & ~kFlags, set);
      EXPECT_EQ(std::fegetround(), rounding);
      std::fesetround(FE_TONEAREST);
      _mm_setcsr(before);
    }
  }
}

TEST_F(Host, LocalesChangeNothing) {
  class Commas final : public std::numpunct<char> {
    char do_decimal_point() const override { return ','; }
    char do_thousands_sep() const override { return '.'; }
    std::string do_grouping() const override { return "\1"; }
  };
  const std::string deep = "A a { x = " + repeated("-(", 2000) + "1" + repeated(")", 2000) + "; }";
  const auto seen = [&deep] {
    return everythingSeen() + listingOf(*Scene::fromText(deep).program());
  };
  const std::string expected = seen();
  const std::locale before = std::locale::global(std::locale(std::locale(), new Commas));
  EXPECT_EQ(seen(), expected);
  std::locale::global(before);
  // Those of the system, as far as they are installed.
  for (const char* name : {"de_DE.UTF-8", "fr_FR.UTF-8", "tr_TR.UTF-8", "C.UTF-8"}) {
    if (std::setlocale(LC_ALL, name) == nullptr) continue;
    EXPECT_EQ(seen(), expected) << name;
  }
  std::setlocale(LC_ALL, "C");
}
