// Whether two values say the same.
#pragma once

#include "kelp/ast/expressions.h"

namespace Kelp {

/// True when both trees have the same nodes, numbers of the same bits and texts of the same
/// characters; typed lists count by their elements, whether they stand as numbers or as hexadecimal
/// text. What a tree knows besides does not count: folders of strings, seeds of random calls,
/// and what a host has resolved. Both may be null, and then are equal. The texts that the trees
/// borrow must be alive. Neither depth nor length of the trees costs stack. Throws std::bad_alloc.
bool areEqual(ExpressionAST* a, ExpressionAST* b);

}  // namespace Kelp
