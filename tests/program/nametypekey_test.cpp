#include <gtest/gtest.h>

#include <cstring>
#include <string>

#include "kelp/ast/auto_ast.h"
#include "kelp/program/programast.h"
#include "tests/support/nodes.h"

using namespace Kelp;

namespace {

// The key as a buffer of that size receives it; the bytes behind the size must stay.
std::string keyOf(const char* type, const char* name, int size) {
  const auto_ast<ObjectAST> object(KelpTest::object(type, name));
  char buffer[64];
  std::memset(buffer, '#', sizeof buffer);
  ObjectAST* const pointer = object.get();
  getNameTypeKey(pointer, buffer, size);
  const size_t reserved = size > 1 ? static_cast<size_t>(size) : 1;
  for (size_t i = reserved; i < sizeof buffer; ++i) EXPECT_EQ(buffer[i], '#') << size << ' ' << i;
  return buffer;
}

TEST(NameTypeKey, IsTypeTabName) {
  struct Row {
    const char* type;
    const char* name;
    const char* key;
  };
  const Row rows[] = {{"Type", "name", "Type\tname"}, {"Type", "", "Type\t"},
                      {"Type", nullptr, "Type\t"},    {"", "name", "\tname"},
                      {nullptr, "name", "\tname"},    {nullptr, nullptr, "\t"},
                      {"a\tb", "c", "a\tb\tc"},       {"a", "b\tc", "a\tb\tc"}};
  for (const Row& row : rows) EXPECT_EQ(keyOf(row.type, row.name, 64), row.key);
}

TEST(NameTypeKey, IsCutToTheBuffer) {
  const std::string whole = "Type\tname";
  for (int size = 1; size <= 12; ++size) {
    EXPECT_EQ(keyOf("Type", "name", size), whole.substr(0, static_cast<size_t>(size) - 1)) << size;
  }
}

TEST(NameTypeKey, TerminatesWhateverTheSize) {
  for (const int size : {0, -1, -1000, 1}) EXPECT_EQ(keyOf("Type", "name", size), "");
}

TEST(NameTypeKey, FullTypeLeavesNoRoomForTheRest) {
  EXPECT_EQ(keyOf("Type", "name", 5), "Type");
  EXPECT_EQ(keyOf("", "name", 2), "\t");
  EXPECT_EQ(keyOf(nullptr, "name", 3), "\tn");
}

}  // namespace
