// The forms that look like calls and are no builtin functions.
#pragma once

#include <array>
#include <string_view>

#include "kelp/utils/wordtable.h"

namespace Kelp {

enum class CallForm {
  kList,
  kInterpolate,
  kVector,
  kColor,
  kAColor,
  kMatrix,
  kTransform,
  kTransformHex,
  kListVector,
  kListVectorHex,
  kListInt,
  kListIntHex,
  kListString,
  kListFloat,
  kListFloatHex,
  kListColor,
  kListColorHex,
};

/// In the order of CallForm.
inline constexpr std::array<std::string_view, 17> kCallFormNames = {
    "List",       "interpolate",  "Vector",       "Color",         "AColor",       "Matrix",
    "Transform",  "TransformHex", "ListVector",   "ListVectorHex", "ListInt",      "ListIntHex",
    "ListString", "ListFloat",    "ListFloatHex", "ListColor",     "ListColorHex",
};

inline constexpr WordTable<kCallFormNames.size()> kCallForms(kCallFormNames);

}  // namespace Kelp
