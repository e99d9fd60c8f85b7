// Does one thing that a checker must report, so that its silence elsewhere means something.
//
//   planted uninitialised | leak | race | overflow | conversion | bounds
#include <climits>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <thread>

#include "kelp/ast/expressions.h"
#include "kelp/utils/charstring.h"

#if defined(__has_feature)
#if __has_feature(address_sanitizer)
#include <sanitizer/lsan_interface.h>
#define KELP_CHECKS_LEAKS 1
#endif
#endif

using namespace Kelp;

namespace {

// Unknown to the optimiser.
volatile int one = 1;

void readUninitialised() {
  CharString text("kelp");
  text.splitBuffer(100 * one, 0);
  if (text.chars()[50 * one] == 'x') std::puts("an x");
}

// The string lies in an element that nobody can reach once the sequence has gone.
void leak() {
  _Sequence<CharString> strings;
  *strings.newElement() = "a string that is far too long to be kept inside of its own buffer";
}

// Two threads use one pool at a time.
void race() {
  const auto takeAndReturn = [] {
    for (int i = 0; i < 1000; ++i) {
      NumberExpressionAST::newNumberExpressionAST(one)->deleteThis();
    }
  };
  std::thread other(takeAndReturn);
  takeAndReturn();
  other.join();
}

void overflow() { std::printf("%d\n", INT_MAX * one + one); }

void convert() { std::printf("%d\n", static_cast<int>(1e20 * one)); }

void leaveBounds() {
  const CharString text("a string that is far too long to be kept inside of its own buffer");
  std::printf("%d\n", text.chars()[4096 * one]);
}

struct Plant {
  const char* name;
  void (*run)();
};

constexpr Plant kPlants[] = {
    {"uninitialised", readUninitialised},
    {"leak", leak},
    {"race", race},
    {"overflow", overflow},
    {"conversion", convert},
    {"bounds", leaveBounds},
};

}  // namespace

int main(int argc, char** argv) {
  for (const Plant& plant : kPlants) {
    if (argc != 2 || std::strcmp(argv[1], plant.name) != 0) continue;
    plant.run();
#ifdef KELP_CHECKS_LEAKS
    __lsan_do_leak_check();
#endif
    return EXIT_SUCCESS;
  }
  return 2;
}
