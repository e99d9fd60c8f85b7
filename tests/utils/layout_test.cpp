// Where pools, sequences and exceptions keep their fields: hosts map these classes.
#include <gtest/gtest.h>

#include <cstddef>
#include <cstring>

#include "kelp/ast/expressions.h"
#include "kelp/utils/exceptions.h"
#include "kelp/utils/pool.h"

// Conditionally supported for classes of mixed access, and supported by the compilers used here.
#pragma GCC diagnostic ignored "-Winvalid-offsetof"

using namespace Kelp;

namespace {

static_assert(offsetof(FastCriticalSection, mutex) == 0);
static_assert(offsetof(FastCriticalSection, attributes) == sizeof(pthread_mutex_t));
static_assert(offsetof(PtrArray<int>, data) == 0 && offsetof(PtrArray<int>, count) == 16);

struct Node {
  double value = 0;
};

struct Entry {
  void* first = nullptr;
};

template <class Field>
Field fieldAt(const void* object, size_t offset) {
  Field field;
  std::memcpy(&field, static_cast<const char*>(object) + offset, sizeof field);
  return field;
}

// What a sequence at that place says after `handedOut` elements of `size` bytes from one block.
void expectSequenceOfOneBlock(const void* sequence, int handedOut, size_t size) {
  const void* block = fieldAt<const void*>(sequence, 0);
  ASSERT_NE(block, nullptr);
  EXPECT_EQ(fieldAt<const void*>(sequence, 8), block) << "the current block is the first";
  EXPECT_EQ(fieldAt<int32_t>(block, 16), handedOut);
  EXPECT_EQ(fieldAt<int32_t>(sequence, 28), handedOut);
  EXPECT_EQ(fieldAt<int32_t>(sequence, 32), 1000) << "elements of a block";
  EXPECT_EQ(fieldAt<int64_t>(sequence, 40), 1000 * static_cast<int64_t>(size) + 32);
}

TEST(Layout, OfASequence) {
  _Sequence<double> sequence;
  for (int i = 0; i < 3; ++i) sequence.newElement();
  expectSequenceOfOneBlock(&sequence, 3, sizeof(double));
  static_assert(sizeof sequence == 48 + sizeof(FastCriticalSection), "the lock comes last");
}

TEST(Layout, OfAPoolIsFreeListLiveCountSequence) {
  Pool<Node> pool;
  PoolElement<Node>* element = pool.newElement();
  for (int i = 0; i < 4; ++i) pool.newElement();
  pool.freeElement(element);
  EXPECT_EQ(fieldAt<const void*>(&pool, 0), element);
  EXPECT_EQ(fieldAt<int32_t>(&pool, 8), 4);
  expectSequenceOfOneBlock(reinterpret_cast<const char*>(&pool) + 16, 5, sizeof(PoolElement<Node>));
}

TEST(Layout, OfASimplePoolIsTwoCountsSequenceFreeListLock) {
  SimplePool<Entry> pool;
  Entry* entry = pool.newElement();
  pool.newElement();
  pool.freeElement(entry);
  expectSequenceOfOneBlock(reinterpret_cast<const char*>(&pool) + 8, 2, sizeof(Entry));
  constexpr size_t kFreeList = 8 + sizeof(_Sequence<Entry>);
  EXPECT_EQ(fieldAt<const void*>(&pool, kFreeList), entry);
  static_assert(sizeof pool == kFreeList + 8 + sizeof(FastCriticalSection));
}

TEST(Layout, OfAResourceExceptionIsItsTextBehindItsOperations) {
  const ExceptionMsg error("text");
  EXPECT_EQ(error.what(), reinterpret_cast<const char*>(&error) + sizeof(void*));
  // The destructor takes the two first places, as it does in every class with a virtual one.
  using What = const char* (*)(const ExceptionMsg*);
  void* const* slots = fieldAt<void* const*>(&error, 0);
  EXPECT_STREQ(reinterpret_cast<What>(slots[2])(&error), "text");
}

}  // namespace
