// Compressed files, as gzip and zstd know them.
#pragma once

#include <memory>
#include <streambuf>
#include <string>
#include <string_view>

#include "kelp/source/textinput.h"

namespace KelpCli {

enum class Compression { kNone, kGzip, kZstd };

/// What the first four bytes of a file tell.
Compression compressionOf(std::string_view firstBytes);

/// What the end of a file's name asks for: .gz or .zst.
Compression compressionFor(const std::string& fileName);

/// Delivers what `read` delivers, decompressed when its first bytes say that it is compressed. The
/// name stands in messages. Throws what `read` throws, and InvalidSourceFile for data that is
/// damaged or ends too early; delivering may throw the same.
Kelp::TextInput::Read decompressed(Kelp::TextInput::Read read, const std::string& name);

/// Compresses what it is given into another buffer, which outlives it.
class CompressingBuffer : public std::streambuf {
 public:
  /// Writes the end of the compressed data; nothing may follow. Throws what the other one throws.
  virtual void finish() = 0;
};

/// Requires: not kNone.
std::unique_ptr<CompressingBuffer> compressing(Compression compression, std::streambuf& target);

}  // namespace KelpCli
