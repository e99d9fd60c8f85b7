// WorkStack: walks a tree in order without recursion, so that the depth of a scene costs memory
// and not stack.
#pragma once

#include <algorithm>
#include <cstddef>
#include <vector>

namespace Kelp {

/// Steps that are still to be done, the next one on top.
template <class Step>
class WorkStack {
 public:
  /// Called within a step: these follow it, in the order of the calls, before anything older.
  void add(const Step& step) { steps.push_back(step); }

  /// Does all steps and those that they add.
  template <class Perform>
  void run(Perform perform) {
    for (;;) {
      std::reverse(steps.begin() + static_cast<std::ptrdiff_t>(done), steps.end());
      if (steps.empty()) break;
      const Step step = steps.back();
      steps.pop_back();
      done = steps.size();
      perform(step);
    }
    done = 0;
  }

 private:
  std::vector<Step> steps;
  size_t done = 0;  // steps below are in the order in which they are popped
};

}  // namespace Kelp
