#include "kelp/utils/stackguard.h"

#include <pthread.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>

namespace Kelp {

namespace {

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
#define KELP_LARGE_FRAMES
#elif defined(__has_feature)
#if __has_feature(address_sanitizer) || __has_feature(memory_sanitizer) || \
    __has_feature(thread_sanitizer)
#define KELP_LARGE_FRAMES
#endif
#endif

#ifdef KELP_LARGE_FRAMES
constexpr size_t kReserve = 256 * 1024;
#else
constexpr size_t kReserve = 128 * 1024;
#endif

struct StackBounds {
  bool known = false;
  uintptr_t lowest = 0;         // first usable byte; stacks grow down to it
  uintptr_t reserveBegins = 0;  // below this the reserve is being used
};

// Asking the system takes long (it reads a file for a process's first thread), so each thread asks
// once.
thread_local constinit StackBounds bounds;

StackBounds askForBounds() {
  StackBounds found;
  found.known = true;
  pthread_attr_t attributes;
  const bool asked = pthread_getattr_np(pthread_self(), &attributes) == 0;
  if (!asked) return found;  // unreachable: fails only where /proc cannot be read or memory ends
  void* base = nullptr;
  size_t size = 0;
  size_t guardSize = 0;
  pthread_attr_getstack(&attributes, &base, &size);
  pthread_attr_getguardsize(&attributes, &guardSize);
  pthread_attr_destroy(&attributes);
  found.lowest = reinterpret_cast<uintptr_t>(base);
  found.reserveBegins = found.lowest + guardSize + std::min(kReserve, size / 4);
  return found;
}

}  // namespace

bool isStackNearlyUsedUp() {
  if (!bounds.known) bounds = askForBounds();
  const auto here = reinterpret_cast<uintptr_t>(__builtin_frame_address(0));
  return here >= bounds.lowest && here < bounds.reserveBegins;
}

}  // namespace Kelp
