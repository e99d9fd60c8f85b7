#include "kelp/source/textwindow.h"

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <new>
#include <utility>

#include "kelp/source/filebytes.h"

namespace Kelp {

namespace {

constexpr size_t kSmallest = 4;  // room for a byte order mark
constexpr size_t kGenerosity = 64;

std::unique_ptr<char[]> makeBuffer(size_t capacity) {
  if (capacity > SIZE_MAX / 4) throw std::bad_alloc();
  return std::make_unique_for_overwrite<char[]>(capacity + FileBytes::kPadding);
}

void pad(char* end) { std::memset(end, 0, FileBytes::kPadding); }

}  // namespace

TextWindow::TextWindow(TextInput::Read input, size_t bytes)
    : read(std::move(input)),
      buffer(makeBuffer(std::max(bytes, kSmallest))),
      capacity(std::max(bytes, kSmallest)),
      generousUpTo(capacity * kGenerosity) {
  pad(buffer.get());
}

void TextWindow::slide(const char* keepFrom) {
  const auto kept = static_cast<size_t>(end() - keepFrom);
  if (kept > capacity / (capacity < generousUpTo ? 8 : 2)) {
    auto larger = makeBuffer(capacity * 2);
    std::memcpy(larger.get(), keepFrom, kept);
    buffer = std::move(larger);
    capacity *= 2;
  } else {
    std::memmove(buffer.get(), keepFrom, kept);
  }
  size = kept;
  pad(buffer.get() + size);
}

void TextWindow::fill() {
  if (failure != nullptr) std::rethrow_exception(failure);
  const size_t before = size;
  try {
    while (!ended && size < capacity) {
      const size_t got = read(buffer.get() + size, capacity - size);
      size += got;
      ended = got == 0;
    }
  } catch (...) {
    if (size == before) throw;
    failure = std::current_exception();
  }
  pad(buffer.get() + size);
}

}  // namespace Kelp
