#include "kelp/utils/stackguard.h"

#include <gtest/gtest.h>

#include <csignal>

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

}  // namespace

TEST(StackGuard, FreshStackIsNotUsedUp) {
  EXPECT_FALSE(Kelp::isStackNearlyUsedUp());
  KelpTest::runOnStackOf(KelpTest::kSmallStack, [] { EXPECT_FALSE(Kelp::isStackNearlyUsedUp()); });
}

TEST(StackGuard, ForeignStackCountsAsNotUsedUp) {
  EXPECT_FALSE(Kelp::isStackNearlyUsedUp());  // learns the bounds of the thread's own stack
  askOnSignalStack();
  EXPECT_EQ(answer, 0);
}
