#include "bench/allocationcount.h"

#include <cerrno>
#include <cstddef>

namespace {
int64_t allocations = 0;
}

namespace KelpBench {
int64_t allocationCount() { return allocations; }
}  // namespace KelpBench

// The names under which glibc offers its own.
extern "C" {

void* __libc_malloc(size_t size);
void* __libc_calloc(size_t count, size_t size);
void* __libc_realloc(void* block, size_t size);
void* __libc_memalign(size_t alignment, size_t size);

void* malloc(size_t size) {
  ++allocations;
  return __libc_malloc(size);
}

void* calloc(size_t count, size_t size) {
  ++allocations;
  return __libc_calloc(count, size);
}

void* realloc(void* block, size_t size) {
  ++allocations;
  return __libc_realloc(block, size);
}

void* aligned_alloc(size_t alignment, size_t size) {
  ++allocations;
  return __libc_memalign(alignment, size);
}

int posix_memalign(void** block, size_t alignment, size_t size) {
  ++allocations;
  *block = __libc_memalign(alignment, size);
  return *block == nullptr ? ENOMEM : 0;
}
}
