// What somebody meant who misspelled a call.
#pragma once

#include <string_view>

namespace Kelp {

/// The builtin function, type or list form whose name is nearest to `word`: one edit away from it,
/// two if the word is longer than five characters, case not counting. Empty when there is none.
/// Lives for ever.
std::string_view nearestCall(std::string_view word);

}  // namespace Kelp
