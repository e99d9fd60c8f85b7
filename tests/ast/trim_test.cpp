// Giving the texts of returned nodes back to the heap.
#include <gtest/gtest.h>
#include <malloc.h>

#include <string>
#include <vector>

#include "kelp/ast/pools.h"
#include "tests/support/allocations.h"
#include "tests/support/figures.h"
#include "tests/support/nodes.h"
#include "tests/support/trees.h"

using namespace Kelp;
using namespace KelpTest;

namespace {

constexpr size_t kTexts = 1000;

// Nodes that between them hold 1,000 long texts, in turn as an object's type, its name, a
// property's name, a string and a reference.
void takeAndReleaseLongTexts(size_t length) {
  const std::string text(length, 'x');
  std::vector<ObjectAST*> owners;
  for (size_t texts = 0; texts < kTexts; texts += 5) {
    ObjectAST* owner = object(text.c_str(), text.c_str());
    auto* string = StringExpressionAST::pool.newElement();
    string->text = text.c_str();
    auto* reference = ObjectReferenceAST::pool.newElement();
    reference->name = text.c_str();
    owner->addProperty(property(text.c_str(), binary(string, reference)), 0, 0);
    owners.push_back(owner);
  }
  for (ObjectAST* owner : owners) owner->deleteThis();
}

size_t bytesInUse() {
  const struct mallinfo2 usage = mallinfo2();
  return usage.uordblks + usage.hblkhd;
}

}  // namespace

TEST(TrimPools, GivesTheTextsOfAReleasedSceneBack) {
  const size_t length = size_t{1} << (hasTimeForAll() ? 20U : 14U);
  trimPools();
  const int64_t blocksBefore = liveAllocations();
  const size_t bytesBefore = bytesInUse();
  takeAndReleaseLongTexts(length);
  const int64_t kept = liveAllocations() - blocksBefore;
  EXPECT_GE(kept, static_cast<int64_t>(kTexts)) << "returned nodes keep their texts";
  const size_t bytesKept = bytesInUse();
  trimPools();
  const int64_t poolBlocks = 2 * 4;  // header and elements of the four classes
  EXPECT_LE(liveAllocations() - blocksBefore, poolBlocks);
  if (bytesInUse() > 0) {  // 0 where another allocator stands in for the C library's
    EXPECT_GT(bytesKept, bytesBefore + kTexts * length);
    EXPECT_LT(bytesInUse(), bytesBefore + kTexts * length / 10);
  }
}

TEST(TrimPools, LeavesNodesInUseAlone) {
  const ParsedScene scene("A a { p = \"text\" + r; }");
  ObjectAST& object = scene.object("a");
  const PropertyAST& property = *object.firstProperty;
  auto& sum = as<BinaryExpressionAST>(property.value);
  trimPools();
  EXPECT_STREQ(object.type.chars(), "A");
  EXPECT_STREQ(object.name.chars(), "a");
  EXPECT_STREQ(property.name.chars(), "p");
  EXPECT_STREQ(property.file.chars(), "scenes/test.scene");
  EXPECT_STREQ(as<StringExpressionAST>(sum.left).text.chars(), "text");
  EXPECT_STREQ(as<StringExpressionAST>(sum.left).directory.chars(), "scenes");
  EXPECT_STREQ(as<ObjectReferenceAST>(sum.right).name.chars(), "r");
}

TEST(TrimPools, ReturnedNodesKeepTheirOtherValuesAndOrder) {
  { const ParsedScene scene("A a { p = \"text\" + r; q = 7; }"); }
  trimPools();
  ObjectAST* object = ObjectAST::pool.newElement();
  EXPECT_TRUE(object->type.isNull());
  EXPECT_TRUE(object->name.isNull());
  PropertyAST* last = PropertyAST::pool.newElement();
  EXPECT_TRUE(last->name.isNull());
  EXPECT_TRUE(last->file.isNull());
  EXPECT_EQ(last->line, 1);
  StringExpressionAST* string = StringExpressionAST::pool.newElement();
  EXPECT_TRUE(string->text.isNull());
  EXPECT_TRUE(string->directory.isNull());
  EXPECT_EQ(string->ownsText, 1);
  ObjectReferenceAST* reference = ObjectReferenceAST::pool.newElement();
  EXPECT_TRUE(reference->name.isNull());
  ObjectAST::pool.freeElement(object);
  PropertyAST::pool.freeElement(last);
  string->deleteThis();
  reference->deleteThis();
}

TEST(TrimPools, TextsSharedWithAHostStayItsOwn) {
  CharString kept;
  {
    const ParsedScene scene("A a {}");
    kept = scene.object("a").name;
  }
  EXPECT_EQ(kept.buffer->referenceCount, 2);
  trimPools();
  EXPECT_EQ(kept.buffer->referenceCount, 1);
  EXPECT_STREQ(kept.chars(), "a");
}
