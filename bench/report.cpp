#include "bench/report.h"

#include <algorithm>
#include <cstdio>
#include <functional>
#include <map>

#include "bench/peers.h"

namespace KelpBench {

namespace {

using Run = benchmark::BenchmarkReporter::Run;

// How long others take in comparison to yyjson, measured once with all of them on a machine of the
// same kind. It is no package of Debian 12 and not part of the contest.
struct Relation {
  const char* content;
  double rapidJson;
  double simdJson;
};
constexpr Relation kToYyjson[] = {
    {"mesh", 1.23, 1.03}, {"objects", 1.6, 0.84}, {"expressions", 1.6, 1.05}, {"hex", 0.2, 0.6}};

struct Quartiles {
  double lower = 0;
  double median = 0;
  double upper = 0;
};

Quartiles quartilesOf(std::vector<double> values) {
  std::sort(values.begin(), values.end());
  const auto at = [&](double share) {
    const double place = share * static_cast<double>(values.size() - 1);
    const auto below = static_cast<size_t>(place);
    const size_t above = std::min(below + 1, values.size() - 1);
    return values[below] + (place - static_cast<double>(below)) * (values[above] - values[below]);
  };
  return {at(0.25), at(0.5), at(0.75)};
}

// The rounds of one content.
class Rounds {
 public:
  explicit Rounds(const std::vector<Run>& allRuns) {
    for (const Run& run : allRuns) {
      if (run.run_type == Run::RT_Iteration) runs.push_back(&run);
    }
  }

  bool has(const std::string& counter) const {
    return !runs.empty() && runs.front()->counters.count(counter) != 0;
  }

  double median(const std::string& counter) const {
    return _over([&](const Run& run) { return value(run, counter); }).median;
  }

  Quartiles ratio(const std::string& counter, const std::string& toCounter) const {
    return _over([&](const Run& run) { return value(run, counter) / value(run, toCounter); });
  }

  bool empty() const { return runs.empty(); }
  size_t size() const { return runs.size(); }

 private:
  static double value(const Run& run, const std::string& counter) {
    return run.counters.at(counter).value;
  }

  Quartiles _over(const std::function<double(const Run&)>& figure) const {
    std::vector<double> values;
    for (const Run* run : runs) values.push_back(figure(*run));
    return quartilesOf(values);
  }

  std::vector<const Run*> runs;
};

void printRatio(const Quartiles& ratio) {
  std::printf("  %6.3f (%6.3f -%6.3f)", ratio.median, ratio.lower, ratio.upper);
}

void printReader(const Rounds& rounds, const std::string& reader) {
  const auto median = [&](const char* what) { return rounds.median(reader + "." + what); };
  const double parse = median("first");
  const double values = rounds.median("values");
  const double bytes = median("bytes");
  std::printf("  %-10s %7.1f %8.1f %8.1f %8.0f %9.1f %8.3f %9.3f %8.1f", reader.c_str(),
              bytes / 1e6, parse * 1e3, median("again") * 1e3, bytes / parse / 1e6,
              parse / values * 1e9, rounds.ratio(reader + ".release", reader + ".first").median,
              median("allocations") / values, median("peak") / 1e6);
  if (rounds.has("Kelp.first") && reader != "Kelp") {
    printRatio(rounds.ratio("Kelp.first", reader + ".first"));
    printRatio(rounds.ratio("Kelp.again", reader + ".again"));
  }
  std::printf("\n");
}

void printEstimate(const Rounds& rounds, const std::string& reader, double toYyjson) {
  const std::string parse = reader + ".first";
  if (!rounds.has("Kelp.first") || !rounds.has(parse)) return;
  std::printf("  Kelp / yyjson, ESTIMATED by way of %s: %.2f\n", reader.c_str(),
              rounds.ratio("Kelp.first", parse).median * toYyjson);
}

void printEstimates(const Rounds& rounds, const std::string& content) {
  for (const Relation& relation : kToYyjson) {
    if (content.rfind(relation.content, 0) != 0) continue;
    printEstimate(rounds, "RapidJSON", relation.rapidJson);
    printEstimate(rounds, "simdjson", relation.simdJson);
  }
}

void printMemory(const Rounds& rounds) {
  const double lists = rounds.median("listBytes");
  if (lists == 0 || !rounds.has("Kelp.peak")) return;
  // The text that Kelp borrows is no part of its peak.
  const double text = rounds.median("Kelp.bytes");
  std::printf("  Kelp's peak with the text / (decoded lists + text): %.2f\n",
              (rounds.median("Kelp.peak") + text) / (lists + text));
}

std::string contentOf(const Run& run) { return run.run_name.function_name; }

}  // namespace

bool Report::ReportContext(const Context&) { return true; }

void Report::ReportRuns(const std::vector<Run>& runs) {
  const Rounds rounds(runs);
  if (rounds.empty()) return;
  const std::string content = contentOf(runs.front());
  std::printf("\n%s: %.0f objects, %.0f values, %zu rounds, processor time\n", content.c_str(),
              rounds.median("objects"), rounds.median("values"), rounds.size());
  std::printf("  %-10s %7s %8s %8s %8s %9s %8s %9s %8s  %-24s  %s\n", "", "MB", "first ms",
              "again ms", "MB/s", "ns/value", "release", "allocs/v", "peak MB", "Kelp / it, first",
              "Kelp / it, again");
  for (const ReaderKind& kind : readerKinds()) {
    if (rounds.has(std::string(kind.name) + ".first")) printReader(rounds, kind.name);
  }
  printEstimates(rounds, content);
  printMemory(rounds);
  std::fflush(stdout);
}

}  // namespace KelpBench
