// What all who look at a tree need to know about its texts and its chains of operators.
#pragma once

#include <cstdint>
#include <string_view>
#include <vector>

#include "kelp/ast/expressions.h"

namespace Kelp {

/// The nodes from `top` down through `left`, outermost first. The left operand of the last one is
/// where the chain begins.
std::vector<BinaryExpressionAST*> leftSpine(BinaryExpressionAST& top);

/// The characters that a record names; good as long as the SourcesReader. A record of nothing gives
/// a view whose data() is null.
std::string_view recordedText(const uint64_t (&record)[3]);

/// The characters of a literal, wherever they are held; good as long as the node and the
/// SourcesReader. A null text gives a view whose data() is null.
std::string_view literalText(const StringExpressionAST& node);

/// The characters of a string; data() is null for the null string.
std::string_view viewOf(const CharString& text);

/// The length in bytes of the well-formed UTF-8 character that a text begins with, 0 when it begins
/// with none.
size_t leadingCharacter(std::string_view text);

}  // namespace Kelp
