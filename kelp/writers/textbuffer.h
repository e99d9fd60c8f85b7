// TextBuffer: small pieces of text on their way to a sink.
#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <string_view>
#include <utility>

namespace Kelp {

/// Takes a text piece by piece, in pieces of some 64 KiB. What it throws passes through.
using TextSink = std::function<void(std::string_view)>;

/// Collects pieces and hands them on when there are many.
class TextBuffer {
 public:
  explicit TextBuffer(TextSink textSink) : sink(std::move(textSink)) {}

  TextBuffer& operator<<(std::string_view piece) {
    text += piece;
    if (text.size() >= kEnough) flush();
    return *this;
  }
  TextBuffer& operator<<(char c) { return *this << std::string_view(&c, 1); }

  /// Hands on what is held back.
  void flush() {
    if (!text.empty()) sink(text);
    text.clear();
  }

 private:
  static constexpr size_t kEnough = 1 << 16;

  TextSink sink;
  std::string text;
};

}  // namespace Kelp
