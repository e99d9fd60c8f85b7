// How a program finds objects by type and name: the same as by the keys that getNameTypeKey
// derives, although it compares them part by part.
#include <gtest/gtest.h>

#include <set>
#include <string>
#include <vector>

#include "kelp/ast/auto_ast.h"
#include "tests/support/programs.h"

using namespace Kelp;
using namespace KelpTest;

namespace {

bool isInTypedObjects(const ProgramAST& program, const ObjectAST* object) {
  for (int i = 0; i < program.typedObjects.buckets.count; ++i) {
    const auto* entry = program.typedObjects.buckets.data[i];
    for (; entry != nullptr; entry = entry->next) {
      if (entry->value == object) return true;
    }
  }
  return false;
}

// Every text of up to three of these characters, and none.
std::vector<const char*> allParts() {
  static const std::vector<std::string> texts = [] {
    std::vector<std::string> all = {""};
    for (size_t i = 0; i < all.size() && all[i].size() < 3; ++i) {
      for (const char c : {'a', '\xff', '\t'}) all.push_back(std::string(all[i]) + c);
    }
    return all;
  }();
  std::vector<const char*> parts = {nullptr};
  for (const std::string& text : texts) parts.push_back(text.c_str());
  return parts;
}

// Over a thousand objects, of which many share a bucket and many more a key.
TEST(TypedKeys, AreThoseOfTypeTabName) {
  const auto_ast<ProgramAST> program(new ProgramAST);
  std::set<std::string> keys;
  for (const char* type : allParts()) {
    for (const char* name : allParts()) {
      const std::string key =
          std::string(type != nullptr ? type : "") + '\t' + (name != nullptr ? name : "");
      const bool isNew = keys.insert(key).second;
      const int before = program->typedObjects.count;
      add(program.get(), type, name);
      ASSERT_EQ(program->typedObjects.count - before, isNew ? 1 : 0) << key;
    }
  }
  EXPECT_EQ(program->numObjects, 41 * 41);
}

// Keys that differ in one character, where the tab behind the type is, and share a bucket.
TEST(TypedKeys, OtherCharacterInPlaceOfTheTabIsAnotherKey) {
  int inOneBucket = 0;
  for (char c = 'a'; c <= 'z'; ++c) {
    const auto_ast<ProgramAST> program(new ProgramAST);
    const std::string type = std::string("P") + c + "x";
    inOneBucket += program->typedObjects._bucketOf("P\tx\ty") ==
                   program->typedObjects._bucketOf((type + "\ty").c_str());
    add(program.get(), "P", "x\ty");
    add(program.get(), type.c_str(), "y");
    EXPECT_EQ(program->typedObjects.count, 2) << c;
  }
  EXPECT_GT(inOneBucket, 0);
}

// A key is cut at the size of the buffer, which is that of the longest key seen in an addition.
TEST(TypedKeys, LongerKeyInTheMapIsCutToTheOneSearched) {
  const auto_ast<ProgramAST> program(new ProgramAST);
  const std::string key(1021, 'n');
  ObjectAST* first = add(program.get(), "P", key.c_str());
  ASSERT_EQ(program->typedObjects.keyBufferSize, 1024);
  // Behind the map's back; the names' map borrows the old characters.
  const CharString oldName = first->name;
  first->name = (key + "more").c_str();
  ObjectAST* second = add(program.get(), "P", key.c_str());
  EXPECT_FALSE(isInTypedObjects(*program.get(), second));
  ObjectAST* shorter = add(program.get(), "P", key.substr(1).c_str());
  EXPECT_TRUE(isInTypedObjects(*program.get(), shorter));
}

TEST(TypedKeys, NameChangedBehindTheMapIsFoundOnceItIsRehashed) {
  const auto_ast<ProgramAST> program(new ProgramAST);
  std::vector<ObjectAST*> objects;
  for (int i = 0; i < 10; ++i)
    objects.push_back(add(program.get(), "P", std::to_string(i).c_str()));
  // In the bucket of its old name it is not found, in its new one it keeps the key.
  const CharString oldName = objects[4]->name;
  objects[4]->type = "Q";
  objects[4]->name = "new";
  ObjectAST* added = add(program.get(), "Q", "new");
  EXPECT_EQ(program->typedObjects.buckets.count, 29);
  EXPECT_EQ(program->typedObjects.count, 10);
  EXPECT_FALSE(isInTypedObjects(*program.get(), added));
  EXPECT_EQ(program->numObjects, 11);
}

}  // namespace
