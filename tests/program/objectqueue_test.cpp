// Objects that reach a program through the queue arrive as by addObject.
#include "kelp/program/objectqueue.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "kelp/ast/auto_ast.h"
#include "tests/support/balance.h"
#include "tests/support/failures.h"
#include "tests/support/nodes.h"
#include "tests/support/parsing.h"
#include "tests/support/programs.h"
#include "tests/support/sexpression.h"

using namespace Kelp;
using namespace KelpTest;

namespace {

// Some of them several times, so that they merge while others wait.
ObjectAST* objectNumber(int i) {
  const std::string name = "n" + std::to_string(i % 7 == 3 ? i / 2 : i);
  TextParser source("A " + name + " { x = " + std::to_string(i) + "; }");
  return source.started().parseObject();
}

TEST(ObjectQueue, ObjectsArriveInOrder) {
  for (const int number : {0, 1, 2, 3, 4, 5, 6, 50}) {
    const auto_ast<ProgramAST> direct(new ProgramAST);
    const auto_ast<ProgramAST> queued(new ProgramAST);
    ObjectQueue queue(*queued.get());
    for (int i = 0; i < number; ++i) direct->addObject(objectNumber(i), 1, 2, nullptr);
    for (int i = 0; i < number; ++i) queue.add(objectNumber(i), 1, 2);
    queue.flush();
    EXPECT_EQ(sexpression(*queued.get()), sexpression(*direct.get()));
    EXPECT_EQ(queued->numObjects, direct->numObjects);
  }
}

TEST(ObjectQueue, ReleasesWhatItStillHolds) {
  const auto_ast<ProgramAST> program(new ProgramAST);
  const int live = livePoolElements();
  {
    ObjectQueue queue(*program.get());
    for (int i = 0; i < 3; ++i) queue.add(objectNumber(i), 0, 0);
    EXPECT_GT(livePoolElements(), live);
    EXPECT_EQ(program->numObjects, 0);
  }
  EXPECT_EQ(livePoolElements(), live);
}

TEST(ObjectQueue, ReleasesWhatItHoldsAsTheProgramWould) {
  std::vector<ObjectAST*> objects;
  {
    const auto_ast<ProgramAST> program(new ProgramAST);
    ObjectQueue queue(*program.get());
    for (const char* name : {"a", "b", "c", "d", "e", "f", "g"}) {
      objects.push_back(object("A", name));
      queue.add(objects.back(), 0, 0);
    }
    EXPECT_EQ(program->numObjects, 2);
  }
  EXPECT_EQ(nextElements<ObjectAST>(7), objects);  // the last one returned first
}

TEST(ObjectQueue, ObjectThatCannotBeAddedIsReleased) {
  auto addAll = [] {
    const auto_ast<ProgramAST> program(new ProgramAST);
    const ProgramAST::FilterRun run(program.get());  // refuses all additions
    ObjectQueue queue(*program.get());
    for (int i = 0; i < 3; ++i) queue.add(objectNumber(i), 0, 0);
    EXPECT_THROW(queue.flush(), ExceptionMsg);
    EXPECT_EQ(program->firstObject, nullptr);
  };
  addAll();
  expectBalanced(addAll);
}

}  // namespace
