// Decoding and encoding hexadecimal texts, as large as people have them: more than any cache holds.
#include <benchmark/benchmark.h>

#include <cstdint>
#include <random>
#include <string>
#include <vector>

#include "kelp/queries/hexvalues.h"

namespace {

constexpr size_t kNumbers = 12500000;  // 100 MB of text

const std::vector<float>& numbers() {
  static const std::vector<float> drawn = [] {
    std::mt19937 random(1);
    std::vector<float> floats(kNumbers);
    for (float& each : floats) each = static_cast<float>(random()) * 1e-6F;
    return floats;
  }();
  return drawn;
}

const std::string& text() {
  static const std::string digits = Kelp::encodeHexList(numbers().data(), kNumbers);
  return digits;
}

void countBytes(benchmark::State& state) {
  state.SetBytesProcessed(state.iterations() * static_cast<int64_t>(text().size()));
}

// Into memory that is there already.
void decodeNumbers(benchmark::State& state) {
  std::vector<float> decoded(kNumbers);
  for (auto iteration : state) {
    static_cast<void>(iteration);
    Kelp::decodeHexNumbers(text(), decoded.data());
    benchmark::DoNotOptimize(decoded.data());
  }
  countBytes(state);
}

// Into an array of its own, with the pages of it that the system has to give.
void decodeList(benchmark::State& state) {
  for (auto iteration : state) {
    static_cast<void>(iteration);
    benchmark::DoNotOptimize(Kelp::decodeHexList<float>(text()).elements.data);
  }
  countBytes(state);
}

void encodeNumbers(benchmark::State& state) {
  std::string digits(text().size(), '\0');
  for (auto iteration : state) {
    static_cast<void>(iteration);
    Kelp::encodeHexNumbers(numbers().data(), kNumbers, digits.data());
    benchmark::DoNotOptimize(digits.data());
  }
  countBytes(state);
}

}  // namespace

BENCHMARK(decodeNumbers);
BENCHMARK(decodeList);
BENCHMARK(encodeNumbers);

BENCHMARK_MAIN();
