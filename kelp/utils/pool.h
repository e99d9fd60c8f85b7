// Block pools: where tree nodes and map entries come from.
//
// _Sequence hands out elements from blocks of BlockSize; Pool adds a free list for one node class,
// SimplePool one for map entries. Elements are constructed once, when their block is made, and are
// never destroyed: whoever takes a returned element finds it as it was left and sets every field.
// Nothing here locks; a pool belongs to one thread at a time.
#pragma once

#include <cassert>
#include <climits>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <new>
#include <utility>

#include "kelp/utils/criticalsection.h"
#include "kelp/utils/exceptions.h"

namespace Kelp {

/// Raw storage for the elements of a block.
template <class E>
struct DefaultAllocator {
  static_assert(alignof(E) <= __STDCPP_DEFAULT_NEW_ALIGNMENT__);

  /// Room for `number` elements, or null when there is no memory; frees with deallocate. Others may
  /// throw instead.
  static E* allocate(int number) noexcept {
    return static_cast<E*>(::operator new(static_cast<size_t>(number) * sizeof(E), std::nothrow));
  }
  static void deallocate(E* elements) noexcept { ::operator delete(elements); }
};

/// A chain of blocks of elements that are handed out in order and never taken back one by one.
/// Supported as instantiated in this library: elements are constructed with their block
/// (ConstructElements) and never destroyed (DestroyElements).
template <class E, int BlockSize = 1000, bool ConstructElements = true,
          bool DestroyElements = false, class Allocator = DefaultAllocator<E>>
class _Sequence {
  static_assert(BlockSize > 0 && ConstructElements && !DestroyElements);

 public:
  struct Block {
    Block* next;      ///< following block, null for the last
    Block* previous;  ///< preceding block, null for the first
    int used;         ///< elements handed out, in index order
    int capacity;     ///< elements in this block
    E* elements;
  };

  _Sequence() = default;
  _Sequence(const _Sequence&) = delete;
  _Sequence& operator=(const _Sequence&) = delete;
  ~_Sequence() { freeBlocks(); }

  /// The next element, as its block or an earlier user left it.
  /// Throws ExceptionMsg when there is no memory for another block.
  E* newElement() {
    while (current != nullptr && current->used == current->capacity && current->next != nullptr) {
      current = current->next;
    }
    if (current == nullptr || current->used == current->capacity) _appendBlock();
    ++handedOut;
    return &current->elements[current->used++];
  }

  /// Starts again at the first block, which hands out the same elements once more.
  void restart() noexcept {
    // Used blocks are always the first ones: many short uses after a long one stay cheap.
    for (Block* block = first; block != nullptr && block->used > 0; block = block->next) {
      block->used = 0;
    }
    current = first;
    readBlock = first;
    readIndex = 0;
    handedOut = 0;
  }

  /// Calls use(elements, number) for the used part of every block, in order.
  template <class Use>
  void forEachRun(Use use) const {
    for (const Block* block = first; block != nullptr && block->used > 0; block = block->next) {
      use(block->elements, block->used);
    }
  }

  /// Frees all blocks without destroying their elements. The sequence is then as if new.
  [[gnu::noinline]] void freeBlocks() noexcept {
    for (Block* block = first; block != nullptr;) {
      Block* next = block->next;
      Allocator::deallocate(block->elements);
      ::operator delete(block);
      block = next;
    }
    first = nullptr;
    current = nullptr;
    readBlock = nullptr;
    readIndex = 0;
    handedOut = 0;
    bytes = 0;
  }

  /// Whether `more` elements can be counted in an int on top of those handed out.
  static constexpr bool isCountable(int handedOut, int more) { return handedOut <= INT_MAX - more; }

  /// Elements handed out since the sequence was made or restarted.
  int liveCount() const { return handedOut; }
  int blockCount() const {
    int blocks = 0;
    for (const Block* block = first; block != nullptr; block = block->next) ++blocks;
    return blocks;
  }
  /// Bytes of all blocks, headers included.
  int64_t bytesAllocated() const { return bytes; }

 private:
  [[gnu::noinline]] void _appendBlock() {
    // All blocks are full here, so no count of elements ever passes INT_MAX.
    const bool countable = isCountable(handedOut, elementsPerBlock);
    struct Header {
      void* memory;
      ~Header() { ::operator delete(memory); }
    } header{countable ? ::operator new(sizeof(Block), std::nothrow) : nullptr};
    E* elements = header.memory != nullptr ? Allocator::allocate(elementsPerBlock) : nullptr;
    if (elements == nullptr) throw ExceptionMsg("[_SequenceBlock] Could not allocate memory");
    for (int i = 0; i < elementsPerBlock; ++i) new (&elements[i]) E();
    void* place = std::exchange(header.memory, nullptr);
    Block* block = new (place) Block{nullptr, current, 0, elementsPerBlock, elements};
    (current != nullptr ? current->next : first) = block;
    current = block;
    bytes += int64_t{elementsPerBlock} * int64_t{sizeof(E)} + int64_t{sizeof(Block)};
  }

  Block* first = nullptr;
  Block* current = nullptr;    // where fresh elements come from; the last block once all are full
  Block* readBlock = nullptr;  // a reader's position, for users that walk the elements
  int readIndex = 0;
  int handedOut = 0;
  int elementsPerBlock = BlockSize;
  int64_t bytes = 0;
  FastCriticalSection lock;  // for hosts that share a sequence; never entered here
};

/// A node as its pool hands it out: the class's own fields, then the free-list link.
template <class T>
struct PoolElement : T {
  PoolElement* nextFree = nullptr;  ///< next returned element; null while this one is in use
};

/// The pool of one node class. Returned elements are handed out again, last in first out.
/// LockMode 0: taking and returning never lock.
template <class T, int BlockSize = 1000, int LockMode = 0,
          class Allocator = DefaultAllocator<PoolElement<T>>>
class Pool {
  static_assert(LockMode == 0, "pools belong to one thread at a time");

