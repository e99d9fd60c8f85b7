#include "kelp/program/hashmap.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "kelp/utils/charstring.h"

using namespace Kelp;

namespace {

using IntMap = HashMap<int, 0>;
using TextMap = HashMap<CharString, 1>;

std::vector<std::string> manyKeys(int number) {
  std::vector<std::string> keys;
  for (int i = 0; i < number; ++i) keys.push_back("key" + std::to_string(i));
  return keys;
}

template <class Map>
int entriesIn(const Map& map) {
  int entries = 0;
  for (int i = 0; i < map.buckets.count; ++i) {
    for (auto* entry = map.buckets.data[i]; entry != nullptr; entry = entry->next) ++entries;
  }
  return entries;
}

TEST(HashMap, StartsWith13EmptyBuckets) {
  const IntMap map;
  EXPECT_EQ(map.buckets.count, 13);
  EXPECT_EQ(map.buckets.step, 1000);
  EXPECT_EQ(entriesIn(map), 0);
  EXPECT_EQ(map.count, 0);
  EXPECT_EQ(map.keyBufferSize, 0);
  EXPECT_EQ(map.entryKeyBuffer, nullptr);
  EXPECT_EQ(map.newKeyBuffer, nullptr);
  EXPECT_EQ(map.find("a"), nullptr);
  EXPECT_EQ(map.find(""), nullptr);
}

TEST(HashMap, InsertionInto10EntriesGrowsTo29First) {
  const auto keys = manyKeys(11);
  IntMap map;
  for (int i = 0; i < 10; ++i) map._insert(keys[static_cast<size_t>(i)].c_str(), i, nullptr);
  EXPECT_EQ(map.buckets.count, 13);
  map._insert(keys[10].c_str(), 10, nullptr);
  EXPECT_EQ(map.buckets.count, 29);
  EXPECT_EQ(map.count, 11);
  for (int i = 0; i < 11; ++i) EXPECT_EQ(map.find(keys[static_cast<size_t>(i)].c_str())->value, i);
}

TEST(HashMap, InsertionOfAPresentKeyMayGrowTheMap) {
  const auto keys = manyKeys(10);
  IntMap map;
  for (const std::string& key : keys) map._insert(key.c_str(), 1, nullptr);
  map._insert(keys[3].c_str(), 2, nullptr);
  EXPECT_EQ(map.buckets.count, 29);
  EXPECT_EQ(map.count, 10);
}

TEST(HashMap, InsertionInto5EntriesOf29BucketsShrinksTo13First) {
  const auto keys = manyKeys(6);
  IntMap map;
  for (int i = 0; i < 5; ++i) map._insert(keys[static_cast<size_t>(i)].c_str(), i, nullptr);
  map._resize_table(29, nullptr);
  EXPECT_EQ(map.buckets.count, 29);
  map._insert(keys[5].c_str(), 5, nullptr);
  EXPECT_EQ(map.buckets.count, 13);
  for (int i = 0; i < 6; ++i) EXPECT_EQ(map.find(keys[static_cast<size_t>(i)].c_str())->value, i);
}

TEST(HashMap, EraseAppliesTheRuleToTheRemainingCount) {
  const auto keys = manyKeys(7);
  IntMap map;
  for (const std::string& key : keys) map._insert(key.c_str(), 1, nullptr);
  map._resize_table(29, nullptr);
  map.erase(keys[0].c_str());  // 6 of 29: 20 %
  EXPECT_EQ(map.buckets.count, 29);
  map.erase("no such key");
  EXPECT_EQ(map.buckets.count, 29);
  EXPECT_EQ(map.count, 6);
  map.erase(keys[1].c_str());  // 5 of 29: 17 %
  EXPECT_EQ(map.buckets.count, 13);
  EXPECT_EQ(map.count, 5);
  for (size_t i = 2; i < 7; ++i) EXPECT_NE(map.find(keys[i].c_str()), nullptr);
}

TEST(HashMap, PresentKeyKeepsItsValue) {
  IntMap map;
  const auto first = map._insert("a", 1, nullptr);
  EXPECT_EQ(first.map, &map);
  EXPECT_EQ(first.bucket, map._bucketOf("a"));
  EXPECT_EQ(first.entry->value, 1);
  const auto second = map._insert("a", 2, nullptr);
  EXPECT_EQ(second.entry, first.entry);
  EXPECT_EQ(second.bucket, first.bucket);
  EXPECT_EQ(map.find("a")->value, 1);
  EXPECT_EQ(map.count, 1);
}

TEST(HashMap, BorrowedKeyChangesWithTheCallersCharacters) {
  char key[] = "a";
  IntMap map;
  map._insert(key, 1, nullptr);
  EXPECT_EQ(map.find("a")->key, key);
  key[0] = 'b';
  EXPECT_EQ(map.find("a"), nullptr);
  map._resize_table(13, nullptr);
  EXPECT_NE(map.find("b"), nullptr);
}

TEST(HashMap, OwnedKeyDoesNot) {
  char key[] = "a";
  TextMap map;
  map._insert(key, CharString("value"), nullptr);
  key[0] = 'b';
  ASSERT_NE(map.find("a"), nullptr);
  EXPECT_NE(map.find("a")->key, key);
  EXPECT_STREQ(map.find("a")->value.chars(), "value");
  EXPECT_EQ(map.find("b"), nullptr);
}

TEST(HashMap, EmptyKeyLivesInTheBucketOfItsHash) {
  IntMap map;
  EXPECT_EQ(map._bucketOf(""), static_cast<int>(0xdeadbeefU % 13));
  map._insert("", 1, nullptr);
  EXPECT_NE(map.find(""), nullptr);
  EXPECT_EQ(map.find(nullptr), nullptr);
}

TEST(HashMap, NullKeyLivesInBucket0AndEqualsOnlyNull) {
  IntMap map;
  EXPECT_EQ(map._bucketOf(nullptr), 0);
  map._insert(nullptr, 1, nullptr);
  const auto keys = manyKeys(200);  // dozens of them land in bucket 0 beside it
  for (const std::string& key : keys) EXPECT_EQ(map.find(key.c_str()), nullptr);
  for (const std::string& key : keys) map._insert(key.c_str(), 2, nullptr);
  ASSERT_NE(map.find(nullptr), nullptr);
  EXPECT_EQ(map.find(nullptr)->value, 1);
  EXPECT_EQ(map._insert(nullptr, 3, nullptr).entry->value, 1);
  for (const std::string& key : keys) map.erase(key.c_str());
  EXPECT_EQ(map.count, 1);
  map.erase(nullptr);
  EXPECT_EQ(map.find(nullptr), nullptr);
}

TEST(HashMap, NullAndEmptyKeyInOneBucketStayApart) {
  IntMap map;
  map._insert(nullptr, 1, nullptr);
  map._insert("", 2, nullptr);
  EXPECT_EQ(map._findInBucket(0, "", nullptr), nullptr);
  EXPECT_EQ(map._findInBucket(map._bucketOf(""), nullptr, nullptr), nullptr);
}

TEST(HashMap, OwnedNullKeyStaysNull) {
  TextMap map;
  map._insert(nullptr, CharString("value"), nullptr);
  ASSERT_NE(map.find(nullptr), nullptr);
  EXPECT_EQ(map.find(nullptr)->key, nullptr);
  map.erase(nullptr);
  EXPECT_EQ(map.count, 0);
}

TEST(HashMap, GrowsAndShrinksAlongTheListAndLosesNothing) {
  const int kMany = 3000;
  const auto keys = manyKeys(kMany);
  IntMap map;
  size_t position = 0;
  for (int i = 0; i < kMany; ++i) {
    if (int64_t{i} * 100 / recommended_hash_sizes[position] > 75) ++position;
    map._insert(keys[static_cast<size_t>(i)].c_str(), i, nullptr);
    ASSERT_EQ(map.buckets.count, recommended_hash_sizes[position]) << i;
  }
  for (int i = 0; i < kMany; ++i) {
    ASSERT_EQ(map.find(keys[static_cast<size_t>(i)].c_str())->value, i);
  }
  for (int i = kMany; i-- > 0;) {
    map.erase(keys[static_cast<size_t>(i)].c_str());
    if (i * 100 / recommended_hash_sizes[position] <= 19 && position > 0) --position;
    ASSERT_EQ(map.buckets.count, recommended_hash_sizes[position]) << i;
    ASSERT_EQ(map.count, i);
  }
  EXPECT_EQ(entriesIn(map), 0);
}

TEST(HashMap, NewEntryIsTheHeadOfItsBucket) {
  IntMap map;
  const auto keys = manyKeys(9);
  for (const std::string& key : keys) {
    const auto inserted = map._insert(key.c_str(), 1, nullptr);
    EXPECT_EQ(map.buckets.data[inserted.bucket], inserted.entry);
  }
}

TEST(HashMap, RehashVisitsBucketsInOrderAndPushesAtTheHead) {
  IntMap map;
  const auto keys = manyKeys(9);
  for (const std::string& key : keys) map._insert(key.c_str(), 1, nullptr);
  std::vector<std::vector<const IntMap::__internal_s*>> model(29);
  for (int i = 0; i < 13; ++i) {
    for (const auto* entry = map.buckets.data[i]; entry != nullptr; entry = entry->next) {
      auto& chain = model[hashlittle(entry->key, std::strlen(entry->key)) % 29];
      chain.insert(chain.begin(), entry);
    }
  }
  map._resize_table(29, nullptr);
  for (int i = 0; i < 29; ++i) {
    const auto* entry = map.buckets.data[i];
    for (const auto* expected : model[static_cast<size_t>(i)]) {
      ASSERT_EQ(entry, expected);
      entry = entry->next;
    }
    EXPECT_EQ(entry, nullptr);
  }
}

TEST(HashMap, ClearGivesTheBornStateBackAndKeepsPoolBlocks) {
  const auto keys = manyKeys(2500);
  IntMap map;
  for (const std::string& key : keys) map._insert(key.c_str(), 1, nullptr);
  map._reserveKeyBuffers(0);
  map.clear();
  EXPECT_EQ(map.buckets.count, 13);
  EXPECT_EQ(entriesIn(map), 0);
  EXPECT_EQ(map.count, 0);
  EXPECT_EQ(map.keyBufferSize, 0);
  EXPECT_EQ(map.entryKeyBuffer, nullptr);
  EXPECT_EQ(map.newKeyBuffer, nullptr);
  EXPECT_EQ(map.entryPool.blockCount(), 3);
  for (const std::string& key : keys) map._insert(key.c_str(), 1, nullptr);
  EXPECT_EQ(map.entryPool.blockCount(), 3);
}

TEST(HashMap, ErasedEntryIsTheNextTaken) {
  IntMap map;
  map._insert("a", 1, nullptr);
  const auto* entry = map._insert("b", 2, nullptr).entry;
  map.erase("b");
  EXPECT_EQ(map._insert("c", 3, nullptr).entry, entry);
  EXPECT_EQ(map.find("c")->value, 3);
}

void textOfNumber(const int& value, char* buffer, int bufferSize) {
  std::snprintf(buffer, static_cast<size_t>(bufferSize), "number %d", value);
}

TEST(HashMap, StoredKeysGiveWayToDerivedOnesWhenTheMapIsResized) {
  IntMap map;
  for (int i = 0; i < 10; ++i) map._insert(&"any"[i % 3], i, nullptr);
  map._resize_table(29, textOfNumber);
  for (const char* key : {"number 0", "number 1", "number 2"}) {
    EXPECT_NE(map._findInBucket(map._bucketOf(key), key, textOfNumber), nullptr);
  }
}

TEST(HashMap, KeyFunctionDerivesKeysAndStoresNone) {
  IntMap map;
  for (int i = 0; i < 100; ++i) {
    const auto inserted = map._insert(nullptr, i, textOfNumber);
    EXPECT_EQ(inserted.entry->key, nullptr);
    EXPECT_EQ(inserted.entry->value, i);
  }
  EXPECT_EQ(map.count, 100);
  EXPECT_EQ(map._insert("the argument only sizes", 50, textOfNumber).entry->value, 50);
  EXPECT_EQ(map.count, 100);
  const char key[] = "number 42";
  const auto* found = map._findInBucket(map._bucketOf(key), key, textOfNumber);
  ASSERT_NE(found, nullptr);
  EXPECT_EQ(found->value, 42);
}

TEST(HashMap, KeyBuffersGrowWithTheArgumentAndAreKept) {
  IntMap map;
  map._insert(nullptr, 1, textOfNumber);
  EXPECT_EQ(map.keyBufferSize, 1024);
  const char* buffer = map.newKeyBuffer;
  map._insert(std::string(1023, 'x').c_str(), 2, textOfNumber);
  EXPECT_EQ(map.keyBufferSize, 1024);
  EXPECT_EQ(map.newKeyBuffer, buffer);
  map._insert(std::string(1024, 'x').c_str(), 3, textOfNumber);
  EXPECT_EQ(map.keyBufferSize, 1025);
  map._insert("short", 4, textOfNumber);
  EXPECT_EQ(map.keyBufferSize, 1025);
  EXPECT_EQ(map.count, 4);
}

int keysDerived = 0;

void countedTextOfNumber(const int& value, char* buffer, int bufferSize) {
  ++keysDerived;
  textOfNumber(value, buffer, bufferSize);
}

TEST(HashMap, LookupDerivesEachKeyOfItsBucketOnce) {
  IntMap map;
  for (int i = 0; i < 9; ++i) map._insert(nullptr, i, countedTextOfNumber);
  for (int i = 0; i < 13; ++i) {
    int chain = 0;
    for (auto* entry = map.buckets.data[i]; entry != nullptr; entry = entry->next) ++chain;
    keysDerived = 0;
    EXPECT_EQ(map._findInBucket(i, "no such key", countedTextOfNumber), nullptr);
    EXPECT_EQ(keysDerived, chain);
  }
}

TEST(LoadRule, StepsAbove75AndAt19PercentOrLess) {
  struct Row {
    int entries;
    int buckets;
    int wanted;
  };
  const Row rows[] = {
      {0, 13, 13},
      {9, 13, 13},
      {10, 13, 29},
      {5, 29, 13},
      {6, 29, 29},
      {23, 29, 59},
      {22, 29, 29},
      {0, 29, 13},
      {0, 1104691373, 552345671},
      {21'474'836, 34521589, 34521589},
      {21'474'837, 34521589, 34521589},
      {21'474'836, 17260781, 34521589},
      {21'474'837, 17260781, 34521589},
      {2'000'000'000, 1104691373, 1104691373},
      {2'147'483'647, 13, 29},
  };
  for (const Row& row : rows) {
    EXPECT_EQ(recommendedBucketCount(row.entries, row.buckets), row.wanted)
        << row.entries << " in " << row.buckets;
  }
}

TEST(LoadRule, BucketCountOffTheListStepsToItsNeighbours) {
  EXPECT_EQ(recommendedBucketCount(0, 1000), 521);
  EXPECT_EQ(recommendedBucketCount(1000, 1000), 1049);
  EXPECT_EQ(recommendedBucketCount(100, 7), 13);
}

}  // namespace
