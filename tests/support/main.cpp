// The tests' main: besides running them, asks for leaks while the static pools still live.
#include <gtest/gtest.h>

#if defined(__SANITIZE_ADDRESS__)
#define KELP_CHECKS_LEAKS 1
#elif defined(__has_feature)
#if __has_feature(address_sanitizer)
#define KELP_CHECKS_LEAKS 1
#endif
#endif

#ifdef KELP_CHECKS_LEAKS
#include <sanitizer/lsan_interface.h>
#endif

int main(int argc, char** argv) {
  testing::InitGoogleTest(&argc, argv);
  const int result = RUN_ALL_TESTS();
#ifdef KELP_CHECKS_LEAKS
  __lsan_do_leak_check();
#endif
  return result;
}
