// What is done with the library while something it needs fails, at every point in turn.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>

#include "tests/exhaustion/scenes.h"

namespace KelpTest {

/// One run of something that a host does. It is made and destroyed while nothing fails.
class Operation {
 public:
  Operation() = default;
  Operation(const Operation&) = delete;
  Operation& operator=(const Operation&) = delete;
  virtual ~Operation() = default;

  /// Does it; what fails meanwhile passes through.
  virtual void act() = 0;

  /// Expects what must hold behind act(), which has come to its end or thrown.
  virtual void check(bool completed) = 0;
};

/// How to make an operation anew for every point.
struct Workload {
  std::string name;
  int64_t mostNodes;       ///< nodes of one class that it takes, or more
  int64_t sceneBytes = 0;  ///< size of the text that it works on
  std::function<std::unique_ptr<Operation>()> make;
};

template <class Made, class... Arguments>
Workload workload(const std::string& name, int64_t mostNodes, const Arguments&... arguments) {
  return {name, mostNodes, 0, [arguments...] { return std::make_unique<Made>(arguments...); }};
}

/// An operation on a text. Every node takes at least a character.
template <class Made, class... Arguments>
Workload workloadOn(const NamedScene& scene, const Arguments&... arguments) {
  const auto size = static_cast<int64_t>(scene.text.size());
  return {scene.name, size, size,
          [scene, arguments...] { return std::make_unique<Made>(scene, arguments...); }};
}

/// What was run.
struct Points {
  int64_t failures = 0;    ///< runs in which something failed
  int64_t sceneBytes = 0;  ///< of the workloads, each once

  Points& operator+=(const Points& more);
  /// Prints the figure of a layer: so many points of that kind.
  void report(const std::string& layer, const std::string& kind) const;
};

/// Points on which everyday runs may spend their time; KELP_PROOF=1 takes all of them.
struct Effort {
  int64_t everydayPoints = 40;  ///< about so many a workload and mode
};

/// Expects that `run` leaves nothing behind and that the same, unharmed, succeeds afterwards.
void expectLeavesNothing(const Workload& unharmed, const std::function<void()>& run);

/// Leaves the static pools few free elements while it lives. Tests that used millions leave them
/// to all that follow, and to hold them back at every point anew would take hours.
class SurplusNodes {
 public:
  SurplusNodes();
  ~SurplusNodes();

 private:
  struct Held;
  std::unique_ptr<Held> held;
};

/// Lets every heap request of the workload fail in turn, alone and with all that follow. Expects
/// after each failure that nothing is left behind and that the same, unharmed, succeeds.
Points failEveryRequest(const Workload& workload, const Effort& effort = {});

/// The same with the requests of pools for new blocks.
Points failEveryBlock(const Workload& workload, const Effort& effort = {});

/// The same with the elements of every static pool: those that are free are held back but for k,
/// and no block is to be had for another one, for k = 0, 1, 2...
Points failEveryElement(const Workload& workload);

}  // namespace KelpTest
