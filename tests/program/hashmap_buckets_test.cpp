// The table of buckets as its readers see it.
#include <gtest/gtest.h>

#include "kelp/program/hashmap.h"

using namespace Kelp;

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
