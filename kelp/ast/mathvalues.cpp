#include "kelp/ast/mathvalues.h"

#include <ios>

namespace Kelp {

namespace {

// The standard streams stay usable as long as any static object of a host, whichever goes last.
const std::ios_base::Init streams;

}  // namespace

}  // namespace Kelp
