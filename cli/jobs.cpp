#include "cli/jobs.h"

#include <poll.h>
#include <unistd.h>

#include <CLI/CLI.hpp>
#include <algorithm>
#include <cerrno>
#include <deque>
#include <memory>
#include <optional>

#include "cli/diagnostics.h"
#include "cli/workers.h"

namespace KelpCli {

namespace {

// Hands files to workers, and their results on in the order of the files.
class Crew {
 public:
  Crew(const Options& options, Output& resultOutput, const CaughtWork& fileWork)
      : names(options),
        most(static_cast<size_t>(options.jobs)),
        output(resultOutput),
        work(fileWork) {}

  ExitCode run() {
    while (handOut()) {
      await();
      handOn();
    }
    return worst;
  }

 private:
  // A result that its turn to be printed has not come for yet.
  struct Result {
    bool isThere = false;
    Worked worked;
  };

  // False when all is done.
  bool handOut() {
    // Results wait for the slowest file before them: not too many of them.
    constexpr size_t kMostWaiting = 64;
    while (!noMoreNames && results.size() < most + kMostWaiting) {
      Worker* worker = idleWorker();
      if (worker == nullptr) break;
      const std::optional<std::string> file = names.next();
      noMoreNames = !file.has_value();
      if (noMoreNames) break;
      worker->start(firstResult + results.size(), *file);
      results.emplace_back();
    }
    return !results.empty();
  }

  Worker* idleWorker() {
    for (const auto& worker : workers) {
      if (worker->isIdle()) return worker.get();
    }
    if (workers.size() == most) return nullptr;
    workers.push_back(std::make_unique<Worker>(work));
    return workers.back().get();
  }

  void await() {
    std::vector<pollfd> waiting;
    for (const auto& worker : workers) waiting.push_back({worker->descriptor(), POLLIN, 0});
    if (::poll(waiting.data(), waiting.size(), -1) < 0 && errno != EINTR) return;
    for (size_t i = 0; i < workers.size(); ++i) {
      if (waiting[i].revents != 0) take(workers[i]);
    }
    std::erase(workers, nullptr);
  }

  void take(std::unique_ptr<Worker>& worker) {
    if (worker->isIdle()) {  // it ended with nothing to do
      worker.reset();
      return;
    }
    Result& result = results[worker->current() - firstResult];
    const Worker::State state = worker->take(result.worked);
    result.isThere = state != Worker::State::kWorking;
    if (state == Worker::State::kDied) worker.reset();
  }

  void handOn() {
    for (; !results.empty() && results.front().isThere; results.pop_front(), ++firstResult) {
      const Worked& worked = results.front().worked;
      output.stream() << worked.out;
      // What goes to the two outputs stays in order.
      output.flush();
      printError(worked.err);
      worst = std::max(worst, worked.code);
    }
  }

  FileNames names;
  const size_t most;
  Output& output;
  const CaughtWork& work;
  std::vector<std::unique_ptr<Worker>> workers;
  std::deque<Result> results;
  size_t firstResult = 0;  // number of the file of the first of them
  bool noMoreNames = false;
  ExitCode worst = kGood;
};

ExitCode oneAfterTheOther(const Options& options, Output& output, const FileWork& work) {
  ExitCode worst = kGood;
  FileNames names(options);
  while (const std::optional<std::string> file = names.next()) {
    worst = std::max(worst, work(*file, output));
    // What goes to the two outputs stays in order, and results of long runs are seen early.
    output.flush();
  }
  return worst;
}

}  // namespace

void addJobs(CLI::App& command, Options& options) {
  addFilesFrom(command, options);
  command
      .add_option("-j,--jobs", options.jobs,
                  "Share the files among N processes; 0: one a processor")
      ->type_name("N")
      ->check(CLI::NonNegativeNumber);
}

ExitCode forEachFile(const Options& options, Output& output, const FileWork& work) {
  if (options.jobs == 1) return oneAfterTheOther(options, output, work);
  Options withJobs = options;
  if (options.jobs == 0) withJobs.jobs = static_cast<int>(::sysconf(_SC_NPROCESSORS_ONLN));
  // Workers print into memory: what is a terminal must be known before.
  isTerminal(STDOUT_FILENO);
  const CaughtWork caught = [&work](const std::string& file) {
    return reportingFailures([&] {
      Output own;
      const ExitCode code = work(file, own);
      own.finish();
      return code;
    });
  };
  return Crew(withJobs, output, caught).run();
}

}  // namespace KelpCli
