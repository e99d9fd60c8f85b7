// CharString: the library's string, a one-pointer handle on a shared character buffer.
//
// Copies share the buffer; whoever writes first gets a buffer of its own (copy on write). A handle
// may also be null: "there is no string", which is distinct from the empty string. Counts are plain
// integers, so a string and all handles that share its buffer belong to one thread at a time.
#pragma once

#include <cstddef>
#include <string_view>

namespace Kelp {

/// The shared, reference-counted buffer behind a CharString. Texts that fit are kept inside the
/// buffer object itself, so that a typical name costs one allocation.
class CharStringBuf {
 public:
  CharStringBuf() = default;
  CharStringBuf(const CharStringBuf&) = delete;
  CharStringBuf& operator=(const CharStringBuf&) = delete;

  char* data = nullptr;    ///< the characters, NUL-terminated by whoever writes; null before resize
  int referenceCount = 1;  ///< number of CharString handles that share this buffer

  /// Makes room for `bytes` bytes, keeping the old contents as far as they fit. The data end in a
  /// NUL behind them, so that a reader who comes before the writer finds a text.
  /// Throws std::bad_alloc, and then the buffer is unchanged.
  virtual void resize(int bytes);

  /// Frees the characters; a buffer is only ever destroyed through this operation.
  virtual ~CharStringBuf();

 private:
  friend class CharString;

  static constexpr int kInlineBytes = 39;

  bool _ownsHeap() const { return data != nullptr && data != inlineBytes; }

  int capacity = 0;                    // bytes to write to; one more, always NUL, follows them
  char inlineBytes[kInlineBytes + 1];  // not initialised: `data` says whether it is in use
};

/// A handle on a shared string, or null. Lengths are `int`; a string ends at its first NUL.
/// Operations that write throw std::bad_alloc when memory runs out or a length would pass
/// INT_MAX - 1, and then leave the handle as it was. Arguments may point into the string itself.
class CharString {
 public:
  CharString() = default;

  /// A copy of `text`; null gives the null string, "" a non-null empty one.
  // NOLINTNEXTLINE(google-explicit-constructor): names are written as literals
  CharString(const char* text);
  /// A copy of the characters, none of which is NUL.
  explicit CharString(std::string_view text);
  CharString(const CharString& other) noexcept;
  CharString(CharString&& other) noexcept : buffer(other.buffer) { other.buffer = nullptr; }
  ~CharString() { freeMem(); }

  CharString& operator=(const CharString& other) noexcept;
  CharString& operator=(CharString&& other) noexcept;
  CharString& operator=(const char* text);

  /// Becomes a copy of the characters, none of which is NUL; in place when the buffer is its own.
  void assign(std::string_view text);

  /// Drops this handle's share of the buffer and becomes null.
  void freeMem() noexcept;

  /// Gives this handle a buffer of its own with room for `length` characters and a NUL.
  /// A shared buffer is left to its other holders: with `keep` its text (at most `length`
  /// characters) is copied and terminated, without it the new contents are undefined. A buffer
  /// that is already owned alone keeps its contents as far as they fit, whatever `keep` says.
  void splitBuffer(int length, int keep);

  /// Becomes first + second. If either part is null or empty the result is the null string.
  void set(const char* first, const char* second);

  /// Adds `piece` at the end. Null adds nothing; a null string becomes a copy of the piece.
  void append(const char* piece);

  /// The characters, null for the null string. Valid until this handle is written or freed.
  const char* chars() const { return buffer != nullptr ? buffer->data : nullptr; }
  int length() const;
  bool isNull() const { return buffer == nullptr; }
  bool isEmpty() const { return chars() == nullptr || *chars() == '\0'; }

  /// Equal: both null, or both not null with the same characters.
  bool operator==(const CharString& other) const;

  CharStringBuf* buffer = nullptr;  ///< the shared buffer; null is the null string

 private:
  bool _isShared() const { return buffer->referenceCount > 1; }
  bool _pointsInside(const char* text) const;
  void _write(std::string_view text) noexcept;
  void _replaceBuffer(CharStringBuf* fresh) noexcept;
};

/// a + b + c. Null pieces are skipped; all three null give the null string.
CharString makeCharString(const char* a, const char* b, const char* c);

}  // namespace Kelp
