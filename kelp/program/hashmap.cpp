#include "kelp/program/hashmap.h"

namespace Kelp {

int recommendedBucketCount(int entries, int bucketCount) {
  // 64 bits: a product of 32 would overflow at 21,474,837 entries and make the map shrink.
  const int64_t load = int64_t{entries} * 100 / bucketCount;
  const int32_t* smallest = std::begin(recommended_hash_sizes);
  const int32_t* end = std::end(recommended_hash_sizes);
  if (load > 75) {
    const int32_t* larger = std::upper_bound(smallest, end, bucketCount);
    return larger != end ? *larger : bucketCount;
  }
  if (load <= 19 && bucketCount > *smallest) {
    return std::lower_bound(smallest, end, bucketCount)[-1];
  }
  return bucketCount;
}

}  // namespace Kelp
