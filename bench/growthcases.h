// What may not take more than in proportion to its number.
#pragma once

#include <functional>
#include <vector>

namespace KelpBench {

/// Processor time of this thread.
struct Seconds {
  double work = 0;
  double release = 0;
};

struct GrowthCase {
  const char* name;
  std::function<Seconds(int n)> run;
  int most = 1 << 23;        ///< no n is larger
  double longEnough = 0.02;  ///< seconds that a run of n takes at least
  bool whileCached = false;  ///< larger numbers would show the caches of the machine
};

/// Reading texts that hold n of something, and operations on programs of n objects.
const std::vector<GrowthCase>& growthCases();

/// The time that renaming all of n recorded references takes.
double filterSeconds(int n);

}  // namespace KelpBench
