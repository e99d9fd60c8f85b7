// Report: what the rounds of a benchmark say, as tables.
#pragma once

#include <benchmark/benchmark.h>

#include <string>
#include <vector>

namespace KelpBench {

/// Prints, for every content, what each reader took and how Kelp stands to it.
class Report : public benchmark::BenchmarkReporter {
 public:
  bool ReportContext(const Context& context) override;
  void ReportRuns(const std::vector<Run>& runs) override;
};

}  // namespace KelpBench
