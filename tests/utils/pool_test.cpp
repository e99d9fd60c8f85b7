#include "kelp/utils/pool.h"

#include <gtest/gtest.h>

#include <new>
#include <string>
#include <type_traits>
#include <vector>

#include "kelp/utils/charstring.h"
#include "tests/support/allocations.h"
#include "tests/support/failures.h"
#include "tests/support/placement.h"

using Kelp::_Sequence;
using Kelp::ExceptionMsg;
using Kelp::Pool;
using Kelp::PoolElement;
using Kelp::SimplePool;
using KelpTest::FailingAllocation;
using KelpTest::liveAllocations;
using KelpTest::Placed;

namespace {

struct Node {
  virtual ~Node() { ++destructions; }
  virtual int kind() const { return 1; }
  Node() { ++constructions; }
  int value = 0;
  Node* link = nullptr;
  static int constructions;
  static int destructions;
};
int Node::constructions = 0;
int Node::destructions = 0;

struct Entry {
  void* first = nullptr;
  int value = 0;
};

static_assert(!std::is_copy_constructible_v<_Sequence<int>>);
static_assert(!std::is_copy_assignable_v<_Sequence<int>>);
static_assert(!std::is_copy_constructible_v<Pool<Node>>);
static_assert(!std::is_copy_constructible_v<SimplePool<Entry>>);
static_assert(std::is_base_of_v<Node, PoolElement<Node>>);

constexpr int64_t kHeaderBytes = sizeof(_Sequence<int>::Block);
static_assert(kHeaderBytes == 2 * sizeof(void*) + 2 * sizeof(int) + sizeof(void*));

const char* const kNoMemory = "[_SequenceBlock] Could not allocate memory";

// The text that the request is refused with when its n-th heap request fails.
template <class Request>
std::string refusal(int64_t n, Request request) {
  const FailingAllocation failing(n);
  try {
    request();
  } catch (const ExceptionMsg& error) {
    return error.what();
  }
  return "nothing thrown";
}

TEST(Pool, StartsWithoutBlocks) {
  const int64_t before = liveAllocations();
  const Pool<Node> pool;
  EXPECT_EQ(pool.liveCount(), 0);
  EXPECT_EQ(pool.blockCount(), 0);
  EXPECT_EQ(pool.bytesAllocated(), 0);
  EXPECT_EQ(liveAllocations(), before);
}

TEST(Pool, Element1001OpensTheSecondBlock) {
  constexpr int64_t kBlockBytes = 1000 * int64_t{sizeof(PoolElement<Node>)} + kHeaderBytes;
  Pool<Node> pool;
  for (int i = 0; i < 1000; ++i) pool.newElement();
  EXPECT_EQ(pool.blockCount(), 1);
  EXPECT_EQ(pool.bytesAllocated(), kBlockBytes);
  pool.newElement();
  EXPECT_EQ(pool.blockCount(), 2);
  EXPECT_EQ(pool.bytesAllocated(), 2 * kBlockBytes);
  EXPECT_EQ(pool.liveCount(), 1001);
}

TEST(Pool, BlockWhoseElementsAreRefusedLeavesNothing) {
  struct Refusing {
    static Node* allocate(int) { throw std::bad_alloc(); }
    static void deallocate(Node*) noexcept {}
  };
  _Sequence<Node, 1000, true, false, Refusing> sequence;
  const int64_t before = liveAllocations();
  EXPECT_THROW(sequence.newElement(), std::bad_alloc);
  EXPECT_EQ(liveAllocations(), before);
  EXPECT_EQ(sequence.blockCount(), 0);
}

TEST(Pool, ElementsOfABlockComeInOrderAndFresh) {
  Pool<Node> pool;
  PoolElement<Node>* first = pool.newElement();
  for (int i = 1; i < 1000; ++i) {
    const PoolElement<Node>* element = pool.newElement();
    ASSERT_EQ(element, first + i);
    ASSERT_EQ(element->value, 0);
    ASSERT_EQ(element->link, nullptr);
    ASSERT_EQ(element->nextFree, nullptr);
    ASSERT_EQ(element->kind(), 1);
  }
}

TEST(Pool, ABlockIsConstructedWholeAndOnce) {
  Node::constructions = 0;
  Pool<Node> pool;
  Node* element = pool.newElement();
  EXPECT_EQ(Node::constructions, 1000);
  for (int i = 0; i < 10; ++i) {
    pool.freeElement(element);
    element = pool.newElement();
  }
  EXPECT_EQ(Node::constructions, 1000);
}

TEST(Pool, ReturnedElementComesNextAsItWasLeft) {
  Pool<Node> pool;
  pool.newElement();
  PoolElement<Node>* element = pool.newElement();
  const PoolElement<Node>* fresh = element + 1;
  element->value = 42;
  pool.freeElement(element);
  EXPECT_EQ(pool.liveCount(), 1);
  EXPECT_EQ(pool.newElement(), element);
  EXPECT_EQ(element->value, 42);
  EXPECT_EQ(element->nextFree, nullptr);
  EXPECT_EQ(pool.liveCount(), 2);
  EXPECT_EQ(pool.newElement(), fresh) << "the free list is empty again";
}

TEST(Pool, LastReturnedIsFirstTaken) {
  Pool<Node> pool;
  std::vector<PoolElement<Node>*> taken;
  for (int i = 0; i < 2500; ++i) taken.push_back(pool.newElement());
  for (PoolElement<Node>* element : taken) pool.freeElement(element);
  EXPECT_EQ(pool.liveCount(), 0);
  EXPECT_EQ(taken.back()->nextFree, taken[2498]);
  EXPECT_EQ(taken.front()->nextFree, nullptr);
  for (size_t i = taken.size(); i-- > 0;) {
    ASSERT_EQ(pool.newElement(), taken[i]);
    ASSERT_EQ(taken[i]->nextFree, nullptr);
  }
  EXPECT_EQ(pool.blockCount(), 3);
}

TEST(Pool, UnusedElementsAreDestroyedAndTheirBlocksFreed) {
  const int64_t before = liveAllocations();
  Pool<Node> pool;
  for (int round = 0; round < 2; ++round) {
    Node::destructions = 0;
    std::vector<PoolElement<Node>*> taken;
    for (int i = 0; i < 1500; ++i) taken.push_back(pool.newElement());
    for (PoolElement<Node>* element : taken) pool.freeElement(element);
    taken = std::vector<PoolElement<Node>*>();
    pool.freeUnused();
    EXPECT_EQ(Node::destructions, 1500) << "those that were never taken own nothing";
    EXPECT_EQ(pool.blockCount(), 0);
    EXPECT_EQ(liveAllocations(), before);
  }
}

TEST(Pool, WithAnElementInUseNothingIsFreed) {
  Pool<Node> pool;
  Node* element = pool.newElement();
  pool.freeElement(pool.newElement());
  Node::destructions = 0;
  pool.freeUnused();
  EXPECT_EQ(Node::destructions, 0);
  EXPECT_EQ(pool.blockCount(), 1);
  EXPECT_EQ(pool.liveCount(), 1);
  pool.freeElement(element);
}

TEST(Pool, DestructorFreesBlocksInUseAndDestroysNoElement) {
  const int64_t before = liveAllocations();
  Node::destructions = 0;
  {
    Pool<Node> pool;
    for (int i = 0; i < 2001; ++i) pool.newElement();
  }
  EXPECT_EQ(liveAllocations(), before);
  EXPECT_EQ(Node::destructions, 0);
}

TEST(Pool, RefusedBlockLeavesTheLiveCountOneTooHigh) {
  Pool<Node> pool;
  const int64_t before = liveAllocations();
  EXPECT_EQ(refusal(1, [&] { pool.newElement(); }), kNoMemory) << "block header";
  EXPECT_EQ(refusal(2, [&] { pool.newElement(); }), kNoMemory) << "elements";
  EXPECT_EQ(liveAllocations(), before);
  EXPECT_EQ(pool.liveCount(), 2);
  EXPECT_EQ(pool.blockCount(), 0);
  EXPECT_EQ(pool.bytesAllocated(), 0);
  EXPECT_NE(pool.newElement(), nullptr);
  EXPECT_EQ(pool.blockCount(), 1);
}

TEST(Pool, RefusedSecondBlockLeavesTheFirst) {
  Pool<Node> pool;
  PoolElement<Node>* first = pool.newElement();
  for (int i = 1; i < 1000; ++i) pool.newElement();
  for (const int64_t n : {1, 2}) {
    EXPECT_EQ(refusal(n, [&] { pool.newElement(); }), kNoMemory);
    EXPECT_EQ(pool.blockCount(), 1);
  }
  pool.freeElement(first);
  EXPECT_EQ(pool.newElement(), first);
  pool.newElement();
  EXPECT_EQ(pool.blockCount(), 2);
}

TEST(Sequence, BlocksAreLinkedBothWays) {
  Placed<_Sequence<int>> sequence(0x5A);
  for (int i = 0; i < 2001; ++i) *sequence->newElement() = i;
  using Block = _Sequence<int>::Block;
  Block* first = sequence.fieldAt<Block*>(0);
  Block* current = sequence.fieldAt<Block*>(sizeof(void*));
  ASSERT_NE(first, nullptr);
  Block* second = first->next;
  ASSERT_NE(second, nullptr);
  Block* third = second->next;
  ASSERT_NE(third, nullptr);
  EXPECT_EQ(third->next, nullptr);
  EXPECT_EQ(first->previous, nullptr);
  EXPECT_EQ(second->previous, first);
  EXPECT_EQ(third->previous, second);
  EXPECT_EQ(current, third);
  EXPECT_EQ(first->used, 1000);
  EXPECT_EQ(second->used, 1000);
  EXPECT_EQ(third->used, 1);
  for (const Block* block : {first, second, third}) EXPECT_EQ(block->capacity, 1000);
  EXPECT_EQ(second->elements[0], 1000);
  EXPECT_EQ(sequence->liveCount(), 2001);
  sequence.destroy();
}

TEST(Sequence, DestructorFreesAllBlocksAndLeavesNothing) {
  const int64_t before = liveAllocations();
  Placed<_Sequence<int>> sequence(0x5A);
  for (int i = 0; i < 2001; ++i) sequence->newElement();
  EXPECT_EQ(liveAllocations(), before + 6);
  sequence.destroy();
  EXPECT_EQ(liveAllocations(), before);
  for (const size_t pointer : {0U, 8U, 16U}) EXPECT_EQ(sequence.fieldAt<void*>(pointer), nullptr);
  EXPECT_EQ(sequence.fieldAt<int>(24), 0) << "first counter";
  EXPECT_EQ(sequence.fieldAt<int>(28), 0) << "elements handed out";
  EXPECT_EQ(sequence.fieldAt<int64_t>(40), 0) << "bytes";
}

TEST(Sequence, RestartHandsOutTheSameElementsAgain) {
  _Sequence<int> sequence;
  std::vector<int*> taken;
  for (int i = 0; i < 1500; ++i) taken.push_back(sequence.newElement());
  for (int round = 0; round < 3; ++round) {
    sequence.restart();
    EXPECT_EQ(sequence.liveCount(), 0);
    for (int* element : taken) ASSERT_EQ(sequence.newElement(), element);
    EXPECT_EQ(sequence.blockCount(), 2);
  }
}

TEST(Sequence, RestartAfterAShortUseKeepsLaterBlocksUsable) {
  _Sequence<int> sequence;
  for (int i = 0; i < 2500; ++i) sequence.newElement();
  sequence.restart();
  sequence.newElement();
  sequence.restart();
  for (int i = 0; i < 2500; ++i) *sequence.newElement() = i;
  EXPECT_EQ(sequence.blockCount(), 3);
  std::vector<int> read;
  sequence.forEachRun(
      [&](const int* run, int number) { read.insert(read.end(), run, run + number); });
  ASSERT_EQ(read.size(), 2500U);
  for (int i = 0; i < 2500; ++i) ASSERT_EQ(read[static_cast<size_t>(i)], i);
}

TEST(Sequence, FreedBlocksLeaveItAsNew) {
  _Sequence<Kelp::CharString> sequence;
  for (int i = 0; i < 1001; ++i) sequence.newElement();
  sequence.freeBlocks();
  EXPECT_EQ(sequence.blockCount(), 0);
  EXPECT_EQ(sequence.bytesAllocated(), 0);
  EXPECT_TRUE(sequence.newElement()->isNull());
  EXPECT_EQ(sequence.blockCount(), 1);
}

TEST(SimplePool, ReturnedElementsComeBackLastInFirstOut) {
  SimplePool<Entry> pool;
  std::vector<Entry*> taken;
  for (int i = 0; i < 1001; ++i) {
    taken.push_back(pool.newElement());
    taken.back()->value = i;
  }
  EXPECT_EQ(pool.blockCount(), 2);
  EXPECT_GT(pool.bytesAllocated(), 2000 * int64_t{sizeof(Entry)});
  for (Entry* entry : taken) pool.freeElement(entry);
  for (size_t i = taken.size(); i-- > 0;) {
    ASSERT_EQ(pool.newElement(), taken[i]);
    ASSERT_EQ(taken[i]->value, static_cast<int>(i));
  }
}

TEST(SimplePool, CountsWhatIsTakenAndNotReturned) {
  SimplePool<Entry> pool;
  Entry* first = pool.newElement();
  pool.newElement();
  EXPECT_EQ(pool.liveCount(), 2);
  pool.freeElement(first);
  EXPECT_EQ(pool.liveCount(), 1);
  EXPECT_EQ(pool.newElement(), first);
  EXPECT_EQ(pool.liveCount(), 2);
}

TEST(SimplePool, ElementsSmallerThanALinkDoNotTouchTheirNeighbours) {
  struct Small {
    char value;
  };
  SimplePool<Small> pool;
  Small* first = pool.newElement();
  Small* second = pool.newElement();
  second->value = 77;
  pool.freeElement(first);
  EXPECT_EQ(second->value, 77);
  EXPECT_EQ(pool.newElement(), first);
}

TEST(SimplePool, FreeListIsLinkedThroughTheFirstWord) {
  SimplePool<Entry> pool;
  Entry* first = pool.newElement();
  Entry* second = pool.newElement();
  pool.freeElement(first);
  EXPECT_EQ(first->first, nullptr);
  pool.freeElement(second);
  EXPECT_EQ(second->first, first);
}

TEST(SimplePool, RefusedBlockIsReported) {
  SimplePool<Entry> pool;
  const int64_t before = liveAllocations();
  EXPECT_EQ(refusal(1, [&] { pool.newElement(); }), kNoMemory);
  EXPECT_EQ(refusal(2, [&] { pool.newElement(); }), kNoMemory);
  EXPECT_EQ(liveAllocations(), before);
  EXPECT_NE(pool.newElement(), nullptr);
}

TEST(SimplePool, DestructorFreesBlocksAndLeavesNothing) {
  using Entries = SimplePool<Entry>;
  constexpr size_t kSequence = 8;
  constexpr size_t kFreeList = kSequence + sizeof(_Sequence<Entry>);
  const int64_t before = liveAllocations();
  Placed<Entries> pool(0x5A);
  Entry* entry = pool->newElement();
  pool->freeElement(entry);
  EXPECT_EQ(pool.fieldAt<void*>(kFreeList), entry);
  pool.destroy();
  EXPECT_EQ(liveAllocations(), before);
  EXPECT_EQ(pool.fieldAt<int64_t>(0), 0) << "integer pair";
  EXPECT_EQ(pool.fieldAt<void*>(kSequence), nullptr) << "first block";
  EXPECT_EQ(pool.fieldAt<void*>(kFreeList), nullptr) << "free list";
}

}  // namespace
