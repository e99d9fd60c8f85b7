// SourcesReader: the files of one scene, and where in them the scanner stands.
#pragma once

#include <sys/types.h>

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "kelp/utils/charstring.h"

namespace Kelp {

/// The bytes of one file or text. At least 64 zero bytes follow `end`, so that a scanner may read a
/// little past it.
struct Source {
  CharString name;       ///< as it was opened; null for a text without a name
  CharString directory;  ///< directory part of the name, "." when it has none
  const char* begin = nullptr;
  const char* end = nullptr;
  dev_t device = 0;  ///< with inode the identity of a file; both 0 for a text in memory
  ino_t inode = 0;
};

/// A place in a source. Lines count from 1 and end at LF.
struct SourcePosition {
  const Source* source = nullptr;
  const char* at = nullptr;
  const char* lineStart = nullptr;
  int line = 1;
};

/// Owns the bytes of every file of a scene until it is destroyed: nodes that hold a long text
/// refer to them. Used by one thread at a time.
class SourcesReader {
 public:
  /// A scene's own file counts as the first of these.
  static constexpr int kMaxFiles = 64;

  SourcesReader();
  SourcesReader(const SourcesReader&) = delete;
  SourcesReader& operator=(const SourcesReader&) = delete;
  ~SourcesReader();

  /// Starts reading a scene from a file, or another one; sources read before stay in memory.
  /// Throws InvalidSourceFile with the reason, or std::bad_alloc, and then nothing has changed.
  void openFile(const char* path);

  /// Starts reading a scene from a copy of `length` bytes of text. `name` (may be null) stands in
  /// messages and gives the directory that includes are looked up in. Throws std::bad_alloc.
  void openText(const char* text, int64_t length, const char* name);

  /// Adds a directory to look up included files in, after that of the including file.
  void addIncludePath(const char* directory);

  /// Name of the file that the last token came from; null before anything is opened and for texts
  /// without a name. Costs no allocation.
  CharString getCurrentFile() const { return position.source->name; }
  /// Directory of that file.
  CharString getCurrentFileDir() const { return position.source->directory; }
  /// The line on which the last token ended, from 1.
  int getCurrentLine() const { return position.line; }

  /// First and last frame that the text being read describes; both 0: it holds for all frames.
  /// A tool sets them, the reader does not interpret them.
  double readerParam1 = 0.0;
  double readerParam2 = 0.0;

  /// Files are read into memory by default, since one that shrinks under a mapping kills its host.
  /// True: files opened from now on are mapped.
  bool mapFiles = false;

  // ---- for the scanner ----

  /// Where reading goes on. The scanner moves it.
  SourcePosition position;

  /// Goes on at the start of an included file; what is left of the present one follows later.
  /// Throws InvalidSourceFile when the file cannot be found or read, includes itself, or is one too
  /// many, and then the position has not changed.
  void enterInclude(const std::string& path);

  /// At the end of an included file: back to the file that included it. False in the scene's own.
  bool leaveInclude();

  /// Room for `bytes` characters that lives as long as the reader.
  char* keepText(size_t bytes);

  /// Total bytes of the files and texts opened so far.
  int64_t bytesRead() const { return totalBytes; }

 private:
  struct LoadedSource;

  void _start(const Source* source);
  const Source* _addFile(const std::string& path);
  const Source* _addText(std::unique_ptr<LoadedSource> loaded);
  std::string _resolveInclude(const std::string& path) const;

  std::vector<std::unique_ptr<LoadedSource>> sources;
  std::vector<std::unique_ptr<char[]>> keptTexts;
  std::vector<SourcePosition> includers;  // innermost last
  std::vector<std::string> includePaths;
  int64_t totalBytes = 0;
};

}  // namespace Kelp
