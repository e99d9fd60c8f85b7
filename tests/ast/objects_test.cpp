#include "kelp/ast/objects.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "tests/support/allocations.h"
#include "tests/support/failures.h"
#include "tests/support/nodes.h"
#include "tests/support/parsing.h"

using namespace Kelp;
using namespace KelpTest;

namespace {

std::string namesOf(const ObjectAST& object) {
  std::string names;
  for (const PropertyAST* p = object.firstProperty; p != nullptr; p = p->next) {
    names += p->name.chars();
    names += ' ';
  }
  return names;
}

TEST(AddProperty, AppendsInTextOrderAndKeepsRepeatedNames) {
  const auto_ast<ObjectAST> a(object("T", "a"));
  for (const char* name : {"x", "y", "x"}) a->addProperty(property(name, number(1)), 0, 0);
  EXPECT_EQ(namesOf(*a.get()), "x y x ");
  EXPECT_EQ(a->lastProperty, a->firstProperty->next->next);
}

TEST(AddProperty, FramesThatAreNotBothZeroGiveOneRecord) {
  struct Row {
    double t1;
    double t2;
    bool recorded;
  };
  const Row rows[] = {{0, 0, false}, {1, 0, true}, {0, 2, true}, {-3, 4, true}};
  for (const Row& row : rows) {
    const auto_ast<ObjectAST> a(object("T", "a"));
    a->addProperty(property("x", number(1)), row.t1, row.t2);
    const PropertyRecord* record = a->firstProperty->records;
    ASSERT_EQ(record != nullptr, row.recorded);
    if (record == nullptr) continue;
    EXPECT_EQ(record->t1, row.t1);
    EXPECT_EQ(record->t2, row.t2);
    EXPECT_EQ(record->next, nullptr);
  }
}

TEST(AddProperty, FailureReleasesTheProperty) {
  const auto_ast<ObjectAST> a(object("T", "a"));
  a->addProperty(property("x", number(1)), 0, 0);
  const int live = livePoolElements();
  PropertyAST* second = property("y", number(2));
  EXPECT_TRUE(runsOutOfMemory(1, [&] { a->addProperty(second, 1, 2); }));
  EXPECT_EQ(livePoolElements(), live);
  EXPECT_EQ(namesOf(*a.get()), "x ");
}

TEST(Merge, MovesThePropertyChainBehind) {
  const auto_ast<ObjectAST> a(object("T", "a"));
  const auto_ast<ObjectAST> b(object("T", "a"));
  a->addProperty(property("x", number(1)), 0, 0);
  b->addProperty(property("y", number(2)), 0, 0);
  b->addProperty(property("z", number(3)), 0, 0);
  PropertyAST* moved = b->firstProperty;
  a->merge(b.get(), 1, 2);
  EXPECT_EQ(namesOf(*a.get()), "x y z ");
  EXPECT_EQ(a->firstProperty->next, moved);
  EXPECT_EQ(b->firstProperty, nullptr);
  EXPECT_EQ(b->lastProperty, nullptr);
  a->addProperty(property("w", number(4)), 0, 0);
  EXPECT_EQ(namesOf(*a.get()), "x y z w ");
}

TEST(Merge, EitherSideMayBeEmpty) {
  const auto_ast<ObjectAST> a(object("T", "a"));
  const auto_ast<ObjectAST> b(object("T", "a"));
  a->merge(b.get(), 0, 0);
  EXPECT_EQ(a->firstProperty, nullptr);
  b->addProperty(property("x", number(1)), 0, 0);
  a->merge(b.get(), 0, 0);
  EXPECT_EQ(namesOf(*a.get()), "x ");
  a->merge(b.get(), 0, 0);
  EXPECT_EQ(namesOf(*a.get()), "x ");
  EXPECT_EQ(a->lastProperty, a->firstProperty);
}

TEST(Merge, LeavesTheBuffersOfTypeAndName) {
  const auto_ast<ObjectAST> a(object("T", "a"));
  const auto_ast<ObjectAST> b(object("T", "a"));
  b->addProperty(property("x", number(1)), 0, 0);
  const char* type = a->type.chars();
  const char* name = a->name.chars();
  a->merge(b.get(), 0, 0);
  EXPECT_EQ(a->type.chars(), type);
  EXPECT_EQ(a->name.chars(), name);
}

TEST(FindProperty, LastAssignmentWins) {
  const auto_ast<ObjectAST> a(object("T", "a"));
  EXPECT_EQ(a->findProperty("x"), nullptr);
  for (const char* name : {"x", "y", "x"}) a->addProperty(property(name, number(1)), 0, 0);
  a->addProperty(property(nullptr, number(1)), 0, 0);
  EXPECT_EQ(a->findProperty("x"), a->firstProperty->next->next);
  EXPECT_EQ(a->findProperty("y"), a->firstProperty->next);
  EXPECT_EQ(a->findProperty("z"), nullptr);
  EXPECT_EQ(a->findProperty(""), nullptr);
}

TEST(ReleaseObject, ReturnsPropertiesValuesAndRecords) {
  const int live = livePoolElements();
  ObjectAST* a = object("T", "a");
  for (int i = 0; i < 3; ++i) a->addProperty(property("x", number(i)), i, i + 1);
  a->firstProperty->records->next = new PropertyRecord{5, 6, new PropertyRecord{7, 8, nullptr}};
  a->addProperty(property("x", nullptr), 0, 0);
  PropertyAST* first = a->firstProperty;
  const int64_t heap = liveAllocations();
  a->deleteThis();
  EXPECT_EQ(liveAllocations(), heap - 5) << "records";
  EXPECT_EQ(livePoolElements(), live);
  EXPECT_EQ(a->firstProperty, nullptr);
  EXPECT_EQ(first->value, nullptr);
  EXPECT_EQ(first->records, nullptr);
}

TEST(ReleaseObject, PropertiesGoInTextOrder) {
  ObjectAST* a = object("T", "a");
  std::vector<PropertyAST*> properties;
  for (int i = 0; i < 3; ++i) {
    properties.push_back(property("x", number(i)));
    a->addProperty(properties.back(), 0, 0);
  }
  a->deleteThis();
  for (size_t i = 3; i-- > 0;) EXPECT_EQ(PropertyAST::pool.newElement(), properties[i]);
  for (PropertyAST* p : properties) p->deleteThis();
}

}  // namespace
