// FileBytes: the contents of a file in memory, padded with zero bytes.
#pragma once

#include <sys/types.h>

#include <cstddef>
#include <cstdint>
#include <ctime>
#include <string>

namespace Kelp {

/// Owns `size` bytes at `data`, unless they are borrowed; at least kPadding zero bytes follow them.
struct FileBytes {
  static constexpr size_t kPadding = 64;

  FileBytes() = default;
  FileBytes(FileBytes&& other) noexcept { *this = static_cast<FileBytes&&>(other); }
  FileBytes& operator=(FileBytes&& other) noexcept;
  ~FileBytes() { _free(); }

  /// What to make of a file.
  struct Request {
    bool map = false;          ///< map it instead of reading; pipes and devices are always read
    bool regularOnly = false;  ///< refuse pipes and devices, which may never end
    size_t atMost = SIZE_MAX;  ///< stop reading when there are more bytes than that
  };

  /// The whole file; or one byte more than `atMost` or a little more, when there are so many.
  /// Throws InvalidSourceFile with the reason, or std::bad_alloc.
  static FileBytes read(const std::string& path, const Request& request);

  /// A copy of a text in memory. Throws std::bad_alloc.
  static FileBytes copy(const char* text, size_t size);

  /// A text that stays its owner's; kPadding zero bytes follow it.
  static FileBytes borrow(const char* text, size_t size) noexcept;

  char* data = nullptr;
  size_t size = 0;
  dev_t device = 0;  ///< with inode the identity of the file; both 0 for a copy, a pipe, a device
  ino_t inode = 0;
  timespec modified = {};  ///< when the file was last written to

 private:
  static FileBytes _allocate(size_t capacity);
  void _readAll(int descriptor, const std::string& path, size_t atMost);
  void _map(int descriptor, size_t fileSize, const std::string& path);
  void _free() noexcept;

  bool borrowed = false;
  size_t capacity = 0;     // bytes before the padding, when read
  size_t mappedBytes = 0;  // length of the mapping; 0 when `data` is from new[]
};

}  // namespace Kelp
