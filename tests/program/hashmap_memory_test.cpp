// Maps when memory runs out, and chains too long for a stack.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "kelp/program/hashmap.h"
#include "kelp/utils/charstring.h"
#include "tests/support/allocations.h"
#include "tests/support/failures.h"
#include "tests/support/smallstack.h"

using namespace Kelp;
using namespace KelpTest;

namespace {

using IntMap = HashMap<int, 0>;
using TextMap = HashMap<CharString, 1>;

void decimal(const int& value, char* buffer, int bufferSize) {
  std::snprintf(buffer, static_cast<size_t>(bufferSize), "%d", value);
}

std::vector<std::string> manyKeys(int number) {
  std::vector<std::string> keys;
  for (int i = 0; i < number; ++i) keys.push_back("key" + std::to_string(i));
  return keys;
}

// The order in which the recursive release of a chain pushes its entries: tail first.
template <class Map>
void expectHeadOnTop(Map& map, int number) {
  using Entry = typename Map::__internal_s;
  std::vector<Entry*> chain;
  for (int i = 0; i < number; ++i) chain.push_back(map.entryPool.newElement());
  for (size_t i = 0; i < chain.size(); ++i) {
    chain[i]->key = nullptr;
    chain[i]->next = i + 1 < chain.size() ? chain[i + 1] : nullptr;
  }
  map._destroy_chain(number > 0 ? chain[0] : nullptr);
  for (Entry* expected : chain) ASSERT_EQ(map.entryPool.newElement(), expected);
}

TEST(DestroyChain, HeadEndsOnTopOfTheFreeList) {
  for (const int number : {0, 1, 2, 3, 100}) {
    IntMap borrowing;
    expectHeadOnTop(borrowing, number);
    TextMap owning;
    expectHeadOnTop(owning, number);
  }
}

TEST(DestroyChain, OwnedKeysAndValuesAreReleased) {
  const CharString value("value");
  const int64_t before = liveAllocations();
  {
    TextMap map;
    const auto keys = manyKeys(100);
    for (const std::string& key : keys) map._insert(key.c_str(), value, nullptr);
    EXPECT_EQ(value.buffer->referenceCount, 101);
    map.erase("key7");
    EXPECT_EQ(value.buffer->referenceCount, 100);
    map.clear();
    EXPECT_EQ(value.buffer->referenceCount, 1);
    for (const std::string& key : keys) map._insert(key.c_str(), value, nullptr);
  }
  EXPECT_EQ(value.buffer->referenceCount, 1);
  EXPECT_EQ(liveAllocations(), before);
}

TEST(DestroyChain, TwoMillionEntriesOnASmallStack) {
  IntMap map;
  IntMap::__internal_s* chain = nullptr;
  for (int i = 0; i < 2'000'000; ++i) {
    IntMap::__internal_s* entry = map.entryPool.newElement();
    entry->next = chain;
    chain = entry;
  }
  const IntMap::__internal_s* head = chain;
  runOnStackOf(64 * 1024, [&] { map._destroy_chain(chain); });
  EXPECT_EQ(map.entryPool.newElement(), head);
}

TEST(DestroyChain, MapOfOneLongChainIsDestroyedOnASmallStack) {
  auto* map = new IntMap;
  for (int i = 0; i < 1'000'000; ++i) {
    IntMap::__internal_s* entry = map->entryPool.newElement();
    entry->next = map->buckets.data[0];
    map->buckets.data[0] = entry;
  }
  bool destroyed = false;
  runOnStackOf(64 * 1024, [&] {
    delete map;
    destroyed = true;
  });
  EXPECT_TRUE(destroyed);
}

TEST(HashMapMemory, DestructorOfABorrowingMapTouchesNoKey) {
  IntMap map;
  auto* key = new std::string("a key that goes before its map");
  map._insert(key->c_str(), 1, nullptr);
  delete key;  // the address sanitizer sees whoever looks there
}

TEST(HashMapMemory, FailedGrowthLosesNoKey) {
  const auto keys = manyKeys(11);
  for (int64_t n = 1;; ++n) {
    IntMap map;
    for (size_t i = 0; i < 10; ++i) map._insert(keys[i].c_str(), static_cast<int>(i), nullptr);
    if (!runsOutOfMemory(n, [&] { map._insert(keys[10].c_str(), 10, nullptr); })) break;
    EXPECT_EQ(map.buckets.count, 13);
    EXPECT_EQ(map.count, 10);
    for (size_t i = 0; i < 10; ++i) ASSERT_NE(map.find(keys[i].c_str()), nullptr);
    EXPECT_EQ(map.find(keys[10].c_str()), nullptr);
    map._insert(keys[10].c_str(), 10, nullptr);
    EXPECT_EQ(map.buckets.count, 29);
  }
}

TEST(HashMapMemory, EveryFailureOfAGrowingMapKeepsWhatWasInserted) {
  const auto keys = manyKeys(2100);
  for (int64_t n = 1;; ++n) {
    IntMap map;
    size_t inserted = 0;
    const bool failed = runsOutOfMemory(n, [&] {
      for (; inserted < keys.size(); ++inserted) {
        map._insert(keys[inserted].c_str(), static_cast<int>(inserted), nullptr);
      }
    });
    for (size_t i = 0; i < inserted; ++i) {
      ASSERT_EQ(map.find(keys[i].c_str())->value, static_cast<int>(i));
    }
    if (!failed) break;
    for (size_t i = 0; i < keys.size(); ++i) {
      ASSERT_EQ(map._insert(keys[i].c_str(), static_cast<int>(i), nullptr).entry->key,
                keys[i].c_str());
    }
  }
}

TEST(HashMapMemory, RefusedPoolBlockLeavesTheCountOneTooHigh) {
  const int64_t before = liveAllocations();
  for (const int64_t n : {1, 2}) {
    IntMap map;
    EXPECT_TRUE(runsOutOfMemory(n, [&] { map._insert("a", 1, nullptr); }));
    EXPECT_EQ(map.count, 1);
    EXPECT_EQ(map.find("a"), nullptr);
    map._insert("a", 1, nullptr);
    EXPECT_EQ(map.count, 2);
  }
  EXPECT_EQ(liveAllocations(), before);
}

TEST(HashMapMemory, FailedOwningInsertionLeaksNoKey) {
  for (int64_t n = 1;; ++n) {
    const int64_t before = liveAllocations();
    bool failed = false;
    {
      TextMap map;
      const CharString value("value");
      failed = runsOutOfMemory(n, [&] { map._insert("key", value, nullptr); });
      EXPECT_EQ(map.find("key") == nullptr, failed);
    }
    EXPECT_EQ(liveAllocations(), before) << n;
    if (!failed) break;
  }
}

TEST(HashMapMemory, FailedKeyBuffersStayAsTheyWere) {
  const std::string longKey(2000, 'x');
  for (const bool existing : {false, true}) {
    for (const int64_t n : {1, 2}) {
      const int64_t before = liveAllocations();
      {
        IntMap map;
        if (existing) map._insert(nullptr, 1, decimal);
        const int size = map.keyBufferSize;
        const char* buffer = map.newKeyBuffer;
        EXPECT_TRUE(runsOutOfMemory(n, [&] { map._insert(longKey.c_str(), 2, decimal); }));
        EXPECT_EQ(map.keyBufferSize, size);
        EXPECT_EQ(map.newKeyBuffer, buffer);
        EXPECT_EQ(map.count, existing ? 1 : 0);
        map._insert(longKey.c_str(), 2, decimal);
        EXPECT_EQ(map.keyBufferSize, 2001);
      }
      EXPECT_EQ(liveAllocations(), before);
    }
  }
}

TEST(HashMapMemory, FailedClearChangesNothing) {
  const auto keys = manyKeys(50);
  IntMap map;
  for (const std::string& key : keys) map._insert(key.c_str(), 1, nullptr);
  EXPECT_TRUE(runsOutOfMemory(1, [&] { map.clear(); }));
  EXPECT_EQ(map.count, 50);
  for (const std::string& key : keys) ASSERT_NE(map.find(key.c_str()), nullptr);
  map.clear();
  EXPECT_EQ(map.find("key1"), nullptr);
}

TEST(HashMapMemory, FailedResizeChangesNothing) {
  const auto keys = manyKeys(9);
  IntMap map;
  for (const std::string& key : keys) map._insert(key.c_str(), 1, nullptr);
  EXPECT_TRUE(runsOutOfMemory(1, [&] { map._resize_table(29, nullptr); }));
  EXPECT_EQ(map.buckets.count, 13);
  for (const std::string& key : keys) ASSERT_NE(map.find(key.c_str()), nullptr);
}

TEST(HashMapMemory, LookupsAndShortKeysNeedNoMemoryAfterWarmUp) {
  const auto keys = manyKeys(9);
  IntMap map;
  map._insert(nullptr, 0, decimal);
  const int64_t before = allocationCount();
  for (int i = 0; i < 9; ++i) map._insert(nullptr, i, decimal);
  for (const std::string& key : keys) EXPECT_EQ(map.find(key.c_str()), nullptr);
  map.erase("none");
  EXPECT_EQ(allocationCount(), before);
}

}  // namespace
