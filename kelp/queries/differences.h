// What differs between two programs.
#pragma once

#include <vector>

#include "kelp/program/programast.h"

namespace Kelp {

/// A property that one of two objects has not, or that has another value there.
struct PropertyDifference {
  const PropertyAST* before;  ///< null: it was added
  const PropertyAST* after;   ///< null: it was removed
};

/// An object that one of two programs has not, or that has other properties there.
struct ObjectDifference {
  const ObjectAST* before;                     ///< null: it was added
  const ObjectAST* after;                      ///< null: it was removed
  std::vector<PropertyDifference> properties;  ///< empty when the object was added or removed
};

/// Compares two programs by what they mean: objects of the same type and name, and the last value
/// that each property is assigned, whatever the order of either in the text. Values are compared as
/// areEqual does. First come objects and properties of `before` in the order of its text, then
/// those that were added, in the order of theirs.
///
/// The nodes stay their programs'. Takes time in proportion to the size of both. Throws
/// std::bad_alloc.
std::vector<ObjectDifference> diffPrograms(const ProgramAST& before, const ProgramAST& after);

}  // namespace Kelp