 public:
  /// An element with its last user's field values (zero when it is fresh). Throws ExceptionMsg
  /// when there is no memory for another block; the live count then stays one too high.
  PoolElement<T>* newElement() {
    ++live;
    PoolElement<T>* element = freeList;
    if (element != nullptr) {
      freeList = element->nextFree;
      _fetch(element, kFetchedAhead);
    } else {
      element = sequence.newElement();
    }
    element->nextFree = nullptr;
    return element;
  }

  /// Takes back an element of this pool. It is not destroyed and keeps its field values.
  /// Requires: it is in use (builds with assertions check).
  void freeElement(T* element) noexcept {
    auto* returned = static_cast<PoolElement<T>*>(element);
    assert(!_isFree(returned) && "an element is returned to its pool twice");
    _fetch(returned, -kFetchedAhead);
    if (freeList == nullptr) oldestFree = returned;
    returned->nextFree = freeList;
    freeList = returned;
    --live;
  }

  /// Destroys all elements and frees their blocks, unless one is in use; the pool is then as if
  /// new. The one way in which elements are ever destroyed: for when the pool's own code goes away.
  void freeUnused() noexcept {
    if (live != 0) return;
    using Element = PoolElement<T>;
    sequence.forEachRun([](Element* elements, int number) {
      // By its name: node classes have no virtual destructors.
      for (int i = 0; i < number; ++i) elements[i].Element::~Element();
    });
    sequence.freeBlocks();
    freeList = nullptr;
    oldestFree = nullptr;
  }

  /// Elements taken less elements returned.
  int liveCount() const { return live; }
  int blockCount() const { return sequence.blockCount(); }
  /// Bytes of all blocks, headers included.
  int64_t bytesAllocated() const { return sequence.bytesAllocated(); }

  /// Calls use(element) for every returned element, the last returned first.
  template <class Use>
  void forEachFree(Use use) {
    for (auto* element = freeList; element != nullptr; element = element->nextFree) use(*element);
  }

 private:
  static constexpr int kFetchedAhead = 768;  // bytes, what an object or two take of a pool

  // A program is released from its newest object to its oldest, so elements come back nearly from
  // the last to the first, and are handed out again from the first to the last: memory can be told
  // in time. Any address may be fetched, also one outside of the block.
  static void _fetch(const PoolElement<T>* element, int distance) {
    __builtin_prefetch(reinterpret_cast<const char*>(element) + distance, 1);
  }

  bool _isFree(const PoolElement<T>* element) const {
    return element->nextFree != nullptr || (freeList != nullptr && element == oldestFree);
  }

  PoolElement<T>* freeList = nullptr;
  int live = 0;
  _Sequence<PoolElement<T>, BlockSize, true, false, Allocator> sequence;
  // The end of the free list, the one free element without a link. Kept in every build, so that
  // library and host may be built with and without assertions.
  const PoolElement<T>* oldestFree = nullptr;
};

/// An element of a SimplePool; while it is free, its first word links the free list.
/// Aligned so that a small E has room for the link, too.
template <class E>
struct alignas(alignof(E) > alignof(void*) ? alignof(E) : alignof(void*)) SimplePoolElement : E {
  SimplePoolElement* freeLink() const {
    SimplePoolElement* following;
    std::memcpy(&following, static_cast<const void*>(this), sizeof following);
    return following;
  }
  void setFreeLink(SimplePoolElement* following) {
    std::memcpy(static_cast<void*>(this), &following, sizeof following);
  }
};

/// The pool of a map's entries. E starts with a pointer-sized field that may be overwritten.
template <class E, int BlockSize = 1000, bool DestroyElements = false>
class SimplePool {
 public:
  SimplePool() = default;
  ~SimplePool() { _freeBlocks(); }

  /// An element with unknown field values. Throws ExceptionMsg when there is no memory.
  E* newElement() {
    SimplePoolElement<E>* element = freeList;
    if (element != nullptr) {
      freeList = element->freeLink();
    } else {
      element = sequence.newElement();
    }
    ++live;
    return element;
  }

  /// Takes back an element of this pool without destroying it; its first word is overwritten.
  void freeElement(E* element) noexcept {
    auto* returned = static_cast<SimplePoolElement<E>*>(element);
    returned->setFreeLink(freeList);
    freeList = returned;
    --live;
  }

  /// Elements taken less elements returned.
  int liveCount() const { return live; }
  int blockCount() const { return sequence.blockCount(); }
  int64_t bytesAllocated() const { return sequence.bytesAllocated(); }

 private:
  // Kept out of line: a destructor's plain stores could be optimised away as dead.
  [[gnu::noinline]] void _freeBlocks() noexcept {
    sequence.freeBlocks();
    live = 0;
    reserved = 0;
    freeList = nullptr;
  }

  int live = 0;
  int reserved = 0;  // room for a host's statistics
  _Sequence<SimplePoolElement<E>, BlockSize, true, DestroyElements> sequence;
  SimplePoolElement<E>* freeList = nullptr;
  FastCriticalSection lock;  // for hosts that share a pool; never entered here
};

}  // namespace Kelp
