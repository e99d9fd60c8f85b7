// The table of buckets as its readers see it.
#include <gtest/gtest.h>

#include <string>

#include "kelp/program/hashmap.h"

using namespace Kelp;

TEST(HashMapBuckets, EntriesComeFromBlocksOfAThousand) {
  HashMap<int, 1> map;
  for (int i = 0; i < 1000; ++i) map._insert(std::to_string(i).c_str(), i, nullptr);
  EXPECT_EQ(map.entryPool.blockCount(), 1);
  map._insert("one more", 1, nullptr);
  EXPECT_EQ(map.entryPool.blockCount(), 2);
}

TEST(HashMapBuckets, CapacityAndCountAreTheNumberOfBuckets) {
  HashMap<int, 0> map;
  EXPECT_EQ(map.buckets.count, 13);
  EXPECT_EQ(map.buckets.capacity, 13);
  map._resize_table(29, nullptr);
  EXPECT_EQ(map.buckets.count, 29);
  EXPECT_EQ(map.buckets.capacity, 29);
  map.clear();
  EXPECT_EQ(map.buckets.count, 13);
  EXPECT_EQ(map.buckets.capacity, 13);
}
