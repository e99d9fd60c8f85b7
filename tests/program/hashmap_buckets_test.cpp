// The table of buckets as its readers see it.
#include <gtest/gtest.h>

#include <algorithm>
#include <iterator>
#include <string>

#include "kelp/program/hashmap.h"

using namespace Kelp;

TEST(HashMapBuckets, NumbersOfBucketsAreTheseAndNoOthers) {
  const int32_t numbers[] = {
      13,      29,      59,       127,      257,      521,       1049,      2099,      4201,
      8419,    16843,   33703,    67409,    134837,   269683,    539389,    1078787,   2157587,
      4315183, 8630387, 17260781, 34521589, 69043189, 138086407, 276172823, 552345671, 1104691373};
  EXPECT_TRUE(std::equal(std::begin(numbers), std::end(numbers), std::begin(recommended_hash_sizes),
                         std::end(recommended_hash_sizes)));
}

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
