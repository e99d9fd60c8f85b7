// Programs when memory runs out at any request: who owns what, and that all of it is released.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "kelp/ast/auto_ast.h"
#include "kelp/program/programast.h"
#include "tests/support/failures.h"
#include "tests/support/nodes.h"
#include "tests/support/parsing.h"

using namespace Kelp;
using namespace KelpTest;

namespace {

bool isListed(const ProgramAST& program, const ObjectAST* wanted) {
  for (const ObjectAST* o = program.firstObject; o != nullptr; o = o->next) {
    if (o == wanted) return true;
  }
  return false;
}

int listLength(const ProgramAST& program) {
  int length = 0;
  for (const ObjectAST* o = program.firstObject; o != nullptr; o = o->next) ++length;
  return length;
}

ProgramAST* programOf(int first, int end) {
  auto* program = new ProgramAST;
  for (int i = first; i < end; ++i) {
    ObjectAST* added = object("P", std::to_string(i).c_str());
    added->addProperty(property("x", number(i)), 0, 0);
    program->addObject(added, 0, 0, nullptr);
  }
  return program;
}

// Adds to a program that is about to grow, with each request failing in turn.
void expectBalancedAddition(const std::string& name) {
  const int live = livePoolElements();
  for (int64_t n = 1;; ++n) {
    ProgramAST* program = programOf(0, 10);
    ObjectAST* newcomer = object("P", name.c_str());
    bool added = false;
    const bool failed = runsOutOfMemory(n, [&] {
      program->addObject(newcomer, 0, 0, nullptr);
      added = true;
    });
    EXPECT_NE(added, failed);
    // Whoever adds finds out by the head of the list whether the program has taken the object.
    if (failed && program->firstObject != newcomer) newcomer->deleteThis();
    for (int i = 0; i < 10; ++i) ASSERT_NE(program->getObject(std::to_string(i).c_str()), nullptr);
    program->deleteThis();
    EXPECT_EQ(livePoolElements(), live) << n;
    if (!failed) break;
  }
}

TEST(AddObjectMemory, EveryFailureLeavesOneOwner) {
  expectBalancedAddition("new");
  expectBalancedAddition(std::string(2000, 'n'));
  expectBalancedAddition("5");
}

TEST(AddObjectMemory, FailureOfTheFirstObjectsMapEntries) {
  const int live = livePoolElements();
  for (int64_t n = 1;; ++n) {
    auto* program = new ProgramAST;
    ObjectAST* newcomer = object("P", "a");
    const bool failed = runsOutOfMemory(n, [&] { program->addObject(newcomer, 0, 0, nullptr); });
    if (failed && program->firstObject != newcomer) newcomer->deleteThis();
    EXPECT_EQ(program->numObjects, failed ? 0 : 1);
    program->deleteThis();
    EXPECT_EQ(livePoolElements(), live) << n;
    if (!failed) break;
  }
}

TEST(AddObjectMemory, FailedReportOfAMergeLeavesTheNewcomerWhole) {
  ProgramAST* program = programOf(0, 1);
  ObjectAST* newcomer = object("P", "0");
  newcomer->addProperty(property("y", number(1)), 0, 0);
  Table<ObjectAST*, 100> merged;
  EXPECT_TRUE(runsOutOfMemory(1, [&] { program->addObject(newcomer, 0, 0, &merged); }));
  EXPECT_EQ(merged.count, 0);
  EXPECT_NE(newcomer->firstProperty, nullptr);
  EXPECT_EQ(program->getObject("0")->findProperty("y"), nullptr);
  program->addObject(newcomer, 0, 0, &merged);
  EXPECT_EQ(merged.count, 1);
  EXPECT_NE(program->getObject("0")->findProperty("y"), nullptr);
  program->deleteThis();
}

// Merges 0..11 into 6..26, so that objects are added, also while the target's maps grow, and
// merged, with the n-th request failing.
struct FailedMerge {
  FailedMerge(int64_t n, bool persistent) : target(programOf(6, 27)), source(programOf(0, 12)) {
    for (ObjectAST* o = source->firstObject; o != nullptr; o = o->next) handed.push_back(o);
    failed = runsOutOfMemory(
        n, [&] { target->mergeProgram(source, 0, 0, &merged); }, persistent);
  }
  ProgramAST* target;
  ProgramAST* source;
  std::vector<ObjectAST*> handed;
  Table<ObjectAST*, 100> merged;
  bool failed;
};

TEST(MergeProgramMemory, EveryFailureLeavesOneOwnerOfEveryObject) {
  const int live = livePoolElements();
  for (const bool persistent : {false, true}) {
    for (const bool targetFirst : {false, true}) {
      for (int64_t n = 1;; ++n) {
        const FailedMerge merge(n, persistent);
        for (const ObjectAST* o : merge.handed) {
          EXPECT_FALSE(isListed(*merge.source, o) && isListed(*merge.target, o));
        }
        const int gone = 33 - listLength(*merge.source) - listLength(*merge.target);
        EXPECT_EQ(gone, merge.merged.count) << n;
        (targetFirst ? merge.target : merge.source)->deleteThis();
        (targetFirst ? merge.source : merge.target)->deleteThis();
        EXPECT_EQ(livePoolElements(), live) << n;
        if (!merge.failed) break;
        ASSERT_LT(n, 1000);
      }
    }
  }
}

TEST(MergeProgramMemory, SourceIsUsableAfterAFailure) {
  const int live = livePoolElements();
  for (int64_t n = 1;; ++n) {
    const FailedMerge merge(n, false);
    merge.target->deleteThis();
    // Names of objects that have left must not be met in the source's maps.
    for (int i = 0; i < 40; ++i) {
      merge.source->addObject(object("Q", std::to_string(i).c_str()), 0, 0, nullptr);
      EXPECT_NE(merge.source->getObject(std::to_string(i).c_str()), nullptr);
    }
    merge.source->deleteThis();
    EXPECT_EQ(livePoolElements(), live) << n;
    if (!merge.failed) break;
  }
}

TEST(UpdateNameMemory, EveryFailureLeavesAUsableProgram) {
  const int live = livePoolElements();
  for (int64_t n = 1;; ++n) {
    ProgramAST* program = programOf(0, 6);
    program->namedObjects._resize_table(29, nullptr);
    bool failed = false;
    {
      CharString newName("n");
      const CharString oldName("3");
      failed = runsOutOfMemory(n, [&] { program->updateName(oldName, newName); });
    }
    for (int i = 10; i < 60; ++i) {
      program->addObject(object("P", std::to_string(i).c_str()), 0, 0, nullptr);
    }
    for (const int i : {0, 1, 2, 4, 5, 10, 59}) {
      EXPECT_NE(program->getObject(std::to_string(i).c_str()), nullptr) << n << ' ' << i;
    }
    EXPECT_EQ(program->getObject("n") != nullptr, !failed) << n;
    program->deleteThis();
    EXPECT_EQ(livePoolElements(), live) << n;
    if (!failed) break;
  }
}

}  // namespace
