// Objects whose names change behind the program's maps.
#include <gtest/gtest.h>

#include <string>

#include "kelp/ast/auto_ast.h"
#include "kelp/program/programast.h"
#include "tests/support/nodes.h"
#include "tests/support/smallstack.h"

using namespace Kelp;
using KelpTest::object;

namespace {

int bucketOf(const std::string& name, uint32_t buckets) {
  const std::string key = "P\t" + name;
  return static_cast<int>(hashlittle(key.data(), key.size()) % buckets);
}

// A name whose key shares the bucket of "P<tab>a" among 13, or does not.
std::string nameInBucketOfA(bool same) {
  for (int i = 0;; ++i) {
    const std::string name = "name" + std::to_string(i);
    if ((bucketOf(name, 13) == bucketOf("a", 13)) == same) return name;
  }
}

// A program of one object that was added as "a" and bears another name since.
ObjectAST* addRenamed(ProgramAST* program, const CharString& newName) {
  ObjectAST* added = object("P", "a");
  program->addObject(added, 0, 0, nullptr);
  program->_moveName(added->name, newName);
  added->name = newName;
  return added;
}

TEST(RenamedObject, IsMetUnderItsNewKeyOnlyInTheBucketOfTheOld) {
  struct Row {
    bool sameBucket;
    bool rehashed;
    int objects;
  };
  const Row rows[] = {{true, false, 1}, {false, false, 2}, {true, true, 1}, {false, true, 1}};
  for (const Row& row : rows) {
    const auto_ast<ProgramAST> program(new ProgramAST);
    const CharString newName(nameInBucketOfA(row.sameBucket).c_str());
    addRenamed(program.get(), newName);
    if (row.rehashed) program->typedObjects._resize_table(13, getNameTypeKey);
    program->addObject(object("P", newName.chars()), 0, 0, nullptr);
    EXPECT_EQ(program->numObjects, row.objects) << row.sameBucket << row.rehashed;
  }
}

TEST(RenamedObject, LeavesItsOldTypeAndNameToANewcomer) {
  const auto_ast<ProgramAST> program(new ProgramAST);
  const ObjectAST* renamed = addRenamed(program.get(), CharString("b"));
  ObjectAST* newcomer = object("P", "a");
  program->addObject(newcomer, 0, 0, nullptr);
  EXPECT_EQ(program->numObjects, 2);
  EXPECT_EQ(program->getObject("a"), newcomer);
  EXPECT_EQ(program->getObject("b"), renamed);
}

TEST(HugeName, IsAddedOnASmallStack) {
  const std::string name(10'000'000, 'n');
  const auto_ast<ProgramAST> program(new ProgramAST);
  KelpTest::runOnStackOf(64 * 1024, [&] {
    for (int i = 0; i < 2; ++i) program->addObject(object("P", name.c_str()), 0, 0, nullptr);
  });
  EXPECT_EQ(program->numObjects, 1);
  EXPECT_NE(program->getObject(name.c_str()), nullptr);
}

}  // namespace
