#include "kelp/source/sourcesreader.h"

#include <sys/stat.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <filesystem>

#include "kelp/source/filebytes.h"
#include "kelp/source/streamedtext.h"
#include "kelp/utils/exceptions.h"

namespace Kelp {

namespace {

// What an unopened reader stands in: nothing to read, line 1, no name.
const char kNothing[FileBytes::kPadding] = {};

// Included files are kept for the case that they are included again, but not too much of them while
// a scene is read that need not fit into memory.
constexpr int64_t kIncludedBytesHeld = int64_t{16} << 20U;

constexpr const char* kByteOrderMark = "\xEF\xBB\xBF";

const Source& emptySource() {
  static const Source empty = [] {
    Source source;
    source.begin = source.end = kNothing;
    return source;
  }();
  return empty;
}

bool exists(const std::string& path) {
  struct stat status;
  return ::stat(path.c_str(), &status) == 0 || (errno != ENOENT && errno != ENOTDIR);
}

// Whether a file lies in the folder or deeper, once links and dots are followed.
bool isBelow(const std::string& path, const std::string& folder) {
  std::error_code pathError;
  std::error_code folderError;
  const auto file = std::filesystem::weakly_canonical(path, pathError);
  const auto root = std::filesystem::canonical(folder, folderError);
  if (pathError || folderError) return false;
  return std::mismatch(root.begin(), root.end(), file.begin(), file.end()).first == root.end();
}

[[noreturn]] void throwInvalidSource(const std::string& message) {
  throw InvalidSourceFile(CharString(message.c_str()));
}

}  // namespace

std::string directoryOfFile(const char* name) {
  std::string directory = std::filesystem::path(name != nullptr ? name : "").parent_path().string();
  return directory.empty() ? "." : directory;
}

struct SourcesReader::LoadedSource {
  Source source;
  FileBytes bytes;

  int64_t size() const { return static_cast<int64_t>(bytes.size); }

