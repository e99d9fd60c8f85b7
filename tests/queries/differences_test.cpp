#include "kelp/queries/differences.h"

#include <gtest/gtest.h>

#include <string>

#include "tests/support/trees.h"

using namespace Kelp;
using KelpTest::ParsedScene;

namespace {

std::string nameOf(const ObjectAST& object) {
  return std::string(object.type.chars()) + ' ' + object.name.chars();
}

template <class Difference>
const char* markOf(const Difference& difference) {
  if (difference.before == nullptr) return "+";
  return difference.after == nullptr ? "-" : "~";
}

// "-A a; ~B b(-x ~y +z); +C c": removed, changed, added.
std::string differences(const char* before, const char* after) {
  const ParsedScene first(before);
  const ParsedScene second(after);
  std::string all;
  for (const ObjectDifference& object : diffPrograms(*first.program.get(), *second.program.get())) {
    if (!all.empty()) all += "; ";
    all += markOf(object) + nameOf(object.before != nullptr ? *object.before : *object.after);
    std::string properties;
    for (const PropertyDifference& property : object.properties) {
      if (!properties.empty()) properties += ' ';
      properties += markOf(property);
      properties += (property.before != nullptr ? property.before : property.after)->name.chars();
    }
    if (!properties.empty()) all += '(' + properties + ')';
  }
  return all;
}

}  // namespace

TEST(Differences, AreObjectsAndPropertiesThatDiffer) {
  const struct {
    const char* before;
    const char* after;
    const char* expected;
  } rows[] = {
      {"", "", ""},
      {"A a {}", "A a {}", ""},
      {"A a {}", "", "-A a"},
      {"", "A a {}", "+A a"},
      {"A a {}", "A b {}", "-A a; +A b"},
      {"A a {}", "B a {}", "-A a; +B a"},
      {"A {}", "A {}", ""},
      {"A a {} B b {}", "B b {} A a {}", ""},
      {"A a {} B b {}", "C c {} A a {} D d {}", "-B b; +C c; +D d"},
      {"A a { x = 1; }", "A a { x = 1; }", ""},
      {"A a { x = 1; }", "A a { x = 2; }", "~A a(~x)"},
      {"A a { x = 1; }", "A a { }", "~A a(-x)"},
      {"A a { }", "A a { x = 1; }", "~A a(+x)"},
      {"A a { x = 1; y = 2; }", "A a { y = 2; x = 1; }", ""},
      {"A a { x = 1; y = 2; }", "A a { z = 3; y = 4; }", "~A a(-x ~y +z)"},
      {"A a { x = 1; } B b { y = 1; }", "B b { y = 2; } A a { x = 2; }", "~A a(~x); ~B b(~y)"},
  };
  for (const auto& row : rows) {
    EXPECT_EQ(differences(row.before, row.after), row.expected) << row.before << " | " << row.after;
  }
}

TEST(Differences, OfSeveralAssignmentsTheLastCounts) {
  EXPECT_EQ(differences("A a { x = 1; x = 2; }", "A a { x = 2; }"), "");
  EXPECT_EQ(differences("A a { x = 2; x = 1; }", "A a { x = 2; }"), "~A a(~x)");
  EXPECT_EQ(differences("A a { x = 1; } A a { x = 2; }", "A a { x = 2; }"), "");
  EXPECT_EQ(differences("A a { x = 1; y = 1; x = 2; }", "A a { y = 2; x = 3; }"), "~A a(~x ~y)");
}

TEST(Differences, GiveTheNodesOfTheirPrograms) {
  const ParsedScene before("A a { x = 1; x = 2; }");
  const ParsedScene after("A a { x = 3; }");
  const auto found = diffPrograms(*before.program.get(), *after.program.get());
  ASSERT_EQ(found.size(), 1U);
  EXPECT_EQ(found[0].before, &before.object("a"));
  EXPECT_EQ(found[0].after, &after.object("a"));
  ASSERT_EQ(found[0].properties.size(), 1U);
  EXPECT_EQ(found[0].properties[0].before, before.object("a").findProperty("x"));
  EXPECT_EQ(found[0].properties[0].after, after.object("a").findProperty("x"));
}
