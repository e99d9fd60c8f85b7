// Does twice the text take twice the time?
//
//   kelp_growth              all cases; exits with 1 when one grows faster than in proportion
//   kelp_growth NAME...      those whose name contains one of the words
//
// Every case is run with n and with 2 n of something, n being such that it takes long enough to be
// measured, and the processor times are compared, of the reading and of the release apart. The best
// of several runs counts: noise only ever adds time.

#include <malloc.h>
#include <pthread.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <climits>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <string_view>
#include <vector>

#include "bench/growthcases.h"

namespace {

using KelpBench::GrowthCase;
using KelpBench::Seconds;

constexpr double kTooShort = 0.0001;  // below this a time says nothing about growth
constexpr double kMaxRatio = 2.3;     // memory gets slower the more there is of it
constexpr int kRunsOfAProcess = 4;
constexpr int kMaxRounds = 10;
constexpr int kMoreDoublings = 3;  // as many as there are levels of cache
constexpr int kFewNames = 1000;
constexpr int kManyNames = 100000;  // a square law would make each cost up to 100 times as much
constexpr double kMaxNameRatio = 15;
constexpr int kManyReferences = 2000000;
constexpr double kMaxFilterSeconds = 1.0;

int failures = 0;
double worstRatio = 0;
const char* worstCase = "";
int ratios = 0;

void keepBest(Seconds& best, const Seconds& seconds) {
  best.work = std::min(best.work, seconds.work);
  best.release = std::min(best.release, seconds.release);
}

Seconds bestOfSomeRuns(const GrowthCase& growth, int n) {
  Seconds best = growth.run(n);
  for (int i = 1; i < kRunsOfAProcess; ++i) keepBest(best, growth.run(n));
  return best;
}

// In a process of its own: what other runs left in pools and heap would decide how its memory lies.
Seconds run(const GrowthCase& growth, int n) {
  int ends[2];
  Seconds best;
  if (pipe(ends) != 0) std::abort();
  const pid_t child = fork();
  if (child == 0) {
    best = bestOfSomeRuns(growth, n);
    const bool written = write(ends[1], &best, sizeof best) == sizeof best;
    _exit(written ? 0 : 1);
  }
  close(ends[1]);
  const bool got = read(ends[0], &best, sizeof best) == sizeof best;
  close(ends[0]);
  waitpid(child, nullptr, 0);
  if (!got) {
    std::printf("%s failed with n = %d\n", growth.name, n);
    std::exit(2);
  }
  return best;
}

int longEnoughNumber(const GrowthCase& growth) {
  int n = 500;
  while (n < growth.most && run(growth, n).work < growth.longEnough) n *= 2;
  return n;
}

bool isProportional(double once, double twice) {
  return once < kTooShort || twice <= kMaxRatio * once;
}

std::string ratioText(const GrowthCase& growth, double once, double twice) {
  if (once < kTooShort) return "-";
  ++ratios;
  const double ratio = twice / once;
  if (ratio > worstRatio) {
    worstRatio = ratio;
    worstCase = growth.name;
  }
  char text[32];
  std::snprintf(text, sizeof text, "%.2f", ratio);
  return text;
}

struct Measured {
  int n = 0;
  Seconds once;
  Seconds twice;
  bool good = false;
};

Measured measureAt(const GrowthCase& growth, int n) {
  Measured measured{n, run(growth, n), run(growth, 2 * n), false};
  for (int round = 1; !measured.good && round < kMaxRounds; ++round) {
    keepBest(measured.once, run(growth, n));
    keepBest(measured.twice, run(growth, 2 * n));
    measured.good = isProportional(measured.once.work, measured.twice.work) &&
                    isProportional(measured.once.release, measured.twice.release);
  }
  return measured;
}

void print(const GrowthCase& growth, const Measured& measured) {
  const Seconds& once = measured.once;
  const Seconds& twice = measured.twice;
  std::printf("%-36s %9d %9.1f %9.1f %6s %9.1f %9.1f %6s%s\n", growth.name, measured.n,
              once.work * 1e3, twice.work * 1e3, ratioText(growth, once.work, twice.work).c_str(),
              once.release * 1e3, twice.release * 1e3,
              ratioText(growth, once.release, twice.release).c_str(),
              measured.good ? "" : "  TOO MUCH");
  std::fflush(stdout);
}

void measure(const GrowthCase& growth) {
  Measured measured = measureAt(growth, longEnoughNumber(growth));
  // Each cache that is outgrown costs once. What grows faster than in proportion costs at every
  // doubling, and more from one to the next.
  for (int i = 0; i < kMoreDoublings && !measured.good && !growth.whileCached; ++i) {
    measured = measureAt(growth, 2 * measured.n);
  }
  if (!measured.good) ++failures;
  print(growth, measured);
}

// Many names must not take long either: beyond the caches each costs more, but only so much.
void measureManyNames(const GrowthCase& growth) {
  const double few = run(growth, kFewNames).work / kFewNames;
  const double many = run(growth, kManyNames).work / kManyNames;
  const bool good = many <= kMaxNameRatio * few;
  if (!good) ++failures;
  std::printf("%-36s %9d %9.2f us each; of %d %.2f us each%s\n", growth.name, kFewNames, few * 1e6,
              kManyNames, many * 1e6, good ? "" : "  TOO MUCH");
  std::fflush(stdout);
}

void measureManyReferences() {
  double seconds = KelpBench::filterSeconds(kManyReferences);
  for (int round = 1; round < kRunsOfAProcess; ++round) {
    seconds = std::min(seconds, KelpBench::filterSeconds(kManyReferences));
  }
  const bool good = seconds < kMaxFilterSeconds;
  if (!good) ++failures;
  std::printf("FIGURE|growth|2,000,000 recorded references renamed in %.2f s (below %.0f s)%s\n",
              seconds, kMaxFilterSeconds, good ? "" : " MISSED");
}

bool isWanted(const char* name, const std::vector<std::string_view>& words) {
  const auto isInName = [name](std::string_view word) {
    return std::string_view(name).find(word) != std::string_view::npos;
  };
  return words.empty() || std::any_of(words.begin(), words.end(), isInName);
}

void* measureAll(void* wantedWords) {
  const auto& words = *static_cast<const std::vector<std::string_view>*>(wantedWords);
  std::printf("%-36s %9s %9s %9s %6s %9s %9s %6s\n", "times in ms", "n", "work n", "2 n", "ratio",
              "release n", "2 n", "ratio");
  for (const GrowthCase& growth : KelpBench::growthCases()) {
    if (isWanted(growth.name, words)) measure(growth);
  }
  for (const GrowthCase& growth : KelpBench::growthCases()) {
    if (growth.whileCached && isWanted(growth.name, words)) measureManyNames(growth);
  }
  std::printf("FIGURE|growth|%d ratios of 2 n to n, at most %.2f (%s), limit %.1f%s\n", ratios,
              worstRatio, worstCase, kMaxRatio, failures == 0 ? "" : " MISSED");
  if (isWanted("many references", words)) measureManyReferences();
  return nullptr;
}

}  // namespace

int main(int argc, char** argv) {
  // Memory that goes back to the system between runs would cost the larger ones more per byte.
  mallopt(M_ARENA_MAX, 1);
  mallopt(M_MMAP_MAX, 0);
  mallopt(M_TRIM_THRESHOLD, INT_MAX);
  mallopt(M_TOP_PAD, 64 << 20);
  std::vector<std::string_view> words(argv + 1, argv + argc);
  // Nesting is bounded by the stack, so that it takes a large one to be measured.
  constexpr size_t kHugeStack = size_t{2} << 30;
  pthread_attr_t attributes;
  pthread_t thread;
  if (pthread_attr_init(&attributes) != 0 ||
      pthread_attr_setstacksize(&attributes, kHugeStack) != 0 ||
      pthread_create(&thread, &attributes, measureAll, &words) != 0) {
    std::perror("kelp_growth");
    return 2;
  }
  pthread_join(thread, nullptr);
  return failures == 0 ? 0 : 1;
}
