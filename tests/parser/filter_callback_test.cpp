// Filters that call back into the program they run over.
#include <gtest/gtest.h>

#include "tests/support/balance.h"
#include "tests/support/filters.h"
#include "tests/support/programs.h"
#include "tests/support/sexpression.h"

using namespace Kelp;
using namespace KelpTest;

namespace {

constexpr const char* kScene = "A n { x = o; } A o { y = n; } B p { z = n.x; }";

// What the call is refused with, "" when it is not.
template <class Call>
std::string refusalOf(const Call& call) {
  try {
    call();
  } catch (const ExceptionMsg& refusal) {
    return refusal.what();
  }
  return "";
}

std::string expectedRefusal(const std::string& operation) {
  return "[ProgramAST] " + operation + ": a filter is running over the program";
}

using CallBack = std::function<void(FilteredScene&)>;

// Filters the scene and renames all of it; every step of the run makes the call, which is refused.
// The run goes on as if nothing had been.
void expectRefused(const std::string& operation, const CallBack& callBack) {
  FilteredScene plain(kScene);
  plain.rename({{"n", "n2"}, {"o", "o2"}});
  const std::string expected = sexpression(*plain.program.get());
  expectBalanced([&] {
    FilteredScene scene(kScene);
    int refused = 0;
    FunctionFilter filter([&](const CharString&, CharString& name, void*) {
      if (refusalOf([&] { callBack(scene); }) == expectedRefusal(operation)) ++refused;
      if (name == CharString("n") || name == CharString("o")) {
        name = (std::string(name.chars()) + "2").c_str();
      }
      return 1;
    });
    scene.filter(filter);
    EXPECT_EQ(refused, 3);
    EXPECT_EQ(scene.program->numObjects, 3);
    EXPECT_EQ(sexpression(*scene.program.get()), expected);
    EXPECT_NE(scene.program->getObject("n2"), nullptr);
    EXPECT_EQ(scene.references(), (std::vector<std::string>{"o2", "n2", "n2"}));
    // The run is over: the same call is welcome.
    EXPECT_EQ(refusalOf([&] { callBack(scene); }), "");
  });
}

void addOne(FilteredScene& scene) {
  auto_ast<ObjectAST> newcomer(object("A", "newcomer"));
  scene.program->addObject(newcomer.get(), 0, 0, nullptr);
  newcomer.release();
}

void addOneThatIsThere(FilteredScene& scene) {
  auto_ast<ObjectAST> newcomer(object("B", "p"));
  newcomer->addProperty(property("more", number(1)), 0, 0);
  scene.program->addObject(newcomer.get(), 0, 0, nullptr);
  newcomer.release();
}

void mergeAnotherIn(FilteredScene& scene) {
  auto_ast<ProgramAST> other(new ProgramAST);
  add(other.get(), "A", "newcomer");
  scene.program->mergeProgram(other.get(), 0, 0, nullptr);
}

void mergeIntoAnother(FilteredScene& scene) {
  auto_ast<ProgramAST> other(new ProgramAST);
  other->mergeProgram(scene.program.get(), 0, 0, nullptr);
}

void updateAName(FilteredScene& scene) {
  CharString newName("another");
  scene.program->updateName(CharString("p"), newName);
}

void filterAgain(FilteredScene& scene) {
  FunctionFilter reject([](const CharString&, CharString&, void*) { return 0; });
  scene.filter(reject);
}

}  // namespace

TEST(FilterCallback, AddingIsRefused) {
  expectRefused("addObject", addOne);
  expectRefused("addObject", addOneThatIsThere);
}

TEST(FilterCallback, MergingInEitherDirectionIsRefused) {
  expectRefused("mergeProgram", mergeAnotherIn);
  expectRefused("mergeProgram", mergeIntoAnother);
}

TEST(FilterCallback, RenamingIsRefused) { expectRefused("updateName", updateAName); }

TEST(FilterCallback, FilteringIsRefused) { expectRefused("doFilter", filterAgain); }

TEST(FilterCallback, RefusalThatTheFilterLetsPassEndsTheRun) {
  expectBalanced([] {
    FilteredScene scene(kScene);
    int seen = 0;
    FunctionFilter filter([&](const CharString&, CharString&, void*) {
      if (++seen == 2) addOne(scene);
      return 0;
    });
    EXPECT_EQ(refusalOf([&] { scene.filter(filter); }), expectedRefusal("addObject"));
    EXPECT_EQ(seen, 2);
    EXPECT_EQ(scene.object("p").filteredOut, 1);
    EXPECT_EQ(scene.object("n").filteredOut, 0);
    EXPECT_EQ(refusalOf([&] { addOne(scene); }), "");
  });
}

TEST(FilterCallback, ReleaseWaitsForTheEndOfTheRun) {
  expectBalanced([] {
    FilteredScene scene(kScene);
    const int live = ObjectAST::pool.liveCount();
    int seen = 0;
    FunctionFilter filter([&](const CharString&, CharString& name, void*) {
      ++seen;
      scene.program->deleteThis();
      EXPECT_EQ(ObjectAST::pool.liveCount(), live);
      name = (std::string("a name long enough for the heap of its own ") + name.chars()).c_str();
      return 0;
    });
    scene.filter(filter);
    scene.program.release();
    EXPECT_EQ(seen, 3);
    EXPECT_EQ(ObjectAST::pool.liveCount(), live - 3);
  });
}

TEST(FilterCallback, ReleaseWaitsForAnEndByAnExceptionToo) {
  expectBalanced([] {
    FilteredScene scene(kScene);
    const int live = ObjectAST::pool.liveCount();
    FunctionFilter filter([&](const CharString&, CharString&, void*) -> int {
      scene.program->deleteThis();
      throw 5;
    });
    EXPECT_THROW(scene.filter(filter), int);
    scene.program.release();
    EXPECT_EQ(ObjectAST::pool.liveCount(), live - 3);
  });
}

TEST(FilterCallback, LookingAndOtherProgramsAreFree) {
  expectBalanced([] {
    FilteredScene scene(kScene);
    FilteredScene other(kScene);
    FunctionFilter filter([&](const CharString&, CharString& name, void*) {
      EXPECT_NE(scene.program->getObject("n"), nullptr);
      EXPECT_FALSE(sexpression(*scene.program.get()).empty());
      scene.program->mergeProgram(scene.program.get(), 0, 0, nullptr);
      scene.source.parser.doFilter(scene.program.get(), nullptr);
      addOne(other);
      filterAgain(other);
      other.rename({{"n", "m"}});
      EXPECT_EQ(parsedScene("B b {}"), "(scene (obj \"B\" \"b\"))");
      EXPECT_FALSE(name.isNull());
      return 1;
    });
    scene.filter(filter);
    EXPECT_EQ(other.program->numObjects, 4);
    EXPECT_NE(other.program->getObject("m"), nullptr);
  });
}
