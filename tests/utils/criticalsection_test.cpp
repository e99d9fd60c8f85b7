#include "kelp/utils/criticalsection.h"

#include <gtest/gtest.h>

#include <mutex>
#include <thread>
#include <type_traits>

using Kelp::FastCriticalSection;

namespace {

static_assert(!std::is_copy_constructible_v<FastCriticalSection>);
static_assert(sizeof(FastCriticalSection) >= sizeof(pthread_mutex_t) + sizeof(pthread_mutexattr_t));

bool anotherThreadGets(FastCriticalSection& lock) {
  bool got = false;
  std::thread([&] {
    got = lock.try_lock();
    if (got) lock.unlock();
  }).join();
  return got;
}

TEST(FastCriticalSection, HolderMayTakeItAgain) {
  FastCriticalSection lock;
  lock.lock();
  lock.lock();
  EXPECT_TRUE(lock.try_lock());
  lock.unlock();
  lock.unlock();
  EXPECT_FALSE(anotherThreadGets(lock));
  lock.unlock();
  EXPECT_TRUE(anotherThreadGets(lock));
}

TEST(FastCriticalSection, WorksWithTheStandardGuards) {
  FastCriticalSection lock;
  {
    const std::scoped_lock outer(lock);
    const std::lock_guard inner(lock);
    EXPECT_FALSE(anotherThreadGets(lock));
  }
  EXPECT_TRUE(anotherThreadGets(lock));
}

}  // namespace
