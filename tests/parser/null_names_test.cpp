// Objects without a name, in every operation that looks for names.
#include <gtest/gtest.h>

#include "tests/support/balance.h"
#include "tests/support/filters.h"
#include "tests/support/programs.h"

using namespace Kelp;
using namespace KelpTest;

namespace {

constexpr int kObjects = 40;  // the maps grow on the way

// Objects that a host has built: of every kind of missing and empty type and name.
ProgramAST* programWithoutNames() {
  auto* program = new ProgramAST;
  for (const char* type : {"T", "", static_cast<const char*>(nullptr)}) {
    for (const char* name : {"n", "", static_cast<const char*>(nullptr)}) add(program, type, name);
  }
  for (int i = 0; i < kObjects; ++i) add(program, std::to_string(i).c_str(), nullptr);
  return program;
}

void filterAll(ProgramAST* program, FunctionFilter::Function accept) {
  TextParser host("");
  FunctionFilter filter(std::move(accept));
  host.parser.doFilter(program, &filter);
}

TEST(NullNames, EveryPairIsAnObjectOfItsOwn) {
  auto_ast<ProgramAST> program(programWithoutNames());
  EXPECT_EQ(program->numObjects, 9 + kObjects);
  EXPECT_EQ(program->getObject(""), program->getObject(""));
  EXPECT_NE(program->getObject(""), nullptr);
  EXPECT_EQ(program->getObject(nullptr), nullptr);
  // Only the first object of a key is met again; a missing text shares the key of the empty one.
  constexpr int kNotMet = 1 + 1 + 3;  // of type T, of name n, of neither
  auto_ast<ProgramAST> other(programWithoutNames());
  Table<ObjectAST*, 100> merged;
  program->mergeProgram(other.get(), 0, 0, &merged);
  EXPECT_EQ(merged.count, 9 + kObjects - kNotMet);
}

TEST(NullNames, FilterGivesNamesToObjectsWithoutOne) {
  expectBalanced([] {
    auto_ast<ProgramAST> program(programWithoutNames());
    int given = 0;
    filterAll(program.get(), [&](const CharString&, CharString& name, void*) {
      name = ("given" + std::to_string(given++)).c_str();
      return 1;
    });
    EXPECT_EQ(given, 9 + kObjects);
    // One entry each stood for "n", "" and the missing name; they went along with the first
    // renamed.
    EXPECT_EQ(program->namedObjects.count, 3);
    for (ObjectAST* o = program->firstObject; o != nullptr; o = o->next) {
      EXPECT_FALSE(o->name.isNull());
    }
  });
}

TEST(NullNames, FilterTakesEveryNameAway) {
  expectBalanced([] {
    auto_ast<ProgramAST> program(new ProgramAST);
    for (int i = 0; i < kObjects; ++i) add(program.get(), "T", std::to_string(i).c_str());
    filterAll(program.get(), [](const CharString&, CharString& name, void*) {
      name.freeMem();
      return 1;
    });
    EXPECT_EQ(program->namedObjects.count, 1);
    EXPECT_EQ(program->namedObjects.find(nullptr)->value, program->firstObject);
    for (int i = 0; i < kObjects; ++i) {
      EXPECT_EQ(program->getObject(std::to_string(i).c_str()), nullptr);
    }
    // Every one of them still has a place for its type and its old name.
    EXPECT_EQ(program->typedObjects.count, kObjects);
    add(program.get(), "T", "0");
    EXPECT_NE(program->getObject("0"), nullptr);
  });
}

TEST(NullNames, UpdateNameToAndFromTheMissingOne) {
  auto_ast<ProgramAST> program(programWithoutNames());
  const ObjectAST* unnamed = program->namedObjects.find(nullptr)->value;
  CharString newName("named");
  program->updateName(CharString(), newName);
  EXPECT_EQ(program->getObject("named"), unnamed);
  EXPECT_EQ(program->namedObjects.find(nullptr), nullptr);
  CharString missing;
  program->updateName(CharString("named"), missing);
  EXPECT_EQ(program->namedObjects.find(nullptr)->value, unnamed);
  for (int i = 0; i < 100; ++i) add(program.get(), "More", std::to_string(i).c_str());
  EXPECT_EQ(program->namedObjects.find(nullptr)->value, unnamed);
}

}  // namespace
