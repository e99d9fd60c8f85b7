// StreamedText: a source of which only a window is in memory.
#pragma once

#include <initializer_list>

#include "kelp/source/sourcesreader.h"
#include "kelp/source/textwindow.h"

namespace Kelp {

class StreamedText {
 public:
  /// Reads the beginning of a text. Throws what the input throws, and std::bad_alloc.
  StreamedText(TextInput input, const char* name, size_t windowBytes);
  StreamedText(const StreamedText&) = delete;
  StreamedText& operator=(const StreamedText&) = delete;

  /// Drops what lies before the first of these places and reads on; those in this source follow
  /// their text to where it moves. Of a line, a limited part is kept before them. Throws as
  /// TextWindow does.
  void readOn(std::initializer_list<SourcePosition*> places);

  /// Frees the text in memory; there is nothing to read then.
  void close();

  /// Bytes of the whole text, as far as is known by now.
  int64_t size() const { return std::max(expectedBytes, streamedBytes); }
  /// Bytes that have been in memory.
  int64_t bytesSoFar() const { return streamedBytes; }

  Source source;

 private:
  void _fill();
  void _show();

  TextWindow window;
  const int64_t expectedBytes;
  int64_t streamedBytes = 0;
};

}  // namespace Kelp
