#include "tests/support/threads.h"

#include <pthread.h>

#include <system_error>

namespace KelpTest {

namespace {

void* runTask(void* task) {
  (*static_cast<const std::function<void()>*>(task))();
  return nullptr;
}

void check(int error) {
  if (error != 0) throw std::system_error(error, std::generic_category());
}

}  // namespace

void runOnStack(size_t bytes, const std::function<void()>& task) {
  pthread_attr_t attributes;
  check(pthread_attr_init(&attributes));
  check(pthread_attr_setstacksize(&attributes, bytes));
  pthread_t thread;
  check(pthread_create(&thread, &attributes, runTask, const_cast<std::function<void()>*>(&task)));
  check(pthread_join(thread, nullptr));
  pthread_attr_destroy(&attributes);
}

}  // namespace KelpTest
