#include "kelp/utils/charstring.h"

#include <algorithm>
#include <climits>
#include <cstring>
#include <functional>
#include <memory>
#include <new>

namespace Kelp {

namespace {

// Lengths are int and every text carries a NUL, so a buffer holds at most INT_MAX bytes.
int checkedBytes(size_t bytes) {
  if (bytes > static_cast<size_t>(INT_MAX)) throw std::bad_alloc();
  return static_cast<int>(bytes);
}

CharStringBuf* newBuffer(size_t bytes) {
  const int size = checkedBytes(bytes);
  std::unique_ptr<CharStringBuf> fresh(new CharStringBuf);
  fresh->CharStringBuf::resize(size);
  return fresh.release();
}

// A copy of an argument that lies inside the buffer about to be resized.
std::unique_ptr<char[]> copyOf(const char* text) {
  const size_t bytes = std::strlen(text) + 1;
  std::unique_ptr<char[]> copy(new char[bytes]);
  std::memcpy(copy.get(), text, bytes);
  return copy;
}

}  // namespace

void CharStringBuf::resize(int bytes) {
  const bool fits = data != nullptr && bytes <= capacity;
  const bool wasteful = _ownsHeap() && bytes < capacity / 4;
  if (fits && !wasteful) return;
  const bool small = bytes <= kInlineBytes;
  char* target = small ? inlineBytes : new char[static_cast<size_t>(bytes) + 1];
  const int kept = std::max(0, std::min(bytes, capacity));
  if (kept > 0) std::memcpy(target, data, static_cast<size_t>(kept));
  // NOLINTNEXTLINE(clang-analyzer-unix.MismatchedDeallocator): it takes data for inlineBytes
  if (_ownsHeap()) delete[] data;
  data = target;
  capacity = small ? kInlineBytes : bytes;
  data[kept] = '\0';
  data[capacity] = '\0';
}

CharStringBuf::~CharStringBuf() {
  if (_ownsHeap()) delete[] data;
}

CharString::CharString(const char* text) {
  if (text == nullptr) return;
  const size_t bytes = std::strlen(text) + 1;
  buffer = newBuffer(bytes);
  std::memcpy(buffer->data, text, bytes);
}

CharString::CharString(std::string_view text) : buffer(newBuffer(text.size() + 1)) { _write(text); }

CharString::CharString(const CharString& other) noexcept : buffer(other.buffer) {
  if (buffer != nullptr) ++buffer->referenceCount;
}

CharString& CharString::operator=(const CharString& other) noexcept {
  if (buffer == other.buffer) return *this;
  CharStringBuf* shared = other.buffer;
  if (shared != nullptr) ++shared->referenceCount;
  _replaceBuffer(shared);
  return *this;
}

CharString& CharString::operator=(CharString&& other) noexcept {
  if (this == &other) return *this;
  CharStringBuf* taken = other.buffer;
  other.buffer = nullptr;
  _replaceBuffer(taken);
  return *this;
}

CharString& CharString::operator=(const char* text) {
  if (text == nullptr) {
    freeMem();
    return *this;
  }
  if (buffer != nullptr && !_isShared() && _pointsInside(text)) {
    const std::unique_ptr<char[]> copy = copyOf(text);
    return *this = copy.get();
  }
  const size_t bytes = std::strlen(text) + 1;
  if (buffer != nullptr && !_isShared()) {
    buffer->resize(checkedBytes(bytes));
    std::memcpy(buffer->data, text, bytes);
    return *this;
  }
  // The old buffer goes last: the argument may lie in it, and a failure must not lose it.
  CharStringBuf* fresh = newBuffer(bytes);
  std::memcpy(fresh->data, text, bytes);
  _replaceBuffer(fresh);
  return *this;
}

void CharString::assign(std::string_view text) {
  if (buffer == nullptr || _isShared() || _pointsInside(text.data())) {
    *this = CharString(text);
    return;
  }
  buffer->resize(checkedBytes(text.size() + 1));
  _write(text);
}

void CharString::freeMem() noexcept { _replaceBuffer(nullptr); }

void CharString::splitBuffer(int length, int keep) {
  if (length == INT_MAX) throw std::bad_alloc();
  const int bytes = length + 1;  // a negative length asks for nothing
  if (buffer != nullptr && !_isShared()) {
    // Deliberately not asked for `keep`: whoever owns the buffer alone finds its text again.
    buffer->resize(bytes);
    return;
  }
  CharStringBuf* fresh = newBuffer(bytes > 0 ? static_cast<size_t>(bytes) : 0);
  if (buffer != nullptr && keep != 0 && bytes > 0) {
    const size_t kept = strnlen(buffer->data, static_cast<size_t>(length));
    std::memcpy(fresh->data, buffer->data, kept);
    fresh->data[kept] = '\0';
  }
  _replaceBuffer(fresh);
}

void CharString::set(const char* first, const char* second) {
  // A missing or empty part makes the whole missing; callers rely on it to drop half-made names.
  if (first == nullptr || second == nullptr || *first == '\0' || *second == '\0') {
    freeMem();
    return;
  }
  if (buffer != nullptr && !_isShared() && (_pointsInside(first) || _pointsInside(second))) {
    const std::unique_ptr<char[]> firstCopy = copyOf(first);
    const std::unique_ptr<char[]> secondCopy = copyOf(second);
    set(firstCopy.get(), secondCopy.get());
    return;
  }
  const size_t firstLength = std::strlen(first);
  const size_t secondLength = std::strlen(second);
  const size_t bytes = firstLength + secondLength + 1;
  const bool inPlace = buffer != nullptr && !_isShared();
  CharStringBuf* target = inPlace ? buffer : newBuffer(bytes);
  if (inPlace) target->resize(checkedBytes(bytes));
  std::memcpy(target->data, first, firstLength);
  std::memcpy(target->data + firstLength, second, secondLength + 1);
  if (!inPlace) _replaceBuffer(target);
}

void CharString::append(const char* piece) {
  if (piece == nullptr) return;
  if (buffer == nullptr) {
    *this = piece;
    return;
  }
  if (!_isShared() && _pointsInside(piece)) {
    const std::unique_ptr<char[]> copy = copyOf(piece);
    append(copy.get());
    return;
  }
  const size_t oldLength = std::strlen(buffer->data);
  const size_t pieceBytes = std::strlen(piece) + 1;
  const int bytes = checkedBytes(oldLength + pieceBytes);
  if (!_isShared()) {
    buffer->resize(bytes);
    std::memcpy(buffer->data + oldLength, piece, pieceBytes);
    return;
  }
  CharStringBuf* fresh = newBuffer(static_cast<size_t>(bytes));
  std::memcpy(fresh->data, buffer->data, oldLength);
  std::memcpy(fresh->data + oldLength, piece, pieceBytes);
  _replaceBuffer(fresh);
}

int CharString::length() const {
  // A buffer that was never resized holds no characters.
  return chars() != nullptr ? static_cast<int>(std::strlen(chars())) : 0;
}

bool CharString::operator==(const CharString& other) const {
  if (buffer == other.buffer) return true;
  if (chars() == nullptr || other.chars() == nullptr) return false;
  return std::strcmp(chars(), other.chars()) == 0;
}

bool CharString::_pointsInside(const char* text) const {
  const char* begin = buffer->data;
  if (begin == nullptr || std::less<>()(text, begin)) return false;
  // A buffer class with a storage of its own has no capacity here; its text counts in any case.
  const size_t held = std::max(static_cast<size_t>(buffer->capacity), std::strlen(begin));
  return !std::less<>()(begin + held, text);
}

void CharString::_write(std::string_view text) noexcept {
  if (!text.empty()) std::memcpy(buffer->data, text.data(), text.size());
  buffer->data[text.size()] = '\0';
}

void CharString::_replaceBuffer(CharStringBuf* fresh) noexcept {
  CharStringBuf* old = buffer;
  buffer = fresh;
  if (old != nullptr && --old->referenceCount == 0) delete old;
}

CharString makeCharString(const char* a, const char* b, const char* c) {
  CharString result(a);
  result.append(b);
  result.append(c);
  return result;
}

}  // namespace Kelp
