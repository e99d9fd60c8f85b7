#include "kelp/utils/stackguard.h"

#include <gtest/gtest.h>
#include <pthread.h>

#include <csignal>
#include <cstddef>
#include <cstdint>

#include "tests/support/buildkind.h"
#include "tests/support/smallstack.h"

namespace {

volatile std::sig_atomic_t answer = -1;

void ask(int) { answer = Kelp::isStackNearlyUsedUp() ? 1 : 0; }

// Asks on a stack that is not the thread's own: a signal handler's. In static memory it lies below
// all stacks.
void askOnSignalStack() {
  static char memory[size_t{128} << 10U];
  stack_t stack{};
  stack.ss_sp = memory;
  stack.ss_size = sizeof memory;
  stack_t oldStack{};
  ASSERT_EQ(sigaltstack(&stack, &oldStack), 0);
  struct sigaction action {};
  action.sa_handler = ask;
  action.sa_flags = SA_ONSTACK;
  struct sigaction oldAction {};
  sigaction(SIGUSR1, &action, &oldAction);
  std::raise(SIGUSR1);
  sigaction(SIGUSR1, &oldAction, nullptr);
  sigaltstack(&oldStack, nullptr);
}

struct Stack {
  uintptr_t end;  // where it is used up, above its guard pages
  size_t size;
};

Stack ownStack() {
  pthread_attr_t attributes;
  pthread_getattr_np(pthread_self(), &attributes);
  void* base = nullptr;
  size_t size = 0;
  size_t guardSize = 0;
  pthread_attr_getstack(&attributes, &base, &size);
  pthread_attr_getguardsize(&attributes, &guardSize);
  pthread_attr_destroy(&attributes);
  return {reinterpret_cast<uintptr_t>(base) + guardSize, size};
}

// Recurses until the stack counts as nearly used up and says where that was.
[[gnu::noinline]] uintptr_t descend() {
  volatile char room[256];
  room[0] = 1;
  if (Kelp::isStackNearlyUsedUp()) return reinterpret_cast<uintptr_t>(__builtin_frame_address(0));
  const uintptr_t lowest = descend();
  room[1] = room[0];
  return lowest;
}

struct Left {
  size_t bytes;
  size_t stackSize;
};

// How much of a stack is left when it counts as nearly used up.
void* measureLeft(void* left) {
  const Stack stack = ownStack();
  *static_cast<Left*>(left) = {descend() - stack.end, stack.size};
  return nullptr;
}

Left leftOnStackOf(size_t bytes, size_t guardSize) {
  pthread_attr_t attributes;
  pthread_attr_init(&attributes);
  pthread_attr_setstacksize(&attributes, bytes);
  pthread_attr_setguardsize(&attributes, guardSize);
  Left left{};
  pthread_t thread{};
  EXPECT_EQ(pthread_create(&thread, &attributes, measureLeft, &left), 0);
  pthread_join(thread, nullptr);
  pthread_attr_destroy(&attributes);
  return left;
}

constexpr size_t kFrames = 4096;  // more than two frames take
constexpr size_t kMiB = size_t{1} << 20U;

}  // namespace

TEST(StackGuard, KeepsAFixedReserveAboveTheGuardPages) {
  const size_t reserve = size_t{KelpTest::kSanitized ? 256 : 128} << 10U;
  for (const size_t guardSize : {size_t{4096}, kMiB}) {
    const Left left = leftOnStackOf(8 * kMiB, guardSize);
    EXPECT_GE(left.bytes, reserve - kFrames);
    EXPECT_LE(left.bytes, reserve + kFrames);
  }
}

TEST(StackGuard, KeepsAQuarterOfASmallStack) {
  const Left left = leftOnStackOf(kMiB / 4, 4096);
  EXPECT_GE(left.bytes, left.stackSize / 4 - kFrames);
  EXPECT_LE(left.bytes, left.stackSize / 4 + kFrames);
}

TEST(StackGuard, FreshStackIsNotUsedUp) {
  EXPECT_FALSE(Kelp::isStackNearlyUsedUp());
  KelpTest::runOnStackOf(KelpTest::kSmallStack, [] { EXPECT_FALSE(Kelp::isStackNearlyUsedUp()); });
}

TEST(StackGuard, ForeignStackCountsAsNotUsedUp) {
  EXPECT_FALSE(Kelp::isStackNearlyUsedUp());  // learns the bounds of the thread's own stack
  askOnSignalStack();
  EXPECT_EQ(answer, 0);
}
