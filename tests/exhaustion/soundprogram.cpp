#include "tests/exhaustion/soundprogram.h"

#include <gtest/gtest.h>

#include <set>
#include <string>

#include "kelp/ast/auto_ast.h"
#include "tests/support/nodes.h"

namespace KelpTest {

using namespace Kelp;

namespace {

template <class Use>
int forEachEntry(const ProgramAST::ObjectMap& map, const Use& use) {
  int entries = 0;
  for (int i = 0; i < map.buckets.count; ++i) {
    for (const auto* entry = map.buckets.data[i]; entry != nullptr; entry = entry->next) {
      ++entries;
      use(*entry, i);
    }
  }
  return entries;
}

}  // namespace

int listLength(const ProgramAST& program) {
  std::set<const ObjectAST*> seen;
  for (const ObjectAST* o = program.firstObject; o != nullptr; o = o->next) {
    const bool first = seen.insert(o).second;
    EXPECT_TRUE(first) << "an object stands on the list twice";
    if (!first) break;
  }
  return static_cast<int>(seen.size());
}

bool isListed(const ProgramAST& program, const ObjectAST* wanted) {
  for (const ObjectAST* o = program.firstObject; o != nullptr; o = o->next) {
    if (o == wanted) return true;
  }
  return false;
}

void expectSound(const ProgramAST& program) {
  std::set<const ObjectAST*> listed;
  for (const ObjectAST* o = program.firstObject; o != nullptr; o = o->next) {
    ASSERT_TRUE(listed.insert(o).second) << "an object stands on the list twice";
  }
  const int typed = forEachEntry(program.typedObjects, [&](const auto& entry, int) {
    EXPECT_TRUE(listed.contains(entry.value));
    EXPECT_EQ(entry.key, nullptr);
  });
  EXPECT_GE(program.typedObjects.count, typed);
  const int named = forEachEntry(program.namedObjects, [&](const auto& entry, int bucket) {
    EXPECT_TRUE(listed.contains(entry.value));
    EXPECT_EQ(program.namedObjects._bucketOf(entry.key), bucket);
    EXPECT_EQ(program.namedObjects.find(entry.key), &entry);
  });
  EXPECT_GE(program.namedObjects.count, named);
}

ProgramAST* programOf(int first, int end) {
  auto_ast<ProgramAST> program(new ProgramAST);
  for (int i = first; i < end; ++i) {
    auto_ast<ObjectAST> added(object("P", std::to_string(i).c_str()));
    added->addProperty(property("x", number(i)), 0, 0);
    program->addObject(added.release(), 0, 0, nullptr);
  }
  return program.release();
}

}  // namespace KelpTest
