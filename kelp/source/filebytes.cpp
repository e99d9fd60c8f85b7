#include "kelp/source/filebytes.h"

#include <sys/mman.h>
#include <sys/stat.h>

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <new>
#include <utility>

#include "kelp/source/descriptor.h"

namespace Kelp {

namespace {

constexpr int kWritable = PROT_READ | PROT_WRITE;
constexpr int kAnonymous = MAP_PRIVATE | MAP_ANONYMOUS;

}  // namespace

FileBytes& FileBytes::operator=(FileBytes&& other) noexcept {
  if (this == &other) return *this;
  _free();
  data = std::exchange(other.data, nullptr);
  size = std::exchange(other.size, 0);
  device = other.device;
  inode = other.inode;
  modified = other.modified;
  borrowed = other.borrowed;
  capacity = std::exchange(other.capacity, 0);
  mappedBytes = std::exchange(other.mappedBytes, 0);
  return *this;
}

FileBytes FileBytes::read(const std::string& path, const Request& request) {
  // Opening a pipe that nobody writes to would wait for ever.
  const Descriptor file(path, request.regularOnly ? O_NONBLOCK : 0);
  struct stat status;
  uninterrupted(path, [&] { return ::fstat(file.number, &status); });
  if (S_ISDIR(status.st_mode)) throwUnreadable(path, EISDIR);
  const bool regular = S_ISREG(status.st_mode);
  if (request.regularOnly && !regular) throwUnreadable(path, "not a regular file");
  const size_t fileSize = regular ? static_cast<size_t>(status.st_size) : 0;
  FileBytes bytes;
  if (request.map && fileSize > 0) {
    bytes._map(file.number, fileSize, path);
  } else {
    // One more than the file has, so that its end is met without growing.
    bytes = _allocate(std::min(fileSize, request.atMost) + 1);
    bytes._readAll(file.number, path, request.atMost);
  }
  if (regular) {
    bytes.device = status.st_dev;
    bytes.inode = status.st_ino;
    bytes.modified = status.st_mtim;
  }
  return bytes;
}

FileBytes FileBytes::copy(const char* text, size_t size) {
  FileBytes bytes = _allocate(size);
  if (size > 0) std::memcpy(bytes.data, text, size);
  std::memset(bytes.data + size, 0, kPadding);
  bytes.size = size;
  return bytes;
}

FileBytes FileBytes::borrow(const char* text, size_t size) noexcept {
  FileBytes bytes;
  bytes.data = const_cast<char*>(text);  // nobody writes to it
  bytes.size = size;
  bytes.borrowed = true;
  return bytes;
}

FileBytes FileBytes::_allocate(size_t capacity) {
  if (capacity > SIZE_MAX / 4) throw std::bad_alloc();
  FileBytes bytes;
  bytes.data = new char[capacity + kPadding];
  bytes.capacity = capacity;
  return bytes;
}

void FileBytes::_readAll(int descriptor, const std::string& path, size_t atMost) {
  while (size <= atMost) {
    if (size == capacity) {
      FileBytes larger = _allocate(capacity * 2 + 65536);
      std::memcpy(larger.data, data, size);
      larger.size = size;
      *this = std::move(larger);
    }
    const ssize_t got =
        uninterrupted(path, [&] { return ::read(descriptor, data + size, capacity - size); });
    if (got == 0) break;
    size += static_cast<size_t>(got);
  }
  std::memset(data + size, 0, kPadding);
}

void FileBytes::_map(int descriptor, size_t fileSize, const std::string& path) {
  // The file's whole pages are followed by anonymous ones, which the rest is read into: zero bytes
  // follow the file whatever its size is, even when it grows later.
  const auto page = static_cast<size_t>(::sysconf(_SC_PAGESIZE));
  const size_t inPages = fileSize / page * page;
  const size_t whole = inPages + 2 * page;
  const bool hasPages = inPages > 0;
  void* area = hasPages ? ::mmap(nullptr, whole, PROT_READ, MAP_PRIVATE, descriptor, 0)
                        : ::mmap(nullptr, whole, kWritable, kAnonymous, -1, 0);
  if (area == MAP_FAILED && errno == ENOMEM) throw std::bad_alloc();
  if (area == MAP_FAILED) throwUnreadable(path, errno);
  data = static_cast<char*>(area);
  mappedBytes = hasPages ? inPages : whole;
  if (hasPages) {
    // When this fails the pages may be gone and belong to somebody else: not ours to unmap.
    void* rest = ::mmap(data + inPages, whole - inPages, kWritable, kAnonymous | MAP_FIXED, -1, 0);
    if (rest == MAP_FAILED) throw std::bad_alloc();  // unreachable: as many pages were there before
    mappedBytes = whole;
  }
  size = inPages;
  while (size < fileSize) {
    const ssize_t got = uninterrupted(path, [&] {
      return ::pread(descriptor, data + size, fileSize - size, static_cast<off_t>(size));
    });
    if (got == 0) break;  // unreachable: the file would have to shrink between two calls
    size += static_cast<size_t>(got);
  }
}

void FileBytes::_free() noexcept {
  if (mappedBytes > 0) {
    ::munmap(data, mappedBytes);
  } else if (!borrowed) {
    delete[] data;
  }
}

}  // namespace Kelp
