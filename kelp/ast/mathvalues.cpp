#include "kelp/ast/mathvalues.h"

#include <ios>

namespace Kelp {

namespace {

// The standard streams stay usable as long as any static object of a host, whichever goes last.
const std::ios_base::Init streams;

}  // namespace

// Not inline: a compiler that sees both sides may throw away what the elements held before.
// NOLINTNEXTLINE(cppcoreguidelines-pro-type-member-init)
Matrix::Matrix(int kind) {
  if (kind != 0 && kind != 1) return;
  for (int i = 0; i < 9; ++i) elements[i] = kind == 1 && i % 4 == 0 ? 1.0F : 0.0F;
}

}  // namespace Kelp
