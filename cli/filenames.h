// The files that a command is to read.
#pragma once

#include <optional>
#include <string>

#include "cli/options.h"
#include "kelp/source/textinput.h"

namespace KelpCli {

/// The files of the command line, then those of the list that --files-from names. The list is read
/// as its names are asked for, so it may be a pipe whose writer is still at work.
class FileNames {
 public:
  explicit FileNames(const Options& commandLine) : options(commandLine) {}

  /// The next name; nothing behind the last one. Throws InvalidSourceFile when the list cannot be
  /// read, and UsageError when it names standard input while it comes from there itself.
  std::optional<std::string> next();

 private:
  std::optional<std::string> _nextLine();
  bool _readBlock();

  const Options& options;
  size_t given = 0;  // names of the command line that were handed out
  Kelp::TextInput list;
  std::string block;  // of the list
  size_t at = 0;      // in the block
};

}  // namespace KelpCli
