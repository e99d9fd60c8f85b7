// ScenePluginFilter: what a host gives to TreeParser::doFilter.
#pragma once

#include "kelp/utils/charstring.h"

namespace Kelp {

/// Decides object by object what stays active in a program, and may rename.
class ScenePluginFilter {
 public:
  /// Called once for every object. Non-zero keeps the object, zero filters it out. Assigning
  /// another text to `name` renames the object; `extra` is the object's field of that name.
  /// May look at the program but not change it: addObject, mergeProgram, updateName and doFilter on
  /// the program being filtered throw ExceptionMsg, deleteThis takes effect when doFilter ends.
  /// Must not keep the references and must not destroy the parser or the scene. What it throws
  /// passes through doFilter.
  virtual int acceptObject(const CharString& type, CharString& name, void* extra) = 0;

  virtual ~ScenePluginFilter() = default;
};

}  // namespace Kelp
