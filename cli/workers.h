// Processes that share the work on files.
#pragma once

#include <sys/types.h>

#include <functional>
#include <string>
#include <vector>

#include "cli/exitcode.h"

namespace KelpCli {

/// What a process has done with a file.
struct Worked {
  ExitCode code = kGood;
  std::string out;  ///< what went to standard output
  std::string err;  ///< and to standard error
};

/// Done in the process, with its standard output and error caught.
using CaughtWork = std::function<ExitCode(const std::string& file)>;

/// A process that does one piece of work after the other. The order of results is up to who asks.
class Worker {
 public:
  /// Forks. Throws WriteFailure when there are no processes to be had.
  explicit Worker(const CaughtWork& work);
  Worker(const Worker&) = delete;
  Worker& operator=(const Worker&) = delete;
  /// Ends the process, whatever it is at.
  ~Worker();

  /// Gives it a file to work on. Requires: it is idle.
  void start(size_t number, const std::string& file);

  bool isIdle() const { return !isBusy; }
  /// The number of the file that it works on.
  size_t current() const { return number; }
  /// Becomes readable when there is something for take().
  int descriptor() const { return socket; }

  enum class State { kWorking, kDone, kDied };
  /// Takes what has come; kDone and kDied fill `worked`, and kDied ends the worker.
  State take(Worked& worked);

 private:
  bool _receive();
  std::string _howItDied();

  pid_t process = -1;
  int socket = -1;
  bool isBusy = false;
  size_t number = 0;
  std::string file;
  std::string received;
};

}  // namespace KelpCli
