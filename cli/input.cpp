#include "cli/input.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <cstring>
#include <memory>
#include <new>
#include <optional>
#include <stdexcept>
#include <utility>

#include "cli/compression.h"
#include "cli/progress.h"

namespace KelpCli {

namespace {

constexpr size_t kBlock = 1 << 16;

[[noreturn]] void throwUnreadable(const std::string& file, int error) {
  const std::string name = file == "-" ? "standard input" : '"' + file + '"';
  const std::string message = "Cannot read " + name + ": " + std::strerror(error);
  throw Kelp::InvalidSourceFile(message.c_str());
}

// Standard input, or a file for as long as this lives.
class Descriptor {
 public:
  explicit Descriptor(const std::string& file)
      : number(file == "-" ? STDIN_FILENO : ::open(file.c_str(), O_RDONLY | O_CLOEXEC)) {
    if (number < 0) throwUnreadable(file, errno);
  }
  Descriptor(const Descriptor&) = delete;
  Descriptor& operator=(const Descriptor&) = delete;
  ~Descriptor() {
    if (number != STDIN_FILENO) ::close(number);
  }

  const int number;
};

size_t readBlock(int descriptor, const std::string& file, char* buffer, size_t size) {
  for (;;) {
    const ssize_t got = ::read(descriptor, buffer, size);
    if (got >= 0) return static_cast<size_t>(got);
    if (errno != EINTR) throwUnreadable(file, errno);
  }
}

size_t readStandardInput(char* buffer, size_t size) {
  return readBlock(STDIN_FILENO, "-", buffer, size);
}

// The contents of a file or of standard input, decompressed.
Kelp::TextInput::Read contentsOf(const std::string& file) {
  const auto input = std::make_shared<Descriptor>(file);
  const auto read = [input, file](char* buffer, size_t size) {
    return readBlock(input->number, file, buffer, size);
  };
  return decompressed(read, shownName(file));
}

// Whether the library can read the file by itself. It says better than we could why it cannot.
bool isPlain(const std::string& file) {
  if (file == "-") return false;
  struct stat status {};
  if (::stat(file.c_str(), &status) != 0 || S_ISDIR(status.st_mode)) return true;
  // A pipe is opened once only: whoever writes to it ends when a reader goes away.
  if (!S_ISREG(status.st_mode)) return false;
  const int descriptor = ::open(file.c_str(), O_RDONLY | O_CLOEXEC);
  if (descriptor < 0) return true;
  char start[4];
  const ssize_t got = ::pread(descriptor, start, sizeof start, 0);
  ::close(descriptor);
  const size_t bytes = got > 0 ? static_cast<size_t>(got) : 0;
  return compressionOf({start, bytes}) == Compression::kNone;
}

// Reads to the end, or until there is more than may be read.
std::string readAll(const std::string& file, int64_t maxBytes) {
  const Kelp::TextInput::Read read = contentsOf(file);
  std::string text;
  size_t used = 0;
  while (maxBytes <= 0 || static_cast<int64_t>(used) <= maxBytes) {
    if (text.size() - used < kBlock) text.resize(text.size() * 2 + kBlock);
    const size_t got = read(text.data() + used, text.size() - used);
    if (got == 0) break;
    used += got;
  }
  text.resize(used);
  return text;
}

Kelp::Scene openScene(const std::string& file, const Kelp::SceneOptions& options,
                      std::string* text) {
  if (text == nullptr && isPlain(file)) return Kelp::Scene::fromFile(file, options);
  std::string read = readAll(file, options.limits.maxBytes);
  Kelp::Scene scene = Kelp::Scene::fromText(read, shownName(file), options);
  if (text != nullptr) *text = std::move(read);
  return scene;
}

Kelp::SceneError noScene(const std::string& file, const char* why) {
  Kelp::SceneError error;
  error.kind = Kelp::SceneError::Kind::kUnreadable;
  error.message = why;
  error.file = shownName(file);
  return error;
}

// Runs what reads a scene; gives the seconds that it takes and notes why it cannot.
template <class Read>
double timed(const std::string& file, Kelp::SceneError& error, Read read) {
  const auto start = std::chrono::steady_clock::now();
  try {
    read();
  } catch (const Kelp::InvalidSourceFile& failure) {
    error = noScene(file, failure.message.chars());
  } catch (const Kelp::ExceptionMsg& failure) {
    error = noScene(file, failure.what());
  } catch (const std::bad_alloc&) {
    error = noScene(file, "Out of memory");
  } catch (const std::length_error&) {
    error = noScene(file, "Out of memory");
  }
  return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

// Options with which reading a file tells how far it has come, to whoever looks at the terminal.
class WithProgress {
 public:
  WithProgress(const std::string& file, const Kelp::SceneOptions& given) : options(given) {
    if (!Progress::isWanted()) return;
    struct stat status {};
    const bool isKnown = isPlain(file) && ::stat(file.c_str(), &status) == 0;
    progress.emplace(shownName(file), isKnown ? status.st_size : 0);
    options.onProgress = [this](int64_t bytes) { progress->tell(bytes); };
  }
  WithProgress(const WithProgress&) = delete;
  WithProgress& operator=(const WithProgress&) = delete;

  Kelp::SceneOptions options;

 private:
  std::optional<Progress> progress;
};

}  // namespace

Input readScene(const std::string& file, const Kelp::SceneOptions& options, std::string* text) {
  const WithProgress told(file, options);
  Input input;
  input.seconds = timed(file, input.error, [&] {
    input.scene = openScene(file, told.options, text);
    input.error = input.scene->error();
  });
  return input;
}

StreamedInput streamScene(const std::string& file, const Kelp::SceneOptions& options,
                          const Kelp::ObjectCallback& callback) {
  const WithProgress told(file, options);
  StreamedInput input;
  input.seconds = timed(file, input.error, [&] {
    Kelp::StreamOptions streamOptions;
    static_cast<Kelp::SceneOptions&>(streamOptions) = told.options;
    const auto source = isPlain(file)
                            ? Kelp::SceneSource::file(file)
                            : Kelp::SceneSource::function(contentsOf(file), shownName(file));
    const Kelp::StreamResult result = Kelp::forEachObject(source, callback, streamOptions);
    input.error = result.error;
    input.bytes = result.bytes;
  });
  return input;
}

bool isLarge(const std::string& file) {
  static const int64_t kMemory = int64_t{::sysconf(_SC_PHYS_PAGES)} * ::sysconf(_SC_PAGESIZE);
  struct stat status;
  const bool isRegular =
      file != "-" && ::stat(file.c_str(), &status) == 0 && S_ISREG(status.st_mode);
  if (!isRegular) return false;
  constexpr int64_t kUsualRatio = 8;  // of a text to what it is compressed to
  if (status.st_size * kUsualRatio <= kMemory / 4) return false;
  return status.st_size > kMemory / 4 || !isPlain(file);
}

Kelp::TextInput standardInput() {
  Kelp::TextInput input;
  input.read = readStandardInput;
  return input;
}

std::string shownName(const std::string& file) { return file == "-" ? "<stdin>" : file; }

}  // namespace KelpCli
