// TextWindow: the part of a long text that is in memory.
#pragma once

#include <cstddef>
#include <exception>
#include <memory>

#include "kelp/source/textinput.h"

namespace Kelp {

/// Slides over a text from its beginning to its end. It grows when it must keep more than half of
/// what it has room for, so that every byte is moved a limited number of times. What is kept will
/// be read again: up to 64 times its first size it grows already when that is more than an eighth.
class TextWindow {
 public:
  /// Nothing is read yet; the window will hold `bytes` bytes, or more where it has to.
  TextWindow(TextInput::Read input, size_t bytes);

  /// Drops the text before `keepFrom`, which lies in the window or at its end. What is kept moves
  /// to the window's beginning. Throws std::bad_alloc, and then nothing has changed.
  void slide(const char* keepFrom);

  /// Reads on until the window is full or the text has ended. Throws what the input throws, once
  /// nothing can be read any more: what came before a failure is there first.
  void fill();

  /// The text in memory. Zero bytes follow it.
  const char* begin() const { return buffer.get(); }
  const char* end() const { return buffer.get() + size; }

  /// Whether there may be more text.
  bool goesOn() const { return !ended; }

 private:
  TextInput::Read read;
  std::unique_ptr<char[]> buffer;
  size_t capacity;      // bytes in the buffer before the padding
  size_t generousUpTo;  // grows early below that
  size_t size = 0;
  bool ended = false;
  std::exception_ptr failure;  // of the input, kept back
};

}  // namespace Kelp
