#include "cli/graphviz.h"

#include <fcntl.h>
#include <fmt/format.h>
#include <spawn.h>
#include <sys/mman.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstring>

#include "cli/output.h"

extern char** environ;

namespace KelpCli {

namespace {

[[noreturn]] void throwFailure(const char* what, int error) {
  throw WriteFailure{fmt::format("{}: {}", what, std::strerror(error))};
}

// A file descriptor for as long as this lives.
class Descriptor {
 public:
  explicit Descriptor(int descriptor) : number(descriptor) {}
  Descriptor(const Descriptor&) = delete;
  Descriptor& operator=(const Descriptor&) = delete;
  ~Descriptor() { close(); }

  void close() {
    if (number >= 0) ::close(number);
    number = -1;
  }

  int number;
};

// What the new program gets: standard input and output, and a broken pipe that ends it, which is
// ignored here.
class Surroundings {
 public:
  Surroundings(int input, int output) {
    ::posix_spawn_file_actions_init(&files);
    ::posix_spawn_file_actions_adddup2(&files, input, STDIN_FILENO);
    ::posix_spawn_file_actions_adddup2(&files, output, STDOUT_FILENO);
    ::posix_spawnattr_init(&attributes);
    sigset_t signals;
    ::sigemptyset(&signals);
    ::sigaddset(&signals, SIGPIPE);
    ::posix_spawnattr_setsigdefault(&attributes, &signals);
    ::posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETSIGDEF);
  }
  Surroundings(const Surroundings&) = delete;
  Surroundings& operator=(const Surroundings&) = delete;
  ~Surroundings() {
    ::posix_spawnattr_destroy(&attributes);
    ::posix_spawn_file_actions_destroy(&files);
  }

  posix_spawn_file_actions_t files;
  posix_spawnattr_t attributes;
};

pid_t startDot(const std::string& format, int input, int output) {
  const Surroundings surroundings(input, output);
  std::string name = "dot";
  std::string formatOption = "-T" + format;
  char* const arguments[] = {name.data(), formatOption.data(), nullptr};
  pid_t process = 0;
  const int error = ::posix_spawnp(&process, name.c_str(), &surroundings.files,
                                   &surroundings.attributes, arguments, environ);
  if (error == ENOENT) {
    throw WriteFailure{fmt::format(
        "There is no program dot to draw with: install graphviz, or leave out --{} and have the "
        "graph drawn elsewhere",
        format)};
  }
  if (error != 0) throwFailure("Cannot run dot", error);
  return process;
}

std::string readAll(int descriptor) {
  std::string text;
  char block[1 << 16];
  for (;;) {
    const ssize_t got = ::read(descriptor, block, sizeof block);
    if (got > 0) text.append(block, static_cast<size_t>(got));
    if (got == 0) return text;
    if (got < 0 && errno != EINTR) throwFailure("Cannot read what dot draws", errno);
  }
}

void waitFor(pid_t process) {
  int status = 0;
  while (::waitpid(process, &status, 0) < 0) {
    if (errno != EINTR) throwFailure("Cannot wait for dot", errno);
  }
  if (WIFSIGNALED(status)) {
    throw WriteFailure{fmt::format("dot was ended by signal {}", WTERMSIG(status))};
  }
  if (WEXITSTATUS(status) != 0) {
    throw WriteFailure{fmt::format("dot failed with exit code {}", WEXITSTATUS(status))};
  }
}

}  // namespace

std::string drawGraph(const std::string& format, const std::function<void(std::ostream&)>& write) {
  // All of the graph is there before it is read, so that nobody waits for each other.
  const Descriptor graph(::memfd_create("graph", MFD_CLOEXEC));
  if (graph.number < 0) throwFailure("Cannot keep the graph", errno);
  DescriptorBuffer buffer(graph.number, "memory");
  std::ostream stream(&buffer);
  stream.exceptions(std::ios_base::badbit | std::ios_base::failbit);
  write(stream);
  stream.flush();
  if (::lseek(graph.number, 0, SEEK_SET) != 0) throwFailure("Cannot keep the graph", errno);

  int ends[2];
  if (::pipe2(ends, O_CLOEXEC) != 0) throwFailure("Cannot run dot", errno);
  const Descriptor picture(ends[0]);
  Descriptor pictureEnd(ends[1]);
  const pid_t process = startDot(format, graph.number, pictureEnd.number);
  pictureEnd.close();
  std::string drawn = readAll(picture.number);
  waitFor(process);
  return drawn;
}

}  // namespace KelpCli
