// LintCheck: a rule of lint at work.
#pragma once

#include <functional>
#include <string>

#include "kelp/program/programast.h"

namespace Kelp {

/// Sees a program once: all its objects in the order of the text, and behind each its properties.
/// A message is what is to be said of the object or property, without its name.
class LintCheck {
 public:
  using Report = std::function<void(const std::string& message)>;

  LintCheck() = default;
  LintCheck(const LintCheck&) = delete;
  LintCheck& operator=(const LintCheck&) = delete;
  virtual ~LintCheck() = default;

  virtual void begin(const ProgramAST&) {}
  virtual void checkObject(const ObjectAST&, const Report&) {}
  virtual void checkProperty(const PropertyAST&, const Report&) {}
};

}  // namespace Kelp
