// A host may have set its processor as it likes: nothing of the library changes that.
#include <gtest/gtest.h>
#include <xmmintrin.h>

#include <cfenv>

#include "tests/support/filters.h"
#include "tests/support/programs.h"

using namespace Kelp;
using namespace KelpTest;

namespace {

constexpr unsigned kFlagsOfPastOperations = 0x3F;

// Every entry operation once.
void useTheLibrary() {
  FilteredScene scene(
      "A a { x = 1e400 * 0e400 + 1.5e-320 - random(1, 2); y = ListInt(1e20, -3e-5); z = a; }");
  scene.rename({{"a", "b"}});
  auto_ast<ProgramAST> other(new ProgramAST);
  add(other.get(), "A", "b");
  scene.program->mergeProgram(other.get(), 1e-320, 1e300, nullptr);
  CharString newName("c");
  scene.program->updateName(CharString("b"), newName);
  EXPECT_EQ(parsedScene("A a { x = ListFloat(1e-320, nan"), "error: ) expected");
}

TEST(ProcessorSettings, AreLeftAsTheHostHasSetThem) {
  const unsigned original = _mm_getcsr();
  const int originalRounding = std::fegetround();
  const unsigned masked = original & ~kFlagsOfPastOperations;
  constexpr unsigned kFlushToZero = 0x8000;
  constexpr unsigned kDenormalsAreZero = 0x40;
  for (const int rounding : {FE_TONEAREST, FE_UPWARD, FE_TOWARDZERO}) {
    for (const unsigned zeros : {0U, kFlushToZero, kFlushToZero | kDenormalsAreZero}) {
      std::fesetround(rounding);
      _mm_setcsr(_mm_getcsr() | zeros);
      const unsigned before = _mm_getcsr() & ~kFlagsOfPastOperations;
      useTheLibrary();
      const unsigned after = _mm_getcsr() & ~kFlagsOfPastOperations;
      const int roundingAfter = std::fegetround();
      _mm_setcsr(original);
      std::fesetround(originalRounding);
      EXPECT_EQ(after, before);
      EXPECT_EQ(roundingAfter, rounding);
    }
  }
  EXPECT_EQ(_mm_getcsr() & ~kFlagsOfPastOperations, masked);
}

}  // namespace
