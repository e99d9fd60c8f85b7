#include "cli/workers.h"

#include <fmt/format.h>
#include <sys/mman.h>
#include <sys/prctl.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstdint>
#include <cstdio>
#include <cstring>

#include "cli/diagnostics.h"
#include "cli/output.h"
#include "cli/progress.h"

namespace KelpCli {

namespace {

// What a worker sends before the bytes of its two outputs.
struct Header {
  int32_t code;
  int64_t outBytes;
  int64_t errBytes;
};

void writeAll(int descriptor, const void* data, size_t bytes) {
  const char* at = static_cast<const char*>(data);
  while (bytes > 0) {
    const ssize_t written = ::send(descriptor, at, bytes, MSG_NOSIGNAL);
    if (written < 0 && errno == EINTR) continue;
    if (written <= 0) return;  // whoever listens has gone or will see that this process has
    at += written;
    bytes -= static_cast<size_t>(written);
  }
}

// False at the end.
bool readAll(int descriptor, void* data, size_t bytes) {
  char* at = static_cast<char*>(data);
  while (bytes > 0) {
    const ssize_t got = ::read(descriptor, at, bytes);
    if (got < 0 && errno == EINTR) continue;
    if (got <= 0) return false;
    at += got;
    bytes -= static_cast<size_t>(got);
  }
  return true;
}

// Takes the place of an output of this process.
class CaughtOutput {
 public:
  explicit CaughtOutput(int caughtDescriptor)
      : descriptor(caughtDescriptor), caught(::memfd_create("kelp", MFD_CLOEXEC)) {
    if (caught < 0 || ::dup2(caught, descriptor) < 0) ::_exit(kTrouble);
  }
  CaughtOutput(const CaughtOutput&) = delete;
  CaughtOutput& operator=(const CaughtOutput&) = delete;
  ~CaughtOutput() { ::close(caught); }

  int64_t size() const { return ::lseek(caught, 0, SEEK_END); }

  // Hands on what was caught, and forgets it.
  void send(int target) {
    const auto bytes = static_cast<size_t>(size());
    void* text = bytes > 0 ? ::mmap(nullptr, bytes, PROT_READ, MAP_SHARED, caught, 0) : nullptr;
    if (text == MAP_FAILED) ::_exit(kTrouble);
    if (bytes > 0) {
      writeAll(target, text, bytes);
      ::munmap(text, bytes);
    }
    ::lseek(caught, 0, SEEK_SET);
    if (::ftruncate(caught, 0) != 0) ::_exit(kTrouble);
  }

 private:
  const int descriptor;
  const int caught;
};

// The life of a worker: a file name comes, what was done with it goes.
[[noreturn]] void serve(int socket, const CaughtWork& work) {
  forgetUnfinished();
  Progress::forbid();
  CaughtOutput out(STDOUT_FILENO);
  CaughtOutput err(STDERR_FILENO);
  for (uint64_t length = 0; readAll(socket, &length, sizeof length);) {
    std::string file(length, '\0');
    if (!readAll(socket, file.data(), file.size())) break;
    Header header{work(file), 0, 0};
    std::fflush(stderr);
    header.outBytes = out.size();
    header.errBytes = err.size();
    writeAll(socket, &header, sizeof header);
    out.send(socket);
    err.send(socket);
  }
  ::_exit(kGood);
}

}  // namespace

Worker::Worker(const CaughtWork& work) {
  int ends[2];
  if (::socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, ends) != 0) {
    throw WriteFailure{fmt::format("Cannot start a process: {}", std::strerror(errno))};
  }
  const pid_t parent = ::getpid();
  process = ::fork();
  if (process == 0) {
    // Other workers keep copies of this end of the socket: that it closes tells nothing.
    ::prctl(PR_SET_PDEATHSIG, SIGTERM);
    if (::getppid() != parent) ::_exit(kTrouble);
    ::close(ends[0]);
    serve(ends[1], work);
  }
  const int error = errno;
  ::close(ends[1]);
  socket = ends[0];
  if (process > 0) return;
  ::close(socket);
  throw WriteFailure{fmt::format("Cannot start a process: {}", std::strerror(error))};
}

Worker::~Worker() {
  ::close(socket);
  if (process <= 0) return;
  ::kill(process, SIGTERM);
  while (::waitpid(process, nullptr, 0) < 0 && errno == EINTR) continue;
}

void Worker::start(size_t fileNumber, const std::string& fileName) {
  isBusy = true;
  number = fileNumber;
  file = fileName;
  received.clear();
  const uint64_t length = file.size();
  writeAll(socket, &length, sizeof length);
  writeAll(socket, file.data(), file.size());
}

Worker::State Worker::take(Worked& worked) {
  const bool lives = _receive();
  Header header{};
  if (received.size() >= sizeof header) {
    std::memcpy(&header, received.data(), sizeof header);
    const auto outBytes = static_cast<size_t>(header.outBytes);
    const auto errBytes = static_cast<size_t>(header.errBytes);
    if (received.size() == sizeof header + outBytes + errBytes) {
      worked.code = static_cast<ExitCode>(header.code);
      worked.out = received.substr(sizeof header, outBytes);
      worked.err = received.substr(sizeof header + outBytes);
      isBusy = false;
      return State::kDone;
    }
  }
  if (lives) return State::kWorking;
  worked = {kTrouble, "", _howItDied()};
  return State::kDied;
}

bool Worker::_receive() {
  constexpr size_t kBlock = 1 << 16;
  const size_t before = received.size();
  received.resize(before + kBlock);
  ssize_t got = 0;
  do got = ::read(socket, received.data() + before, kBlock);
  while (got < 0 && errno == EINTR);
  received.resize(before + static_cast<size_t>(got > 0 ? got : 0));
  return got > 0;
}

std::string Worker::_howItDied() {
  int status = 0;
  while (::waitpid(process, &status, 0) < 0 && errno == EINTR) continue;
  process = -1;
  isBusy = false;
  const char* why = WIFSIGNALED(status) ? ::strsignal(WTERMSIG(status)) : "it ended";
  return complaint(fmt::format("The process that worked on \"{}\" has died: {}", file, why));
}

}  // namespace KelpCli
