#include "cli/input.h"

#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <cstring>
#include <new>
#include <stdexcept>

namespace KelpCli {

namespace {

constexpr size_t kBlock = 1 << 16;

Kelp::InvalidSourceFile unreadable(int error) {
  const std::string message = std::string("Cannot read standard input: ") + std::strerror(error);
  return Kelp::InvalidSourceFile(message.c_str());
}

size_t readBlock(char* buffer, size_t size) {
  for (;;) {
    const ssize_t got = ::read(STDIN_FILENO, buffer, size);
    if (got >= 0) return static_cast<size_t>(got);
    if (errno != EINTR) throw unreadable(errno);
  }
}

// Reads to the end, or until there is more than may be read.
std::string readStandardInput(int64_t maxBytes) {
  std::string text;
  size_t used = 0;
  while (maxBytes <= 0 || static_cast<int64_t>(used) <= maxBytes) {
    if (text.size() - used < kBlock) text.resize(text.size() * 2 + kBlock);
    const size_t got = readBlock(text.data() + used, text.size() - used);
    if (got == 0) break;
    used += got;
  }
  text.resize(used);
  return text;
}

Kelp::Scene openScene(const std::string& file, const Kelp::SceneOptions& options) {
  if (file != "-") return Kelp::Scene::fromFile(file, options);
  return Kelp::Scene::fromText(readStandardInput(options.limits.maxBytes), shownName(file),
                               options);
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

}  // namespace

Input readScene(const std::string& file, const Kelp::SceneOptions& options) {
  Input input;
  input.seconds = timed(file, input.error, [&] {
    input.scene = openScene(file, options);
    input.error = input.scene->error();
  });
  return input;
}

StreamedInput streamScene(const std::string& file, const Kelp::SceneOptions& options,
                          const Kelp::ObjectCallback& callback) {
  StreamedInput input;
  input.seconds = timed(file, input.error, [&] {
    Kelp::StreamOptions streamOptions;
    static_cast<Kelp::SceneOptions&>(streamOptions) = options;
    const auto source = file == "-" ? Kelp::SceneSource::function(readBlock, shownName(file))
                                    : Kelp::SceneSource::file(file);
    const Kelp::StreamResult result = Kelp::forEachObject(source, callback, streamOptions);
    input.error = result.error;
    input.bytes = result.bytes;
  });
  return input;
}

bool isLarge(const std::string& file) {
  static const int64_t kMemory = int64_t{::sysconf(_SC_PHYS_PAGES)} * ::sysconf(_SC_PAGESIZE);
  struct stat status;
  return file != "-" && ::stat(file.c_str(), &status) == 0 && S_ISREG(status.st_mode) &&
         status.st_size > kMemory / 4;
}

Kelp::TextInput standardInput() {
  Kelp::TextInput input;
  input.read = readBlock;
  return input;
}

std::string shownName(const std::string& file) { return file == "-" ? "<stdin>" : file; }

}  // namespace KelpCli
