// How fast are whole scenes read from memory into a tree, and released?
//
//   kelp_bench                                   all contents at 10 MB, the mesh also at 100 MB
//   kelp_bench --benchmark_filter=Mesh/100       one of them
//   kelp_bench --benchmark_repetitions=5         with the spread
//
// Reports bytes_per_second of scene text. Releasing is short beside the parse that comes before it,
// so its iterations are few and fixed. Parse includes copying the text into the reader; Release
// is deleteThis() of the parsed program alone.

#include <benchmark/benchmark.h>

#include <chrono>
#include <map>
#include <stdexcept>
#include <string>
#include <utility>

#include "bench/scenegenerator.h"
#include "kelp/parser/treeparser.h"

namespace {

using Generator = std::string (*)(size_t bytes);

const std::string& sceneText(Generator generate, int64_t megabytes) {
  static std::map<std::pair<Generator, int64_t>, std::string> texts;
  std::string& text = texts[{generate, megabytes}];
  if (text.empty()) text = generate(static_cast<size_t>(megabytes) * 1000000);
  return text;
}

struct Reading {
  Kelp::SourcesReader reader;
  Kelp::Scanner scanner{&reader};
  Kelp::TreeParser parser{&scanner};

  Kelp::ProgramAST* parse(const std::string& text) {
    reader.openText(text.data(), static_cast<int64_t>(text.size()), "generated.scene");
    Kelp::ProgramAST* program = parser.parseProgram();
    if (program == nullptr) throw std::runtime_error(parser.errorInfo.getErrorText().chars());
    return program;
  }
};

// Only the wanted half of reading and releasing is timed.
template <class Timed>
void measure(benchmark::State& state, Generator generate, Timed timed) {
  const std::string& text = sceneText(generate, state.range(0));
  for (auto iteration : state) {
    static_cast<void>(iteration);
    state.SetIterationTime(timed(text));
  }
  state.SetBytesProcessed(state.iterations() * static_cast<int64_t>(text.size()));
}

template <class Action>
double secondsOf(Action action) {
  const auto start = std::chrono::steady_clock::now();
  action();
  return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

void parseScene(benchmark::State& state, Generator generate) {
  measure(state, generate, [](const std::string& text) {
    Reading reading;
    Kelp::ProgramAST* program = nullptr;
    const double seconds = secondsOf([&] { program = reading.parse(text); });
    program->deleteThis();
    return seconds;
  });
}

void releaseScene(benchmark::State& state, Generator generate) {
  measure(state, generate, [](const std::string& text) {
    Reading reading;
    Kelp::ProgramAST* program = reading.parse(text);
    return secondsOf([program] { program->deleteThis(); });
  });
}

}  // namespace

BENCHMARK_CAPTURE(parseScene, Mesh, KelpBench::meshScene)->Arg(10)->Arg(100)->UseManualTime();
BENCHMARK_CAPTURE(parseScene, Objects, KelpBench::objectScene)->Arg(10)->UseManualTime();
BENCHMARK_CAPTURE(parseScene, Expressions, KelpBench::expressionScene)->Arg(10)->UseManualTime();
BENCHMARK_CAPTURE(parseScene, Hex, KelpBench::hexScene)->Arg(10)->UseManualTime();
BENCHMARK_CAPTURE(releaseScene, Mesh, KelpBench::meshScene)
    ->Arg(10)
    ->UseManualTime()
    ->Iterations(5);
BENCHMARK_CAPTURE(releaseScene, Objects, KelpBench::objectScene)
    ->Arg(10)
    ->UseManualTime()
    ->Iterations(5);
BENCHMARK_CAPTURE(releaseScene, Expressions, KelpBench::expressionScene)
    ->Arg(10)
    ->UseManualTime()
    ->Iterations(5);
