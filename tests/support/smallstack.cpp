#include "tests/support/smallstack.h"

#include <gtest/gtest.h>
#include <pthread.h>

namespace KelpTest {

namespace {

void* runAct(void* act) {
  (*static_cast<const std::function<void()>*>(act))();
  return nullptr;
}

}  // namespace

void runOnStackOf(size_t bytes, const std::function<void()>& act) {
  pthread_attr_t attributes;
  ASSERT_EQ(pthread_attr_init(&attributes), 0);
  ASSERT_EQ(pthread_attr_setstacksize(&attributes, bytes), 0);
  pthread_t thread;
  void* argument = const_cast<std::function<void()>*>(&act);
  ASSERT_EQ(pthread_create(&thread, &attributes, runAct, argument), 0);
  pthread_attr_destroy(&attributes);
  ASSERT_EQ(pthread_join(thread, nullptr), 0);
}

}  // namespace KelpTest
