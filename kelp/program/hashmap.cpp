#include "kelp/program/hashmap.h"

namespace Kelp {

int recommendedBucketCount(int entries, int bucketCount) {
  // 64 bits: a product of 32 would overflow at 21,474,837 entries and make the map shrink.
  const int64_t load = int64_t{entries} * 100 / bucketCount;
  const int32_t* smallest = std::begin(recommended_hash_sizes);
  const int32_t* end = std::end(recommended_hash_sizes);
  if (load > 75) {
    const int32_t* current = std::find(smallest, end, bucketCount);
    return end - current > 1 ? current[1] : bucketCount;
  }
  if (load <= 19 && bucketCount > *smallest) {
    const int32_t* current = std::find(smallest, end, bucketCount);
    return current[-1];
  }
  return bucketCount;
}

}  // namespace Kelp
