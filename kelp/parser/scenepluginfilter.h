// ScenePluginFilter: what a host gives to TreeParser::doFilter.
#pragma once

#include "kelp/utils/charstring.h"

namespace Kelp {

/// Decides object by object what stays active in a program, and may rename.
class ScenePluginFilter {
 public:
  /// Called once for every object. Non-zero keeps the object, zero filters it out. Assigning
  /// another text to `name` renames the object; `extra` is the object's field of that name.
  /// Must not keep the references and must not change or release the program. What it throws
  /// passes through doFilter.
  virtual int acceptObject(const CharString& type, CharString& name, void* extra) = 0;

  virtual ~ScenePluginFilter() = default;
};

}  // namespace Kelp
