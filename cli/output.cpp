#include "cli/output.h"

#include <fcntl.h>
#include <fmt/format.h>
#include <sys/stat.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <utility>

namespace KelpCli {

namespace {

constexpr int kStandardOutput = 1;

[[noreturn]] void throwFailure(const std::string& name, int error) {
  throw WriteFailure{fmt::format("Cannot write to {}: {}", name, std::strerror(error))};
}

// ---- signals -----------------------------------------------------------------------------------

// What ends the program by default and may come while it writes.
constexpr int kEndingSignals[] = {SIGHUP, SIGINT, SIGQUIT, SIGTERM, SIGXCPU, SIGXFSZ};

// The temporary file to remove when one of them comes.
std::atomic<const char*> unfinished{nullptr};

extern "C" void removeUnfinished(int signal) {
  const char* path = unfinished;
  if (path != nullptr) ::unlink(path);
  // Held back until this returns, and then handled as if nobody had been asked.
  ::raise(signal);
}

// What is ignored, as under nohup, stays so.
void handleEndingSignals() {
  struct sigaction action {};
  action.sa_handler = removeUnfinished;
  action.sa_flags = static_cast<int>(SA_RESETHAND);
  for (const int signal : kEndingSignals) {
    struct sigaction before {};
    const bool known = ::sigaction(signal, nullptr, &before) == 0;
    if (known && before.sa_handler == SIG_DFL) ::sigaction(signal, &action, nullptr);
  }
}

// Signals that come while this lives are handled when it ends.
class SignalsHeldBack {
 public:
  SignalsHeldBack() {
    sigset_t ending;
    ::sigemptyset(&ending);
    for (const int signal : kEndingSignals) ::sigaddset(&ending, signal);
    ::sigprocmask(SIG_BLOCK, &ending, &before);
  }
  SignalsHeldBack(const SignalsHeldBack&) = delete;
  SignalsHeldBack& operator=(const SignalsHeldBack&) = delete;
  ~SignalsHeldBack() { ::sigprocmask(SIG_SETMASK, &before, nullptr); }

 private:
  sigset_t before;
};

// ---- files -------------------------------------------------------------------------------------

// The mode that a new file gets.
unsigned defaultMode() {
  const mode_t mask = ::umask(0);
  ::umask(mask);
  return 0666U & ~mask;
}

// The file that a path leads to through symbolic links; the path itself when there is none yet.
std::string resolved(const std::string& path) {
  const std::unique_ptr<char, decltype(&std::free)> real(::realpath(path.c_str(), nullptr),
                                                         &std::free);
  return real != nullptr ? real.get() : path;
}

}  // namespace

// ---- DescriptorBuffer --------------------------------------------------------------------------

DescriptorBuffer::DescriptorBuffer(int fileDescriptor, std::string nameInMessages)
    : descriptor(fileDescriptor), name(std::move(nameInMessages)), bytes(kBytes) {
  setp(bytes.data(), bytes.data() + bytes.size());
}

DescriptorBuffer::int_type DescriptorBuffer::overflow(int_type character) {
  sync();
  if (traits_type::eq_int_type(character, traits_type::eof())) return traits_type::not_eof(0);
  *pptr() = traits_type::to_char_type(character);
  pbump(1);
  return character;
}

int DescriptorBuffer::sync() {
  const char* next = pbase();
  const char* end = pptr();
  // Emptied first: after a failure nothing is written twice.
  setp(bytes.data(), bytes.data() + bytes.size());
  while (next < end) {
    const ssize_t written = ::write(descriptor, next, static_cast<size_t>(end - next));
    if (written >= 0) {
      next += written;
    } else if (errno != EINTR) {
      throwFailure(name, errno);
    }
  }
  return 0;
}

// ---- Destination -------------------------------------------------------------------------------

Destination::Destination(const std::string& path) {
  if (path.empty() || path == "-") return;
  shownName = fmt::format("\"{}\"", path);
  target = resolved(path);
  struct stat status {};
  const bool exists = ::stat(target.c_str(), &status) == 0;
  if (!exists || S_ISREG(status.st_mode)) {
    _openTemporary(exists ? status.st_mode & 0777U : defaultMode());
    return;
  }
  // Devices and pipes cannot be replaced.
  number = ::open(target.c_str(), O_WRONLY | O_CLOEXEC);
  if (number < 0) throwFailure(shownName, errno);
}

Destination::~Destination() {
  if (number != kStandardOutput) ::close(number);
  if (!temporary.empty()) ::unlink(temporary.c_str());
  unfinished = nullptr;
}

// In the directory of the target, so that it can take the target's place in one step.
void Destination::_openTemporary(unsigned mode) {
  std::string pattern = target + ".XXXXXX";
  handleEndingSignals();
  // A file that exists is one that a signal removes, and no other file is.
  const SignalsHeldBack heldBack;
  number = ::mkostemp(pattern.data(), O_CLOEXEC);
  if (number < 0) throwFailure(shownName, errno);
  temporary = std::move(pattern);
  unfinished = temporary.c_str();
  // The rights are a courtesy: some file systems have none to set.
  ::fchmod(number, mode);
}

void Destination::complete() {
  if (temporary.empty()) return;
  const bool replaced = ::fsync(number) == 0 && ::rename(temporary.c_str(), target.c_str()) == 0;
  if (!replaced) throwFailure(shownName, errno);
  unfinished = nullptr;
  temporary.clear();
}

// ---- Output ------------------------------------------------------------------------------------

Output::Output(const std::string& path)
    : destination(path), buffer(destination.descriptor(), destination.name()), out(&buffer) {
  if (const Compression compression = compressionFor(path); compression != Compression::kNone) {
    compressor = compressing(compression, buffer);
    out.rdbuf(compressor.get());
  }
  // The stream then passes on what its buffer throws.
  out.exceptions(std::ios_base::badbit | std::ios_base::failbit);
}

Kelp::TextSink Output::textSink() {
  return [this](std::string_view piece) {
    out.write(piece.data(), static_cast<std::streamsize>(piece.size()));
  };
}

void Output::finish() {
  flush();
  if (compressor != nullptr) {
    compressor->finish();
    buffer.pubsync();
  }
  destination.complete();
}

}  // namespace KelpCli
