#include "kelp/program/hashmap.h"

namespace Kelp {

int recommendedBucketCount(int entries, int bucketCount) {
  // 64 bits: a product of 32 would overflow at 21,474,837 entries and make the map shrink.
  // The load is entries * 100 / bucketCount, truncated; products compare the same without dividing.
  const int64_t filled = int64_t{entries} * 100;
  const bool isFull = filled >= int64_t{bucketCount} * 76;
  const bool isEmpty = filled < int64_t{bucketCount} * 20;
  const int32_t* smallest = std::begin(recommended_hash_sizes);
  const int32_t* end = std::end(recommended_hash_sizes);
  if (isFull) {
    const int32_t* larger = std::upper_bound(smallest, end, bucketCount);
    return larger != end ? *larger : bucketCount;
  }
  if (isEmpty && bucketCount > *smallest) {
    return std::lower_bound(smallest, end, bucketCount)[-1];
  }
  return bucketCount;
}

}  // namespace Kelp
