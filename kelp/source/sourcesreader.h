// SourcesReader: the files of one scene, and where in them the scanner stands.
#pragma once

#include <sys/types.h>

#include <cstdint>
#include <deque>
#include <memory>
#include <string>
#include <unordered_map>
#include <vector>

#include "kelp/source/textinput.h"
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
  bool goesOn = false;        ///< more of the text follows `end`, which is not in memory yet
  int64_t cutCharacters = 0;  ///< of the line that `begin` stands in, before it; 0: all are there
};

/// The #include line that a file is read for, and what the file with that line is read for.
struct IncludePlace {
  CharString file;
  int line;
  const IncludePlace* next;  ///< null: that file is the scene's own
};

/// A place in a source. Lines count from 1 and end at LF; from the 2,147,483,647th on they all
/// bear that number.
struct SourcePosition {
  const Source* source = nullptr;
  const char* at = nullptr;
  const char* lineStart = nullptr;
  int line = 1;
  const IncludePlace* includedFrom = nullptr;  ///< the reader's; null in the scene's own file

  void beginLine(const char* start) {
    lineStart = start;
    if (line < INT32_MAX) ++line;
  }
};

class StreamedText;

/// The folder that a file lies in, "." for a name without one and for null.
std::string directoryOfFile(const char* name);

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
  /// How much of a stream's line stays in memory before a place, and is looked for behind it.
  static constexpr int64_t kLineContext = 65536;
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

  /// Starts reading a scene of which a window of `windowBytes` bytes is in memory, more where it is
  /// needed: readOn moves it. The name is as in openText. Throws as openFile does, or what the
  /// input throws.
  void openStream(TextInput input, const char* name, size_t windowBytes);

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

  /// Room for `bytes` characters that lives as long as the reader, unless it is dropped.
  char* keepText(size_t bytes);

  // ---- for who reads a stream ----

  /// Where reading stands, with the way there, for coming back to it.
  struct Bookmark {
    SourcePosition position;
    std::vector<SourcePosition> includers;
    int64_t totalBytes = 0;
    int64_t sceneBytes = 0;
    int64_t includes = 0;
  };

  /// Notes where reading stands.
  void mark(Bookmark& bookmark) const;
  /// Goes back there. Requires: no text that it stands in has moved since.
  void goBack(const Bookmark& bookmark);

  /// Reads on behind the end of the scene's text, and drops what lies before the first of these two
  /// places and the reader's own; they follow the text to where it moves. Throws what the input
  /// throws, and InvalidSourceFile when the scene gets too long.
  void readOn(SourcePosition& place, SourcePosition& anotherPlace);

  /// Forgets the stream's text and all included files. There is nothing to read then, and nothing
  /// that was read from them may be used but what keepText has room for.
  void closeStream();

  /// The scene's own text, without those that it includes.
  const Source& sceneText() const { return *sceneSource; }
  /// Texts that keepText has made room for.
  size_t keptTextCount() const { return keptTexts.size(); }
  /// Drops those from the one with number `begin` on up to that before `end`, both from 0.
  void dropTexts(size_t begin, size_t end);

  /// Drops included files that take much memory, unless the reader or one of these stands in them.
  /// They are read again when they are included again.
  void dropFiles(const Source* inUse, const Source* alsoInUse);

  /// Total bytes of the files and texts opened so far, again for every include.
  int64_t bytesRead() const { return totalBytes; }

 private:
  struct LoadedSource;

  void _startText(FileBytes bytes, const char* name);
  void _start(const Source& source, int64_t bytes);
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
  std::vector<SourcePosition> includers;   // innermost last
  std::deque<IncludePlace> includePlaces;  // of the scene, for positions to refer to
  std::vector<std::string> includePaths;
  const Source* sceneSource = nullptr;
  std::unique_ptr<StreamedText> stream;  // the scene's own when it is read piece by piece
  int64_t totalBytes = 0;
  int64_t sceneBytes = 0;     // the part of them that belongs to this scene
  int64_t includes = 0;       // followed in this scene
  int64_t includedBytes = 0;  // of the included files in memory
};

}  // namespace Kelp
