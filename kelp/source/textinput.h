// TextInput: where a text comes from that is read piece by piece.
#pragma once

#include <sys/types.h>

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <string_view>

namespace Kelp {

struct TextInput {
  /// Writes the next bytes of the text to `buffer`, at least one and at most `size`, and gives
  /// their number; 0 at the end of the text. Throws InvalidSourceFile with the reason when it
  /// cannot.
  using Read = std::function<size_t(char* buffer, size_t size)>;

  /// A file, pipe or device. Throws InvalidSourceFile when it cannot be opened.
  static TextInput fromFile(const std::string& path);

  /// A text in memory, which stays the caller's and outlives the reading.
  static TextInput fromText(std::string_view text);

  /// An open file, which stays the caller's; the name stands in messages.
  static TextInput fromDescriptor(int descriptor, const std::string& name);

  Read read;
  int64_t size = 0;  ///< bytes of the text as far as is known beforehand, else 0
  dev_t device = 0;  ///< with inode the identity of a regular file; both 0 for anything else
  ino_t inode = 0;
};

}  // namespace Kelp
