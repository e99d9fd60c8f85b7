// How fast are the same contents read into whole trees, by Kelp and by readers of JSON and XML?
//
//   kelp_bench                               the four contents at 20 MB of scene text
//   kelp_bench --megabytes=100 --benchmark_filter=mesh
//   kelp_bench --readers=Kelp,RapidJSON --rounds=40
//   kelp_bench --sizes                       time against size, from 1 MB to 1 GB
//   kelp_bench --benchmark_out=FILE          every round as JSON
//
// A round asks all readers, one after the other, beginning with another one each time; a ratio is
// made of two times of one round. Each reader begins in a new process and reads the text twice:
// first in fresh memory, as a program does that reads one scene, then again where the released tree
// lay. What is printed are medians over the rounds with quartiles.

#include <benchmark/benchmark.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <map>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "bench/report.h"
#include "bench/scenegenerator.h"
#include "bench/worker.h"

namespace {

using namespace KelpBench;

#ifdef __clang__
constexpr const char* kCompiler = "clang " __clang_version__;
#else
constexpr const char* kCompiler = "g++ " __VERSION__;
#endif

struct Options {
  double megabytes = 20;
  int rounds = 11;
  std::string readers;  // names with commas between them; empty: all
  bool sizes = false;
};

Options options;

bool isWanted(const ReaderKind& kind) {
  if (options.readers.empty()) return true;
  return ("," + options.readers + ",").find("," + std::string(kind.name) + ",") !=
         std::string::npos;
}

// One content of one size in the syntaxes of its readers.
class Contest {
 public:
  Contest(Content contestContent, double contestMegabytes)
      : content(contestContent), megabytes(contestMegabytes) {
    for (const ReaderKind& kind : readerKinds()) {
      if (isWanted(kind)) kinds.push_back(&kind);
    }
  }

  void round(benchmark::State& state) {
    for (size_t i = 0; i < kinds.size(); ++i) _run(state, *kinds[(i + rounds) % kinds.size()]);
    ++rounds;
  }

  const Content content;
  const double megabytes;

 private:
  const GeneratedText& _text(Syntax syntax) {
    const auto known = texts.find(syntax);
    if (known != texts.end()) return known->second;
    if (megabytes >= kLargeMegabytes) texts.clear();
    return texts[syntax] = generate(content, syntax, static_cast<size_t>(megabytes * 1e6));
  }

  void _run(benchmark::State& state, const ReaderKind& kind) {
    const GeneratedText& text = _text(kind.syntax);
    if (!_fits(kind, text)) return;
    Worker worker(kind, text.text);
    const Sample first = worker.run();
    const auto put = [&](const char* what, double value) {
      state.counters[std::string(kind.name) + "." + what] = value;
    };
    put("first", first.parseSeconds);
    put("again", worker.run().parseSeconds);
    put("release", first.releaseSeconds);
    put("peak", static_cast<double>(first.peakBytes));
    put("allocations", static_cast<double>(first.allocations));
    put("bytes", static_cast<double>(text.text.size()));
    state.counters["sceneBytes"] = static_cast<double>(text.sceneBytes);
    state.counters["values"] = static_cast<double>(text.values);
    state.counters["objects"] = static_cast<double>(text.objects);
    state.counters["listBytes"] = static_cast<double>(text.listBytes);
    if (&kind == kinds.front()) state.SetIterationTime(first.parseSeconds);
    peaks[{content, &kind}] = static_cast<double>(first.peakBytes) / megabytes;
  }

  // Judged by the size before. A reader that drove others out of memory would spoil all times.
  bool _fits(const ReaderKind& kind, const GeneratedText& text) const {
    const auto peak = peaks.find({content, &kind});
    if (peak == peaks.end()) return true;
    const double needed = peak->second * megabytes + static_cast<double>(text.text.size());
    if (needed < kMostOfMemory * static_cast<double>(availableBytes())) return true;
    std::fprintf(stderr, "%s is left out: it needs about %.1f GB\n", kind.name, needed / 1e9);
    return false;
  }

  static constexpr double kMostOfMemory = 0.8;
  // From here on the text of one syntax at a time is kept, to leave the memory to the trees.
  static constexpr double kLargeMegabytes = 200;
  // Peak of a reader with a content for each MB, from the last time.
  static inline std::map<std::pair<Content, const ReaderKind*>, double> peaks;

  std::vector<const ReaderKind*> kinds;
  std::map<Syntax, GeneratedText> texts;
  size_t rounds = 0;
};

// Repetitions of a benchmark come one after another; its texts are kept for them.
void measure(benchmark::State& state, Content content, double megabytes) {
  static std::unique_ptr<Contest> contest;
  if (contest == nullptr || contest->content != content || contest->megabytes != megabytes) {
    contest.reset();
    contest = std::make_unique<Contest>(content, megabytes);
  }
  for (auto iteration : state) {
    static_cast<void>(iteration);
    contest->round(state);
  }
}

// Takes our own options out of the arguments.
int readOptions(int argc, char** argv) {
  int kept = 0;
  for (int i = 0; i < argc; ++i) {
    if (std::strncmp(argv[i], "--megabytes=", 12) == 0) {
      options.megabytes = std::atof(argv[i] + 12);
    } else if (std::strncmp(argv[i], "--readers=", 10) == 0) {
      options.readers = argv[i] + 10;
    } else if (std::strncmp(argv[i], "--rounds=", 9) == 0) {
      options.rounds = std::atoi(argv[i] + 9);
    } else if (std::strcmp(argv[i], "--sizes") == 0) {
      options.sizes = true;
    } else {
      argv[kept++] = argv[i];
    }
  }
  return kept;
}

void registerContest(const std::string& name, Content content, double megabytes, int rounds) {
  benchmark::RegisterBenchmark(name.c_str(), measure, content, megabytes)
      ->Iterations(1)
      ->Repetitions(rounds)
      ->UseManualTime();
}

// Small ones are measured more often, since they are over sooner.
void registerSizes(const std::string& name, Content content) {
  constexpr std::pair<int, int> kSizesAndRounds[] = {{1, 9},   {3, 9},   {10, 5},  {30, 5},
                                                     {100, 3}, {300, 1}, {1000, 1}};
  for (const auto& [megabytes, rounds] : kSizesAndRounds) {
    registerContest(name + "/" + std::to_string(megabytes), content, megabytes, rounds);
  }
}

void registerAll() {
  const std::pair<const char*, Content> contents[] = {{"mesh", Content::kMesh},
                                                      {"objects", Content::kObjects},
                                                      {"expressions", Content::kExpressions},
                                                      {"hex", Content::kHex}};
  for (const auto& [name, content] : contents) {
    if (options.sizes) {
      registerSizes(name, content);
    } else {
      registerContest(name, content, options.megabytes, options.rounds);
    }
  }
}

}  // namespace

int main(int argc, char** argv) {
  std::string command;
  for (int i = 0; i < argc; ++i) command += (i == 0 ? "" : " ") + std::string(argv[i]);
  benchmark::AddCustomContext("command", command);
  argc = readOptions(argc, argv);
  registerAll();
  benchmark::AddCustomContext("compiler", kCompiler);
  benchmark::Initialize(&argc, argv);
  if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 1;
  Report report;
  benchmark::RunSpecifiedBenchmarks(&report);
  return 0;
}
