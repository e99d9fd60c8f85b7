#include "cli/input.h"

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

// Reads to the end, or until there is more than may be read.
std::string readStandardInput(int64_t maxBytes) {
  std::string text;
  size_t used = 0;
  while (maxBytes <= 0 || static_cast<int64_t>(used) <= maxBytes) {
    if (text.size() - used < kBlock) text.resize(text.size() * 2 + kBlock);
    const ssize_t got = ::read(STDIN_FILENO, text.data() + used, text.size() - used);
    if (got == 0) break;
    if (got > 0) {
      used += static_cast<size_t>(got);
    } else if (errno != EINTR) {
      throw unreadable(errno);
    }
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

}  // namespace

Input readScene(const std::string& file, const Kelp::SceneOptions& options) {
  const auto start = std::chrono::steady_clock::now();
  Input input;
  try {
    input.scene = openScene(file, options);
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
