// FastCriticalSection: the library's lock.
#pragma once

#include <pthread.h>

namespace Kelp {

/// A recursive lock: the thread that holds it may take it again, and gives it back as often.
class FastCriticalSection {
 public:
  FastCriticalSection() {
    pthread_mutexattr_init(&attributes);
    pthread_mutexattr_settype(&attributes, PTHREAD_MUTEX_RECURSIVE);
    pthread_mutex_init(&mutex, &attributes);
  }
  FastCriticalSection(const FastCriticalSection&) = delete;
  FastCriticalSection& operator=(const FastCriticalSection&) = delete;
  ~FastCriticalSection() {
    pthread_mutex_destroy(&mutex);
    pthread_mutexattr_destroy(&attributes);
  }

  void lock() { pthread_mutex_lock(&mutex); }
  bool try_lock() { return pthread_mutex_trylock(&mutex) == 0; }
  void unlock() { pthread_mutex_unlock(&mutex); }

  pthread_mutex_t mutex;
  pthread_mutexattr_t attributes;  ///< kept for the lock's lifetime
};

}  // namespace Kelp