  // Whether that is still the state of the file that the bytes were read from.
  bool isUnchanged(const struct stat& file) const {
    return file.st_dev == bytes.device && file.st_ino == bytes.inode && file.st_size == size() &&
           file.st_mtim.tv_sec == bytes.modified.tv_sec &&
           file.st_mtim.tv_nsec == bytes.modified.tv_nsec;
  }
};

SourcesReader::SourcesReader() : sceneSource(&emptySource()) {
  position = {sceneSource, sceneSource->begin, sceneSource->begin, 1};
}

SourcesReader::~SourcesReader() = default;

// ---- scenes ------------------------------------------------------------------------------------

void SourcesReader::openFile(const char* path) {
  const LoadedSource* loaded = _keep(_load(path, false, 0));
  _start(loaded->source, loaded->size());
}

void SourcesReader::openText(const char* text, int64_t length, const char* name) {
  _checkBytes(length);
  _startText(FileBytes::copy(text, static_cast<size_t>(length)), name);
}

void SourcesReader::borrowText(const char* text, int64_t length, const char* name) {
  _checkBytes(length);
  static_assert(kPadding == FileBytes::kPadding);
  _startText(FileBytes::borrow(text, static_cast<size_t>(length)), name);
}

void SourcesReader::_startText(FileBytes bytes, const char* name) {
  auto loaded = std::make_unique<LoadedSource>();
  loaded->bytes = std::move(bytes);
  loaded->source.name = CharString(name);
  loaded->source.directory = CharString(directoryOfFile(name).c_str());
  const LoadedSource* kept = _keep(std::move(loaded));
  _start(kept->source, kept->size());
}

void SourcesReader::openStream(TextInput input, const char* name, size_t windowBytes) {
  _checkBytes(input.size);
  auto opened = std::make_unique<StreamedText>(std::move(input), name, windowBytes);
  _checkBytes(opened->size());
  Source& source = opened->source;
  if (std::strncmp(source.begin, kByteOrderMark, 3) == 0) source.begin += 3;
  _start(source, opened->size());
  totalBytes += opened->bytesSoFar() - opened->size();
  stream = std::move(opened);
}

void SourcesReader::_start(const Source& source, int64_t bytes) {
  includers.clear();
  includePlaces.clear();
  includes = 0;
  sceneBytes = bytes;
  totalBytes += bytes;
  sceneSource = &source;
  position = {sceneSource, source.begin, source.begin, 1};
}

std::unique_ptr<SourcesReader::LoadedSource> SourcesReader::_load(const std::string& path,
                                                                  bool regularOnly,
                                                                  int64_t bytesRead) const {
  FileBytes::Request request;
  request.map = mapFiles;
  request.regularOnly = regularOnly;
  if (limits.maxBytes > 0) request.atMost = static_cast<size_t>(limits.maxBytes - bytesRead);
  auto loaded = std::make_unique<LoadedSource>();
  loaded->bytes = FileBytes::read(path, request);
  _checkBytes(bytesRead + loaded->size());
  loaded->source.name = CharString(path.c_str());
  loaded->source.directory = CharString(directoryOfFile(path.c_str()).c_str());
  loaded->source.device = loaded->bytes.device;
  loaded->source.inode = loaded->bytes.inode;
  return loaded;
}

SourcesReader::LoadedSource* SourcesReader::_keep(std::unique_ptr<LoadedSource> loaded) {
  Source& source = loaded->source;
  source.begin = loaded->bytes.data;
  source.end = source.begin + loaded->bytes.size;
  if (std::strncmp(source.begin, kByteOrderMark, 3) == 0) source.begin += 3;
  sources.push_back(std::move(loaded));
  return sources.back().get();
}

void SourcesReader::_checkBytes(int64_t bytes) const {
  if (limits.maxBytes <= 0 || bytes <= limits.maxBytes) return;
  throwInvalidSource("The scene has more than " + std::to_string(limits.maxBytes) + " bytes");
}

char* SourcesReader::keepText(size_t bytes) {
  keptTexts.push_back(std::make_unique_for_overwrite<char[]>(bytes));
  return keptTexts.back().get();
}

// ---- includes ----------------------------------------------------------------------------------

void SourcesReader::addIncludePath(const char* directory) { includePaths.emplace_back(directory); }

void SourcesReader::enterInclude(const std::string& path) {
  if (includers.size() + 1 >= kMaxFiles) {
    throwInvalidSource("Files are included more than " + std::to_string(kMaxFiles) + " deep at \"" +
                       path + "\"");
  }
  // Files that each include the next one twice would go on for ever without being deep.
  if (limits.maxIncludes > 0 && includes >= limits.maxIncludes) {
    throwInvalidSource("The scene includes more than " + std::to_string(limits.maxIncludes) +
                       " files");
  }
  LoadedSource* loaded = _openInclude(_resolveInclude(path));
  const Source* included = &loaded->source;
  const auto sameFile = [included](const Source* open) {
    return open->inode != 0 && open->inode == included->inode && open->device == included->device;
  };
  bool cycle = sameFile(position.source);
  for (const SourcePosition& includer : includers) cycle = cycle || sameFile(includer.source);
  if (cycle) {
    throwInvalidSource("File \"" + std::string(included->name.chars()) + "\" includes itself");
  }
  includePlaces.push_back({position.source->name, position.line, position.includedFrom});
  includers.push_back(position);
  ++includes;
  sceneBytes += loaded->size();
  totalBytes += loaded->size();
  position = {included, included->begin, included->begin, 1, &includePlaces.back()};
}

bool SourcesReader::leaveInclude() {
  if (includers.empty()) return false;
  position = includers.back();
  includers.pop_back();
  return true;
}

// The file at that path; its bytes of the last time when it has not changed since.
SourcesReader::LoadedSource* SourcesReader::_openInclude(const std::string& path) {
  LoadedSource*& known = includedBefore[path];
  struct stat status;
  if (known != nullptr && ::stat(path.c_str(), &status) == 0 && known->isUnchanged(status)) {
    _checkBytes(sceneBytes + known->size());
    return known;
  }
  known = _keep(_load(path, true, sceneBytes));
  includedBytes += known->size();
  return known;
}

std::string SourcesReader::_resolveInclude(const std::string& path) const {
  const std::string found = _findInclude(path);
  if (limits.confine && !_isConfined(found)) {
    throwInvalidSource("File \"" + found + "\" lies outside the scene's folder");
  }
  return found;
}

std::string SourcesReader::_findInclude(const std::string& path) const {
  if (path.empty()) throwInvalidSource("#include needs the name of a file");
  const std::filesystem::path wanted(path);
  if (wanted.is_absolute()) return path;
  const std::string beside = position.source->directory.chars();
  const std::string first = beside == "." ? path : (beside / wanted).string();
  if (exists(first)) return first;
  for (const std::string& directory : includePaths) {
    const std::string candidate = (directory / wanted).string();
    if (exists(candidate)) return candidate;
  }
  return first;  // reading it says what is wrong
}

// Links count as what they point to. Whether a file exists makes no difference to the answer.
bool SourcesReader::_isConfined(const std::string& path) const {
  if (isBelow(path, sceneSource->directory.chars())) return true;
  return std::any_of(includePaths.begin(), includePaths.end(),
                     [&path](const std::string& folder) { return isBelow(path, folder); });
}

// ---- streams -----------------------------------------------------------------------------------

void SourcesReader::mark(Bookmark& bookmark) const {
  bookmark.position = position;
  bookmark.includers = includers;
  bookmark.totalBytes = totalBytes;
  bookmark.sceneBytes = sceneBytes;
  bookmark.includes = includes;
}

void SourcesReader::goBack(const Bookmark& bookmark) {
  position = bookmark.position;
  includers = bookmark.includers;
  totalBytes = bookmark.totalBytes;
  sceneBytes = bookmark.sceneBytes;
  includes = bookmark.includes;
}

void SourcesReader::readOn(SourcePosition& place, SourcePosition& anotherPlace) {
  const int64_t sizeBefore = stream->size();
  const int64_t readBefore = stream->bytesSoFar();
  stream->readOn({includers.empty() ? &position : &includers.front(), &place, &anotherPlace});
  sceneBytes += stream->size() - sizeBefore;
  totalBytes += stream->bytesSoFar() - readBefore;
  _checkBytes(sceneBytes);
}

void SourcesReader::closeStream() {
  stream->close();
  position = {sceneSource, sceneSource->begin, sceneSource->begin, position.line};
  includers.clear();
  includePlaces.clear();
  includedBefore.clear();
  sources.clear();
  includedBytes = 0;
}

void SourcesReader::dropTexts(size_t begin, size_t end) {
  const auto first = keptTexts.begin();
  keptTexts.erase(first + static_cast<std::ptrdiff_t>(begin),
                  first + static_cast<std::ptrdiff_t>(end));
}

void SourcesReader::dropFiles(const Source* inUse, const Source* alsoInUse) {
  if (includedBytes <= kIncludedBytesHeld) return;
  const auto isUsed = [&](const LoadedSource& file) {
    const Source* source = &file.source;
    return source == inUse || source == alsoInUse || source == position.source ||
           std::any_of(includers.begin(), includers.end(),
                       [source](const SourcePosition& place) { return place.source == source; });
  };
  std::erase_if(includedBefore, [&](const auto& known) {
    return known.second == nullptr || !isUsed(*known.second);
  });
  std::erase_if(sources, [&](const auto& file) { return !isUsed(*file); });
  includedBytes = 0;
  for (const auto& known : includedBefore) includedBytes += known.second->size();
}

}  // namespace Kelp
