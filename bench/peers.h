// TreeReader: one of the readers that are compared, which makes a whole tree of a text in memory.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "bench/contentwriter.h"

namespace KelpBench {

class TreeReader {
 public:
  virtual ~TreeReader() = default;
  /// Brings the text into the form that the reader wants it in; not timed. The text outlives the
  /// reader.
  virtual void prepare(const std::string& text) = 0;
  /// Makes a fresh tree of the prepared text. Throws std::logic_error when it is no good.
  virtual void parse() = 0;
  /// Releases the tree, and nothing else.
  virtual void release() = 0;
  /// After release(): whatever else a parse needed that a user would not keep; not timed.
  virtual void clear() {}
};

struct ReaderKind {
  const char* name;
  Syntax syntax;
  std::unique_ptr<TreeReader> (*make)();
};

/// Kelp first, then those that were there when this was built.
const std::vector<ReaderKind>& readerKinds();

}  // namespace KelpBench
