#include "cli/input.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <cstring>
#include <new>
#include <stdexcept>
#include <utility>

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

// Reads to the end, or until there is more than may be read.
std::string readAll(const std::string& file, int64_t maxBytes) {
  const Descriptor input(file);
  std::string text;
  size_t used = 0;
  while (maxBytes <= 0 || static_cast<int64_t>(used) <= maxBytes) {
    if (text.size() - used < kBlock) text.resize(text.size() * 2 + kBlock);
    const ssize_t got = ::read(input.number, text.data() + used, text.size() - used);
    if (got == 0) break;
    if (got > 0) {
      used += static_cast<size_t>(got);
    } else if (errno != EINTR) {
      throwUnreadable(file, errno);
    }
  }
  text.resize(used);
  return text;
}

Kelp::Scene openScene(const std::string& file, const Kelp::SceneOptions& options,
                      std::string* text) {
  if (file != "-" && text == nullptr) return Kelp::Scene::fromFile(file, options);
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

}  // namespace

Input readScene(const std::string& file, const Kelp::SceneOptions& options, std::string* text) {
  const auto start = std::chrono::steady_clock::now();
  Input input;
  try {
    input.scene = openScene(file, options, text);
    input.error = input.scene->error();
  } catch (const Kelp::InvalidSourceFile& failure) {
    input.error = noScene(file, failure.message.chars());
  } catch (const Kelp::ExceptionMsg& failure) {
    input.error = noScene(file, failure.what());
  } catch (const std::bad_alloc&) {
    input.error = noScene(file, "Out of memory");
  } catch (const std::length_error&) {
    input.error = noScene(file, "Out of memory");
  }
  input.seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
  return input;
}

std::string shownName(const std::string& file) { return file == "-" ? "<stdin>" : file; }

}  // namespace KelpCli
