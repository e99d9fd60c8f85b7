// Runs code on a thread whose stack has a chosen size.
#pragma once

#include <pthread.h>

#include <cstddef>
#include <functional>
#include <stdexcept>

namespace KelpTest {

inline constexpr size_t kSmallStack = size_t{256} << 10U;
inline constexpr size_t kHugeStack = size_t{512} << 20U;

/// Waits until the work is done. The work must not throw.
inline void runOnStack(size_t stackBytes, std::function<void()> work) {
  pthread_attr_t attributes;
  pthread_attr_init(&attributes);
  pthread_attr_setstacksize(&attributes, stackBytes);
  pthread_t thread;
  const auto start = [](void* argument) -> void* {
    (*static_cast<std::function<void()>*>(argument))();
    return nullptr;
  };
  const int failure = pthread_create(&thread, &attributes, start, &work);
  pthread_attr_destroy(&attributes);
  if (failure != 0) throw std::runtime_error("no thread");
  pthread_join(thread, nullptr);
}

}  // namespace KelpTest
