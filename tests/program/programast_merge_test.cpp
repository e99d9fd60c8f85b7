// Merging programs and moving names.
#include <gtest/gtest.h>

#include <string>

#include "kelp/ast/auto_ast.h"
#include "kelp/program/programast.h"
#include "tests/support/nodes.h"
#include "tests/support/parsing.h"
#include "tests/support/programs.h"

using namespace Kelp;
using KelpTest::add;
using KelpTest::listOf;
using KelpTest::livePoolElements;
using KelpTest::object;

namespace {

TEST(MergeProgram, HandsTheNewestOverFirstAndLeavesTheSourceEmpty) {
  const int live = livePoolElements();
  {
    const auto_ast<ProgramAST> target(new ProgramAST);
    const auto_ast<ProgramAST> source(new ProgramAST);
    add(target.get(), "P", "w");
    for (const char* name : {"x", "y", "z"}) add(source.get(), "P", name);
    target->mergeProgram(source.get(), 1, 2, nullptr);
    EXPECT_EQ(listOf(*target.get()), "x y z w ");
    EXPECT_EQ(target->numObjects, 4);
    for (const char* name : {"w", "x", "y", "z"}) EXPECT_NE(target->getObject(name), nullptr);
    EXPECT_EQ(listOf(*source.get()), "");
    EXPECT_EQ(source->numObjects, 0);
    EXPECT_EQ(source->getObject("x"), nullptr);
    EXPECT_EQ(source->typedObjects.count, 0);
    EXPECT_EQ(source->namedObjects.count, 0);
    EXPECT_EQ(source->typedObjects.buckets.count, 13);
    EXPECT_EQ(source->typedObjects.keyBufferSize, 0);
    add(source.get(), "P", "again");
    EXPECT_NE(source->getObject("again"), nullptr);
  }
  EXPECT_EQ(livePoolElements(), live);
}

TEST(AddObject, ReportsAMergeWhenTheNewcomerIsGone) {
  struct Newcomer : ObjectAST {
    void deleteThis() override {
      EXPECT_EQ(firstProperty, nullptr);  // merged by then
      reportedBefore = report->count;
      type.freeMem();
      name.freeMem();
    }
    const Table<ObjectAST*, 100>* report = nullptr;
    int reportedBefore = -1;
  } newcomer;
  const auto_ast<ProgramAST> program(new ProgramAST);
  ObjectAST* a = add(program.get(), "P", "a");
  Table<ObjectAST*, 100> merged;
  newcomer.report = &merged;
  newcomer.type = "P";
  newcomer.name = "a";
  newcomer.addProperty(KelpTest::property("x", KelpTest::number(1)), 0, 0);
  program->addObject(&newcomer, 0, 0, &merged);
  EXPECT_EQ(newcomer.reportedBefore, 0);
  ASSERT_EQ(merged.count, 1);
  EXPECT_EQ(merged.data[0], a);
  EXPECT_EQ(merged.capacity, 100);
}

TEST(MergeProgram, ReportsTheObjectsThatReceivedProperties) {
  const auto_ast<ProgramAST> target(new ProgramAST);
  const auto_ast<ProgramAST> source(new ProgramAST);
  ObjectAST* a = add(target.get(), "P", "a");
  ObjectAST* b = add(target.get(), "P", "b");
  for (const char* name : {"a", "c", "b"}) {
    add(source.get(), "P", name)->addProperty(KelpTest::property("x", KelpTest::number(1)), 0, 0);
  }
  Table<ObjectAST*, 100> merged;
  target->mergeProgram(source.get(), 0, 0, &merged);
  EXPECT_EQ(listOf(*target.get()), "c b a ");
  ASSERT_EQ(merged.count, 2);
  EXPECT_EQ(merged.data[0], b);
  EXPECT_EQ(merged.data[1], a);
  EXPECT_NE(a->findProperty("x"), nullptr);
}

TEST(MergeProgram, IntoItselfDoesNothing) {
  const auto_ast<ProgramAST> program(new ProgramAST);
  for (const char* name : {"a", "b"}) add(program.get(), "P", name);
  program->mergeProgram(program.get(), 0, 0, nullptr);
  EXPECT_EQ(listOf(*program.get()), "b a ");
  EXPECT_EQ(program->numObjects, 2);
  EXPECT_NE(program->getObject("a"), nullptr);
}

TEST(MergeProgram, OfAnEmptyProgramChangesNothing) {
  const auto_ast<ProgramAST> target(new ProgramAST);
  const auto_ast<ProgramAST> source(new ProgramAST);
  add(target.get(), "P", "a");
  target->mergeProgram(source.get(), 0, 0, nullptr);
  EXPECT_EQ(target->numObjects, 1);
}

TEST(UpdateName, MovesTheObjectInTheNameIndexOnly) {
  const auto_ast<ProgramAST> program(new ProgramAST);
  ObjectAST* a = add(program.get(), "P", "a");
  CharString newName("n");
  program->updateName(CharString("a"), newName);
  EXPECT_EQ(program->getObject("a"), nullptr);
  EXPECT_EQ(program->getObject("n"), a);
  EXPECT_STREQ(a->name.chars(), "a");
  EXPECT_EQ(program->namedObjects.find("n")->key, newName.chars());
  program->addObject(object("P", "a"), 0, 0, nullptr);
  EXPECT_EQ(program->numObjects, 1) << "the type and name are still known";
}

TEST(UpdateName, UnknownOldNameChangesNothing) {
  const auto_ast<ProgramAST> program(new ProgramAST);
  add(program.get(), "P", "a");
  CharString newName("n");
  program->updateName(CharString("b"), newName);
  program->updateName(CharString(), newName);
  EXPECT_EQ(program->getObject("n"), nullptr);
  EXPECT_NE(program->getObject("a"), nullptr);
  EXPECT_EQ(newName.buffer->referenceCount, 1);
}

TEST(UpdateName, ToATakenNameLeavesItToItsHolder) {
  const auto_ast<ProgramAST> program(new ProgramAST);
  add(program.get(), "P", "a");
  ObjectAST* b = add(program.get(), "P", "b");
  CharString newName("b");
  program->updateName(CharString("a"), newName);
  EXPECT_EQ(program->getObject("a"), nullptr);
  EXPECT_EQ(program->getObject("b"), b);
  EXPECT_EQ(program->namedObjects.count, 1);
  EXPECT_EQ(listOf(*program.get()), "b a ");
}

TEST(UpdateName, FromAndToTheAbsentName) {
  const auto_ast<ProgramAST> program(new ProgramAST);
  ObjectAST* unnamed = add(program.get(), "P", nullptr);
  CharString newName("n");
  program->updateName(CharString(), newName);
  EXPECT_EQ(program->getObject("n"), unnamed);
  CharString null;
  program->updateName(newName, null);
  EXPECT_EQ(program->getObject("n"), nullptr);
  ASSERT_NE(program->namedObjects.find(nullptr), nullptr);
  EXPECT_EQ(program->namedObjects.find(nullptr)->value, unnamed);
}

TEST(UpdateName, ShrinksTheMapAsEraseDoes) {
  const auto_ast<ProgramAST> program(new ProgramAST);
  for (int i = 0; i < 6; ++i) add(program.get(), "P", std::to_string(i).c_str());
  program->namedObjects._resize_table(29, nullptr);
  CharString newName("n");
  program->updateName(CharString("3"), newName);  // 5 of 29 left for a moment
  EXPECT_EQ(program->namedObjects.buckets.count, 13);
  EXPECT_NE(program->getObject("n"), nullptr);
}

TEST(UpdateName, NewNameMayGoBeforeTheProgram) {
  const auto_ast<ProgramAST> program(new ProgramAST);
  ObjectAST* a = add(program.get(), "P", "a");
  {
    CharString newName(std::string(100, 'n').c_str());
    program->updateName(CharString("a"), newName);
    EXPECT_EQ(newName.buffer->referenceCount, 2);
    newName = "written over";
  }
  for (int i = 0; i < 50; ++i) add(program.get(), "P", std::to_string(i).c_str());
  EXPECT_EQ(program->getObject(std::string(100, 'n').c_str()), a);
}

TEST(UpdateName, HundredMovesLoseNoObject) {
  const auto_ast<ProgramAST> program(new ProgramAST);
  for (int i = 0; i < 100; ++i) add(program.get(), "P", ("old" + std::to_string(i)).c_str());
  for (int i = 0; i < 100; ++i) {
    CharString newName(("new" + std::to_string(i)).c_str());
    program->updateName(CharString(("old" + std::to_string(i)).c_str()), newName);
  }
  for (int i = 0; i < 100; ++i) {
    const ObjectAST* found = program->getObject(("new" + std::to_string(i)).c_str());
    ASSERT_NE(found, nullptr);
    EXPECT_EQ(found->name.chars(), "old" + std::to_string(i));
  }
  EXPECT_EQ(program->namedObjects.count, 100);
}

}  // namespace
