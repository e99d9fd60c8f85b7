// Virtual operations called through their slots, as code that was compiled elsewhere finds them.
#include <gtest/gtest.h>

#include <cstring>
#include <string>

#include "kelp/ast/visitor.h"
#include "kelp/parser/scenepluginfilter.h"
#include "kelp/program/programast.h"
#include "tests/support/nodes.h"
#include "tests/support/parsing.h"

using namespace Kelp;
using namespace KelpTest;

namespace {

template <class Operation>
Operation slotOf(const void* object, size_t slot) {
  void* const* slots;
  std::memcpy(&slots, object, sizeof slots);
  return reinterpret_cast<Operation>(slots[slot]);
}

using DeleteThis = void (*)(AST*);
using Visit = void (*)(ExpressionAST*, Visitor*);
using GetIth = ExpressionAST* (*)(ExpressionAST*, int);
using Type = int (*)(ExpressionAST*);

// Notes which operation it was called by.
class Noting final : public DefaultVisitor {
 public:
  using DefaultVisitor::visit;
  void visit(NumberExpressionAST&) override { called += "number "; }
  void visit(ListTypeExpressionAST<Vector>&) override { called += "vectors "; }
  void visit(ListTypeExpressionAST<int>&) override { called += "ints "; }
  void visit(ListTypeExpressionAST<Color>&) override { called += "colors "; }
  void visit(ListTypeExpressionAST<float>&) override { called += "floats "; }
  void visit(ListTypeExpressionAST<CharString>&) override { called += "strings "; }
  std::string called;
};

std::string visitedThroughItsSlot(ExpressionAST* node) {
  Noting visitor;
  slotOf<Visit>(node, 1)(node, &visitor);
  slotOf<DeleteThis>(node, 0)(node);
  return visitor.called;
}

TEST(Slots, ReleaseIsTheFirstOfEveryRoot) {
  const int live = livePoolElements();
  auto* program = new ProgramAST;
  ObjectAST* added = object("A", "a");
  added->addProperty(property("x", number(1)), 0, 0);
  program->addObject(added, 0, 0, nullptr);
  slotOf<DeleteThis>(program, 0)(program);
  ObjectAST* alone = object("A", "a");
  slotOf<DeleteThis>(alone, 0)(alone);
  PropertyAST* value = property("x", number(1));
  slotOf<DeleteThis>(value, 0)(value);
  EXPECT_EQ(livePoolElements(), live);
}

TEST(Slots, VisitIsTheSecondOfAnExpression) {
  EXPECT_EQ(visitedThroughItsSlot(number(1)), "number ");
  EXPECT_EQ(visitedThroughItsSlot(new ListTypeExpressionAST<Vector>), "vectors ");
  EXPECT_EQ(visitedThroughItsSlot(new ListTypeExpressionAST<int>), "ints ");
  EXPECT_EQ(visitedThroughItsSlot(new ListTypeExpressionAST<Color>), "colors ");
  EXPECT_EQ(visitedThroughItsSlot(new ListTypeExpressionAST<float>), "floats ");
  EXPECT_EQ(visitedThroughItsSlot(new ListTypeExpressionAST<CharString>), "strings ");
}

TEST(Slots, ComponentAndKindFollow) {
  ExpressionAST* node = negated(vector(number(1), number(2), number(3)));
  EXPECT_EQ(valueOf(slotOf<GetIth>(node, 2)(node, 1)), 2);
  EXPECT_EQ(slotOf<Type>(node, 3)(node), 0);
  node->deleteThis();
  ExpressionAST* table = interpolation(1);
  EXPECT_THROW(slotOf<GetIth>(table, 2)(table, 0), NotIndexableException);
  EXPECT_EQ(slotOf<Type>(table, 3)(table), 1);
  table->deleteThis();
}

TEST(Slots, AcceptObjectIsTheFirstOfAFilter) {
  class Filter final : public ScenePluginFilter {
   public:
    int acceptObject(const CharString&, CharString& name, void*) override {
      name = "renamed";
      return 5;
    }
  };
  Filter filter;
  using Accept = int (*)(ScenePluginFilter*, const CharString*, CharString*, void*);
  const CharString type("A");
  CharString name("a");
  EXPECT_EQ(slotOf<Accept>(&filter, 0)(&filter, &type, &name, nullptr), 5);
  EXPECT_STREQ(name.chars(), "renamed");
}

}  // namespace
