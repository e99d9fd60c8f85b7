#include "bench/worker.h"

#include <malloc.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <exception>
#include <fstream>

#include "bench/allocationcount.h"

namespace KelpBench {

namespace {

[[noreturn]] void giveUp(const char* reader, const char* reason) {
  std::fprintf(stderr, "kelp_bench: %s: %s\n", reader, reason);
  std::exit(2);
}

// From a line "NAME:   123 kB" of one of the system's tables.
int64_t tableBytes(const char* table, const std::string& name) {
  std::ifstream lines(table);
  for (std::string line; std::getline(lines, line);) {
    if (line.rfind(name, 0) == 0) return std::atoll(line.c_str() + name.size()) * 1024;
  }
  return 0;
}

int64_t statusBytes(const std::string& name) { return tableBytes("/proc/self/status", name); }

// Pages that are shared with the parent until someone writes to them count as the process's own,
// here and at the peak.
int64_t forgetPeak() {
  std::ofstream("/proc/self/clear_refs") << "5";
  return statusBytes("VmRSS:");
}

Sample runOnce(TreeReader& reader) {
  Sample sample;
  const int64_t bytesBefore = forgetPeak();
  const int64_t allocationsBefore = allocationCount();
  const double start = processSeconds();
  reader.parse();
  const double parsed = processSeconds();
  sample.allocations = allocationCount() - allocationsBefore;
  sample.peakBytes = statusBytes("VmHWM:") - bytesBefore;
  const double releaseStart = processSeconds();
  reader.release();
  sample.releaseSeconds = processSeconds() - releaseStart;
  reader.clear();
  sample.parseSeconds = parsed - start;
  return sample;
}

// Until the parent closes its end.
void serve(TreeReader& reader, int channel) {
  for (char request = 0; read(channel, &request, 1) == 1;) {
    const Sample sample = runOnce(reader);
    if (write(channel, &sample, sizeof sample) != sizeof sample) return;
  }
}

[[noreturn]] void work(const ReaderKind& kind, const std::string& text, int channel) {
  int status = 0;
  malloc_trim(0);  // what the generator has left behind must not be there for the taking
  try {
    const std::unique_ptr<TreeReader> reader = kind.make();
    reader->prepare(text);
    serve(*reader, channel);
  } catch (const std::exception& error) {
    std::fprintf(stderr, "%s: %s\n", kind.name, error.what());
    status = 1;
  }
  _exit(status);
}

}  // namespace

int64_t availableBytes() { return tableBytes("/proc/meminfo", "MemAvailable:"); }

double processSeconds() {
  timespec time{};
  clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &time);
  return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_nsec) * 1e-9;
}

Worker::Worker(const ReaderKind& kind, const std::string& text) : name(kind.name) {
  int ends[2];
  if (socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, ends) != 0) giveUp(name, "no channel");
  process = fork();
  if (process < 0) giveUp(name, "no process");
  if (process == 0) {
    close(ends[0]);
    work(kind, text, ends[1]);
  }
  close(ends[1]);
  channel = ends[0];
}

// A later worker has inherited this channel, so that closing it would not end the process.
Worker::~Worker() {
  shutdown(channel, SHUT_RDWR);
  close(channel);
  waitpid(process, nullptr, 0);
}

Sample Worker::run() {
  Sample sample;
  const char request = 'r';
  if (send(channel, &request, 1, MSG_NOSIGNAL) != 1) giveUp(name, "is gone");
  const bool got = recv(channel, &sample, sizeof sample, MSG_WAITALL) == sizeof sample;
  if (!got) giveUp(name, "failed");
  return sample;
}

}  // namespace KelpBench
