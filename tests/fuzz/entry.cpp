// What libFuzzer calls: one target an executable.
#include <cstdio>
#include <cstdlib>
#include <exception>

#include "tests/fuzz/targets.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  try {
    return KelpTest::KELP_FUZZ_TARGET(data, size);
  } catch (const std::exception& failure) {
    std::fprintf(stderr, "%s\n", failure.what());
    std::abort();
  }
}
