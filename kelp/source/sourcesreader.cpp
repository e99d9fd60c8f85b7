#include "kelp/source/sourcesreader.h"

#include <sys/stat.h>

#include <cerrno>
#include <cstring>
#include <filesystem>

#include "kelp/source/filebytes.h"
#include "kelp/utils/exceptions.h"

namespace Kelp {

namespace {

// What an unopened reader stands in: nothing to read, line 1, no name.
const char kNothing[FileBytes::kPadding] = {};

const Source& emptySource() {
  static const Source empty = [] {
    Source source;
    source.begin = source.end = kNothing;
    return source;
  }();
  return empty;
}

std::string directoryOf(const char* name) {
  std::string directory = std::filesystem::path(name != nullptr ? name : "").parent_path().string();
  return directory.empty() ? "." : directory;
}

bool exists(const std::string& path) {
  struct stat status;
  return ::stat(path.c_str(), &status) == 0 || (errno != ENOENT && errno != ENOTDIR);
}

[[noreturn]] void throwInvalidSource(const std::string& message) {
  throw InvalidSourceFile(CharString(message.c_str()));
}

}  // namespace

struct SourcesReader::LoadedSource {
  Source source;
  FileBytes bytes;
};

SourcesReader::SourcesReader() { _start(&emptySource()); }

SourcesReader::~SourcesReader() = default;

void SourcesReader::openFile(const char* path) { _start(_addFile(path)); }

void SourcesReader::openText(const char* text, int64_t length, const char* name) {
  auto loaded = std::make_unique<LoadedSource>();
  loaded->bytes = FileBytes::copy(text, static_cast<size_t>(length));
  loaded->source.name = CharString(name);
  loaded->source.directory = CharString(directoryOf(name).c_str());
  _start(_addText(std::move(loaded)));
}

void SourcesReader::addIncludePath(const char* directory) { includePaths.emplace_back(directory); }

void SourcesReader::enterInclude(const std::string& path) {
  if (includers.size() + 1 >= kMaxFiles) {
    throwInvalidSource("Files are included more than " + std::to_string(kMaxFiles) + " deep at \"" +
                       path + "\"");
  }
  const Source* included = _addFile(_resolveInclude(path));
  const auto sameFile = [included](const Source* open) {
    return open->inode != 0 && open->inode == included->inode && open->device == included->device;
  };
  bool cycle = sameFile(position.source);
  for (const SourcePosition& includer : includers) cycle = cycle || sameFile(includer.source);
  if (cycle) {
    throwInvalidSource("File \"" + std::string(included->name.chars()) + "\" includes itself");
  }
  includers.push_back(position);
  position = {included, included->begin, included->begin, 1};
}

bool SourcesReader::leaveInclude() {
  if (includers.empty()) return false;
  position = includers.back();
  includers.pop_back();
  return true;
}

char* SourcesReader::keepText(size_t bytes) {
  keptTexts.push_back(std::make_unique_for_overwrite<char[]>(bytes));
  return keptTexts.back().get();
}

void SourcesReader::_start(const Source* source) {
  includers.clear();
  position = {source, source->begin, source->begin, 1};
}

const Source* SourcesReader::_addFile(const std::string& path) {
  auto loaded = std::make_unique<LoadedSource>();
  loaded->bytes = FileBytes::read(path, mapFiles);
  loaded->source.name = CharString(path.c_str());
  loaded->source.directory = CharString(directoryOf(path.c_str()).c_str());
  loaded->source.device = loaded->bytes.device;
  loaded->source.inode = loaded->bytes.inode;
  return _addText(std::move(loaded));
}

const Source* SourcesReader::_addText(std::unique_ptr<LoadedSource> loaded) {
  Source& source = loaded->source;
  source.begin = loaded->bytes.data;
  source.end = source.begin + loaded->bytes.size;
  if (std::strncmp(source.begin, "\xEF\xBB\xBF", 3) == 0) source.begin += 3;
  sources.push_back(std::move(loaded));
  totalBytes += static_cast<int64_t>(sources.back()->bytes.size);
  return &source;
}

std::string SourcesReader::_resolveInclude(const std::string& path) const {
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

}  // namespace Kelp
