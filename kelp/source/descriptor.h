// Descriptor: a file that is open for reading.
#pragma once

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <string>

#include "kelp/utils/exceptions.h"

namespace Kelp {

[[noreturn]] inline void throwUnreadable(const std::string& name, const char* reason) {
  const std::string message = "Cannot read \"" + name + "\": " + reason;
  throw InvalidSourceFile(CharString(message.c_str()));
}

[[noreturn]] inline void throwUnreadable(const std::string& name, int error) {
  throwUnreadable(name, std::strerror(error));
}

/// The result of a call of the system, made again while signals interrupt it: one that the host
/// handles may interrupt any call that waits, also for a pipe's other end. Throws
/// InvalidSourceFile.
template <class Call>
auto uninterrupted(const std::string& name, Call call) {
  for (;;) {
    const auto result = call();
    if (result >= 0) return result;
    if (errno != EINTR) throwUnreadable(name, errno);
  }
}

/// Closes a file descriptor at the end of its life.
class Descriptor {
 public:
  /// Opens a file. Throws InvalidSourceFile.
  Descriptor(const std::string& path, int flags)
      : number(uninterrupted(path,
                             [&] { return ::open(path.c_str(), O_RDONLY | O_CLOEXEC | flags); })) {}
  Descriptor(const Descriptor&) = delete;
  Descriptor& operator=(const Descriptor&) = delete;
  ~Descriptor() { ::close(number); }
  const int number;
};

}  // namespace Kelp
