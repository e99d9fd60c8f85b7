// Worker: a process of its own that reads one text with one reader, again and again.
#pragma once

#include <sys/types.h>

#include <cstdint>
#include <string>

#include "bench/peers.h"

namespace KelpBench {

struct Sample {
  double parseSeconds = 0;  ///< processor time, like all times
  double releaseSeconds = 0;
  int64_t allocations = 0;  ///< made by the parse
  /// How much the process grew at most; means something for the first run only, since what is
  /// released stays in the process.
  int64_t peakBytes = 0;
};

/// Readers do not share a heap, so that none meets what another left behind. All workers inherit
/// the text and wait until they are asked, one at a time.
class Worker {
 public:
  /// The text has to live until the worker was constructed. Ends the program when it cannot start.
  Worker(const ReaderKind& kind, const std::string& text);
  Worker(const Worker&) = delete;
  Worker& operator=(const Worker&) = delete;
  ~Worker();

  /// Parses and releases once. Ends the program when the worker fails.
  Sample run();

 private:
  const char* name;
  pid_t process = -1;
  int channel = -1;
};

/// What the system could give to processes now.
int64_t availableBytes();

/// Processor time of this process so far.
double processSeconds();

}  // namespace KelpBench
