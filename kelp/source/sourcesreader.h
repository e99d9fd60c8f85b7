// SourcesReader: the files of one scene, and where in them the scanner stands.
#pragma once

#include <sys/types.h>

#include <cstdint>
#include <memory>
#include <string>
#include <unordered_map>
#include <vector>

#include "kelp/utils/charstring.h"

namespace Kelp {

struct FileBytes;

/// The bytes of one file or text. SourcesReader::kPadding zero bytes or more follow `end`.
struct Source {
  CharString name;       ///< as it was opened; null for a text without a name
  CharString directory;  ///< directory part of the name, "." when it has none
  const char* begin = nullptr;
  const char* end = nullptr;
  dev_t device = 0;  ///< with inode the identity of a file; both 0 for a text in memory
  ino_t inode = 0;
};

/// A place in a source. Lines count from 1 and end at LF; from the 2,147,483,647th on they all
/// bear that number.
struct SourcePosition {
  const Source* source = nullptr;
  const char* at = nullptr;
  const char* lineStart = nullptr;
  int line = 1;

  void beginLine(const char* start) {
    lineStart = start;
    if (line < INT32_MAX) ++line;
  }
};

/// What a reader refuses to read. Texts that are not to be trusted need tighter ones.
struct SourceLimits {
  int64_t maxBytes = 0;          ///< of all files of a scene, again for every include; 0: no limit
  int64_t maxIncludes = 100000;  ///< #include lines that are followed in a scene; 0: no limit
  int64_t maxStringLength = INT32_MAX - 1;  ///< characters between quotes; nodes count in int
  bool confine = false;  ///< included files lie below the scene's own folder or an include path
};

/// Owns the bytes of every file of a scene until it is destroyed: nodes that hold a long text
/// refer to them. Used by one thread at a time.
class SourcesReader {
 public:
  /// A scene's own file counts as the first of these.
  static constexpr int kMaxFiles = 64;
  /// Zero bytes behind a text, so that a scanner may read a little past its end.
  static constexpr size_t kPadding = 64;

  SourcesReader();
  SourcesReader(const SourcesReader&) = delete;
  SourcesReader& operator=(const SourcesReader&) = delete;
  ~SourcesReader();

  /// Starts reading a scene from a file, or another one; sources read before stay in memory.
  /// Throws InvalidSourceFile with the reason, or std::bad_alloc, and then nothing has changed.
  void openFile(const char* path);

  /// Starts reading a scene from a copy of `length` bytes of text. `name` (may be null) stands in
  /// messages and gives the directory that includes are looked up in. Throws as openFile does.
  void openText(const char* text, int64_t length, const char* name);

  /// As openText, but the text is not copied: it stays the caller's, unchanged, as long as the
  /// reader lives, and kPadding zero bytes follow it.
  void borrowText(const char* text, int64_t length, const char* name);

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

  SourceLimits limits;

  // ---- for the scanner ----

  /// Where reading goes on. The scanner moves it.
  SourcePosition position;

  /// Goes on at the start of an included file; what is left of the present one follows later.
  /// Pipes and devices cannot be included. Throws InvalidSourceFile when the file cannot be found
  /// or read, includes itself, or breaks a limit, and then the position has not changed.
  void enterInclude(const std::string& path);

  /// At the end of an included file: back to the file that included it. False in the scene's own.
  bool leaveInclude();

  /// Room for `bytes` characters that lives as long as the reader.
  char* keepText(size_t bytes);

  /// Total bytes of the files and texts opened so far, again for every include.
  int64_t bytesRead() const { return totalBytes; }

 private:
  struct LoadedSource;

  void _startText(FileBytes bytes, const char* name);
  void _start(LoadedSource* loaded);
  LoadedSource* _openInclude(const std::string& path);
  std::unique_ptr<LoadedSource> _load(const std::string& path, bool regularOnly,
                                      int64_t bytesRead) const;
  LoadedSource* _keep(std::unique_ptr<LoadedSource> loaded);
  void _checkBytes(int64_t bytes) const;
  std::string _resolveInclude(const std::string& path) const;
  std::string _findInclude(const std::string& path) const;
  bool _isConfined(const std::string& path) const;

  std::vector<std::unique_ptr<LoadedSource>> sources;
  std::unordered_map<std::string, LoadedSource*> includedBefore;  // by path
  std::vector<std::unique_ptr<char[]>> keptTexts;
  std::vector<SourcePosition> includers;  // innermost last
  std::vector<std::string> includePaths;
  const Source* sceneSource = nullptr;
  int64_t totalBytes = 0;
  int64_t sceneBytes = 0;  // the part of them that belongs to this scene
  int64_t includes = 0;    // followed in this scene
};

}  // namespace Kelp
