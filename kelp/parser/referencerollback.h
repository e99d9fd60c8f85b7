// Takes recorded references back when the rule that recorded them fails.
#pragma once

#include "kelp/utils/charstring.h"
#include "kelp/utils/table.h"

namespace Kelp {

/// The nodes of a failed rule die with it, and the table must not point into them.
class ReferenceRollback {
 public:
  explicit ReferenceRollback(Table<CharString*, 100>& recordedNames)
      : names(recordedNames), countBefore(recordedNames.count) {}
  ReferenceRollback(const ReferenceRollback&) = delete;
  ReferenceRollback& operator=(const ReferenceRollback&) = delete;
  ~ReferenceRollback() {
    if (!kept) names.count = countBefore;
  }

  /// The rule has succeeded.
  void keep() { kept = true; }

 private:
  Table<CharString*, 100>& names;
  const int countBefore;
  bool kept = false;
};

}  // namespace Kelp
