#include "tests/support/allocations.h"

#include <cstdlib>
#include <new>
#include <utility>

namespace {

thread_local constinit int64_t requests = 0;
thread_local constinit int64_t live = 0;
thread_local constinit int64_t countdown = 0;  // 0: nothing is to fail
thread_local constinit bool failForEver = false;
thread_local constinit bool failed = false;
thread_local constinit KelpTest::RefusedBlocks* refusedBlocks = nullptr;

bool mustFail() {
  if (failed && failForEver) return true;
  if (countdown == 0 || --countdown > 0) return false;
  failed = true;
  return true;
}

void* allocate(size_t size) noexcept {
  ++requests;
  if (mustFail()) return nullptr;
  void* block = std::malloc(size > 0 ? size : 1);
  if (block != nullptr) ++live;
  return block;
}

void release(void* block) noexcept {
  if (block != nullptr) --live;
  std::free(block);
}

void* allocateOrThrow(size_t size) {
  void* block = allocate(size);
  if (block == nullptr) throw std::bad_alloc();
  return block;
}

void* allocateBlock(size_t size) noexcept {
  if (refusedBlocks != nullptr && refusedBlocks->_refusesNow()) return nullptr;
  return allocate(size);
}

}  // namespace

void* operator new(size_t size) { return allocateOrThrow(size); }
void* operator new[](size_t size) { return allocateOrThrow(size); }
void* operator new(size_t size, const std::nothrow_t&) noexcept { return allocateBlock(size); }
void* operator new[](size_t size, const std::nothrow_t&) noexcept { return allocateBlock(size); }
void operator delete(void* block) noexcept { release(block); }
void operator delete[](void* block) noexcept { release(block); }
void operator delete(void* block, size_t) noexcept { release(block); }
void operator delete[](void* block, size_t) noexcept { release(block); }
void operator delete(void* block, const std::nothrow_t&) noexcept { release(block); }
void operator delete[](void* block, const std::nothrow_t&) noexcept { release(block); }

namespace KelpTest {

int64_t allocationCount() { return requests; }
int64_t liveAllocations() { return live; }

FailingAllocation::FailingAllocation(int64_t n, bool persistent) {
  countdown = n;
  failForEver = persistent;
  failed = false;
}

FailingAllocation::~FailingAllocation() {
  countdown = 0;
  failForEver = false;
  failed = false;
}

bool FailingAllocation::hasFailed() const { return failed; }

RefusedBlocks::RefusedBlocks(std::function<bool()> refuse, bool persistent)
    : mustRefuse(std::move(refuse)), forEver(persistent) {
  refusedBlocks = this;
}

RefusedBlocks::~RefusedBlocks() { refusedBlocks = nullptr; }

bool RefusedBlocks::_refusesNow() {
  if (failed) return forEver;
  failed = mustRefuse();
  return failed;
}

}  // namespace KelpTest
