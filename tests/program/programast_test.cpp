#include "kelp/program/programast.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "kelp/ast/auto_ast.h"
#include "tests/support/nodes.h"
#include "tests/support/parsing.h"
#include "tests/support/programs.h"

using namespace Kelp;
using KelpTest::add;
using KelpTest::listOf;
using KelpTest::livePoolElements;
using KelpTest::object;

namespace {

TEST(Program, StartsEmpty) {
  const auto_ast<ProgramAST> program(new ProgramAST);
  EXPECT_EQ(program->firstObject, nullptr);
  EXPECT_EQ(program->numObjects, 0);
  EXPECT_EQ(program->typedObjects.buckets.count, 13);
  EXPECT_EQ(program->namedObjects.buckets.count, 13);
  EXPECT_EQ(program->getObject("a"), nullptr);
}

TEST(AddObject, ListsNewestFirst) {
  const auto_ast<ProgramAST> program(new ProgramAST);
  for (const char* name : {"a", "b", "c"}) add(program.get(), "P", name);
  EXPECT_EQ(listOf(*program.get()), "c b a ");
  EXPECT_EQ(program->numObjects, 3);
  const std::vector<ObjectAST*> objects = objectsInTextOrder(*program.get());
  ASSERT_EQ(objects.size(), 3U);
  EXPECT_STREQ(objects[0]->name.chars(), "a");
}

TEST(AddObject, SameTypeAndNameAreMerged) {
  const int live = livePoolElements();
  {
    const auto_ast<ProgramAST> program(new ProgramAST);
    ObjectAST* first = add(program.get(), "P", "a");
    first->addProperty(KelpTest::property("x", KelpTest::number(1)), 0, 0);
    ObjectAST* second = object("P", "a");
    second->addProperty(KelpTest::property("y", KelpTest::number(2)), 0, 0);
    Table<ObjectAST*, 100> merged;
    const int objects = ObjectAST::pool.liveCount();
    program->addObject(second, 1, 2, &merged);
    EXPECT_EQ(ObjectAST::pool.liveCount(), objects - 1);
    EXPECT_EQ(listOf(*program.get()), "a ");
    EXPECT_EQ(program->firstObject, first);
    EXPECT_EQ(program->numObjects, 1);
    ASSERT_EQ(merged.count, 1);
    EXPECT_EQ(merged.data[0], first);
    EXPECT_NE(first->findProperty("x"), nullptr);
    EXPECT_NE(first->findProperty("y"), nullptr);
    EXPECT_EQ(program->typedObjects.count, 1);
    EXPECT_EQ(program->namedObjects.count, 1);
  }
  EXPECT_EQ(livePoolElements(), live);
}

TEST(AddObject, FirstHolderKeepsTheName) {
  const auto_ast<ProgramAST> program(new ProgramAST);
  ObjectAST* first = add(program.get(), "P", "a");
  add(program.get(), "Q", "a");
  EXPECT_EQ(program->numObjects, 2);
  EXPECT_EQ(program->getObject("a"), first);
  EXPECT_EQ(program->typedObjects.count, 2);
  EXPECT_EQ(program->namedObjects.count, 1);
}

TEST(AddObject, UnnamedObjectsOfOneTypeAreMerged) {
  const auto_ast<ProgramAST> program(new ProgramAST);
  ObjectAST* first = add(program.get(), "P", "");
  program->addObject(object("P", ""), 0, 0, nullptr);
  EXPECT_EQ(program->numObjects, 1);
  add(program.get(), "Q", "");
  EXPECT_EQ(program->numObjects, 2);
  EXPECT_EQ(program->getObject(""), first);
}

TEST(AddObject, AbsentAndEmptyTypeShareAKeyAndStayApart) {
  const auto_ast<ProgramAST> program(new ProgramAST);
  ObjectAST* absent = add(program.get(), nullptr, "a");
  add(program.get(), "", "a");
  EXPECT_EQ(program->numObjects, 2);
  EXPECT_EQ(listOf(*program.get()), "a a ");
  ASSERT_EQ(program->typedObjects.count, 1);
  const auto* entry = program->typedObjects._findInBucket(program->typedObjects._bucketOf("\ta"),
                                                          "\ta", getNameTypeKey);
  ASSERT_NE(entry, nullptr);
  EXPECT_EQ(entry->value, absent);
}

TEST(AddObject, StringsWithoutABufferAndWithAnEmptyOneAreBothAbsent) {
  const auto_ast<ProgramAST> program(new ProgramAST);
  for (int i = 0; i < 3; ++i) {
    ObjectAST* newcomer = object(nullptr, nullptr);
    if (i > 0) newcomer->type.buffer = new CharStringBuf;
    if (i > 1) newcomer->name.buffer = new CharStringBuf;
    program->addObject(newcomer, 0, 0, nullptr);
  }
  EXPECT_EQ(program->numObjects, 1);
}

TEST(ProgramAST, ReleasesItsObjectsFromTheNewestToTheOldest) {
  ProgramAST* program = new ProgramAST;
  std::vector<ObjectAST*> objects;
  for (const char* name : {"a", "b", "c"}) objects.push_back(add(program, "P", name));
  program->deleteThis();
  EXPECT_EQ(KelpTest::nextElements<ObjectAST>(3), objects);  // the last one returned first
}

TEST(AddObject, TabInsideANameMergesNothing) {
  const auto_ast<ProgramAST> program(new ProgramAST);
  add(program.get(), "a\tb", "c");
  add(program.get(), "a", "b\tc");
  EXPECT_EQ(program->numObjects, 2);
  EXPECT_EQ(program->typedObjects.count, 1);
  EXPECT_NE(program->getObject("c"), nullptr);
  EXPECT_NE(program->getObject("b\tc"), nullptr);
}

TEST(AddObject, AbsentNamesAndTypesAreKeptApartFromEmptyOnes) {
  const auto_ast<ProgramAST> program(new ProgramAST);
  const char* const parts[] = {nullptr, "", "a"};
  for (const char* type : parts) {
    for (const char* name : parts) add(program.get(), type, name);
  }
  EXPECT_EQ(program->numObjects, 9);
  for (const char* type : parts) {
    for (const char* name : parts) {
      const CharString wantedType(type);
      const CharString wantedName(name);
      int found = 0;
      for (const ObjectAST* o = program->firstObject; o != nullptr; o = o->next) {
        if (o->type == wantedType && o->name == wantedName) ++found;
      }
      EXPECT_EQ(found, 1);
    }
  }
  for (int i = 0; i < 100; ++i) EXPECT_EQ(program->getObject(std::to_string(i).c_str()), nullptr);
}

TEST(AddObject, AbsentNameAndTypeAreMergedWithTheirLike) {
  const auto_ast<ProgramAST> program(new ProgramAST);
  add(program.get(), nullptr, nullptr);
  program->addObject(object(nullptr, nullptr), 0, 0, nullptr);
  EXPECT_EQ(program->numObjects, 1);
}

TEST(AddObject, LongNamesRaiseTheKeyBuffers) {
  const auto_ast<ProgramAST> program(new ProgramAST);
  add(program.get(), "P", "a");
  EXPECT_EQ(program->typedObjects.keyBufferSize, 1024);
  const std::string name(3000, 'n');
  add(program.get(), "P", name.c_str());
  EXPECT_EQ(program->typedObjects.keyBufferSize, 3003);
  program->addObject(object("P", name.c_str()), 0, 0, nullptr);
  EXPECT_EQ(program->numObjects, 2);
}

TEST(AddObject, KeysThatAgreeOnlyInTheirFirstThousandCharactersStayApart) {
  const auto_ast<ProgramAST> program(new ProgramAST);
  const std::string prefix(1100, 'n');
  for (const char* tail : {"1", "2"}) {
    add(program.get(), "P", (prefix + tail).c_str());
    add(program.get(), "P", (prefix.substr(0, 1021) + tail).c_str());
  }
  EXPECT_EQ(program->numObjects, 4);
}

TEST(AddObject, RenamedObjectWithACutKeyIsNotTakenForAnother) {
  const auto_ast<ProgramAST> program(new ProgramAST);
  ObjectAST* renamed = add(program.get(), "P", "a");
  const CharString longName(std::string(1100, 'n').c_str());
  program->_moveName(renamed->name, longName);
  renamed->name = longName;
  program->typedObjects._resize_table(29, getNameTypeKey);  // now under its cut key
  const std::string cut(1021, 'n');
  add(program.get(), "P", cut.c_str());
  EXPECT_EQ(program->numObjects, 2);
  EXPECT_EQ(program->getObject(longName.chars()), renamed);
  EXPECT_NE(program->getObject(cut.c_str()), renamed);
}

TEST(AddObject, ManyObjectsAreAllFound) {
  const int live = livePoolElements();
  {
    const auto_ast<ProgramAST> program(new ProgramAST);
    for (int i = 0; i < 3000; ++i) {
      add(program.get(), i % 2 == 0 ? "P" : "Q", std::to_string(i).c_str());
    }
    for (int i = 0; i < 3000; ++i) {
      const ObjectAST* found = program->getObject(std::to_string(i).c_str());
      ASSERT_NE(found, nullptr);
      ASSERT_EQ(found->name.chars(), std::to_string(i));
    }
    EXPECT_EQ(program->numObjects, 3000);
  }
  EXPECT_EQ(livePoolElements(), live);
}

TEST(AddObject, NamesThatDifferBehindANulAreOneObject) {
  const auto_ast<ProgramAST> program(new ProgramAST);
  add(program.get(), "P", "a");
  program->addObject(object("P", "a\0b"), 0, 0, nullptr);
  EXPECT_EQ(program->numObjects, 1);
}

TEST(GetObject, NullNameGivesNull) {
  const auto_ast<ProgramAST> program(new ProgramAST);
  EXPECT_EQ(program->getObject(nullptr), nullptr);
  add(program.get(), "P", nullptr);
  EXPECT_EQ(program->getObject(nullptr), nullptr);
}

TEST(DeleteThis, OfAProgramOf1000ReturnsEverything) {
  const int live = livePoolElements();
  auto* program = new ProgramAST;
  for (int i = 0; i < 1000; ++i) {
    ObjectAST* added = add(program, "P", std::to_string(i).c_str());
    added->addProperty(KelpTest::property("x", KelpTest::number(i)), 0, 0);
  }
  AST* base = program;
  base->deleteThis();
  EXPECT_EQ(livePoolElements(), live);
}

}  // namespace
