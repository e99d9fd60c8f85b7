// Filtering that does not come to its end.
#include <gtest/gtest.h>

#include "tests/support/balance.h"
#include "tests/support/filters.h"
#include "tests/support/sexpression.h"

using namespace Kelp;
using namespace KelpTest;

namespace {

constexpr int kObjects = 30;

std::string manyObjects() {
  std::string text;
  for (int i = 0; i < kObjects; ++i) {
    const std::string n = std::to_string(i);
    text += "A o" + n + " { x = o" + n + "; }";
  }
  return text;
}

// Every object is found under its own name or, if its rename was cut short, under none.
void expectUsable(FilteredScene& scene) {
  for (ObjectAST* object : objectsInTextOrder(*scene.program.get())) {
    const ObjectAST* found = scene.program->getObject(object->name.chars());
    if (found != nullptr) {
      EXPECT_EQ(found, object);
    }
  }
  FunctionFilter keep([](const CharString&, CharString&, void*) { return 1; });
  scene.filter(keep);
  EXPECT_FALSE(sexpression(*scene.program.get()).empty());
}

FunctionFilter renamingFilter() {
  return FunctionFilter([](const CharString&, CharString& name, void*) {
    char longName[80];
    std::snprintf(longName, sizeof longName, "a new name that is long enough for the heap %s",
                  name.chars());
    name = longName;
    return 0;
  });
}

}  // namespace

TEST(FilterFailure, WhatTheFilterThrowsPassesThrough) {
  for (int k = 0; k < kObjects; ++k) {
    SCOPED_TRACE(k);
    expectBalanced([k] {
      FilteredScene scene(manyObjects());
      int seen = 0;
      FunctionFilter filter([&](const CharString&, CharString& name, void*) {
        if (seen++ == k) throw 5;
        name = (std::string("new_") + name.chars()).c_str();
        return 0;
      });
      EXPECT_THROW(scene.filter(filter), int);
      // Newest first: the last k objects were renamed and marked, and no reference follows yet.
      const auto objects = objectsInTextOrder(*scene.program.get());
      for (int i = 0; i < kObjects; ++i) {
        const bool renamed = i >= kObjects - k;
        const std::string name = "o" + std::to_string(i);
        const auto& object = *objects[static_cast<size_t>(i)];
        EXPECT_EQ(object.name.chars(), (renamed ? "new_" : "") + name);
        EXPECT_EQ(object.filteredOut, renamed ? 1 : 0);
        EXPECT_EQ(scene.program->getObject(object.name.chars()), &object);
        EXPECT_EQ(scene.references()[static_cast<size_t>(i)], name);
      }
      expectUsable(scene);
    });
  }
}

TEST(FilterFailure, MemoryThatRunsOutAnywhereLeavesAUsableProgram) {
  for (const bool persistent : {false, true}) {
    bool failed = true;
    for (int64_t n = 1; failed; ++n) {
      SCOPED_TRACE(n);
      expectBalanced([&] {
        FilteredScene scene(manyObjects());
        FunctionFilter filter = renamingFilter();
        bool thrown = false;
        {
          const FailingAllocation failing(n, persistent);
          try {
            scene.source.parser.doFilter(scene.program.get(), &filter);
          } catch (const std::bad_alloc&) {
            thrown = true;
          } catch (const ExceptionMsg&) {
            thrown = true;
          }
          failed = failing.hasFailed();
        }
        EXPECT_EQ(thrown, failed);
        expectUsable(scene);
      });
    }
  }
}
