// Releasing an expression where there is no stack left to recurse.
#pragma once

namespace Kelp {

class ExpressionAST;

/// What deleteThis() does, in the same order, but with a stack of constant size. Slower: it comes
/// in where a tree was built on a large stack and is released on a small one.
void releaseWithoutStack(ExpressionAST* expression) noexcept;

}  // namespace Kelp
