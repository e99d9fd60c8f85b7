// Holds free elements of a node class, so that its pool runs out at a chosen one.
#pragma once

#include <algorithm>
#include <type_traits>
#include <vector>

#include "kelp/utils/exceptions.h"
#include "tests/support/allocations.h"

namespace KelpTest {

/// Takes free elements of a pool and gives them back in the end, so that they come in the order
/// that they came in before.
template <class Node>
class HeldElements {
 public:
  using Element = std::remove_pointer_t<decltype(Node::pool.newElement())>;

  explicit HeldElements(int number) {
    nodes.reserve(static_cast<size_t>(number));
    for (int i = 0; i < number; ++i) nodes.push_back(Node::pool.newElement());
  }
  HeldElements(const HeldElements&) = delete;
  HeldElements& operator=(const HeldElements&) = delete;
  ~HeldElements() {
    for (auto node = nodes.rbegin(); node != nodes.rend(); ++node) Node::pool.freeElement(*node);
  }

  const std::vector<Element*>& held() const { return nodes; }

 private:
  std::vector<Element*> nodes;
};

/// How many elements the pools can hand out without new blocks. Their live counts alone do not say
/// so: every refused block leaves one of them one too high.
template <class Node>
class FreeElements {
 public:
  static int count() { return countedFree() + refusals; }

  /// For whoever has had a block refused.
  static void noteRefusal() { ++refusals; }

  /// Finds out what others had refused. Costs a refusal itself.
  static void findRefusals() {
    std::vector<typename HeldElements<Node>::Element*> taken;
    taken.reserve(1000 * static_cast<size_t>(Node::pool.blockCount()));
    {
      const RefusedBlocks refused([] { return true; }, true);
      try {
        for (;;) taken.push_back(Node::pool.newElement());
      } catch (const Kelp::ExceptionMsg&) {
        // That was the last one.
      }
    }
    for (auto node = taken.rbegin(); node != taken.rend(); ++node) Node::pool.freeElement(*node);
    refusals = static_cast<int>(taken.size()) - countedFree();
  }

 private:
  static int countedFree() {
    constexpr int kBlock = 1000;
    return kBlock * Node::pool.blockCount() - Node::pool.liveCount();
  }

  static inline int refusals = 0;
};

/// Leaves a pool few free elements (see SurplusNodes).
template <class Node>
class SurplusElements {
 public:
  SurplusElements() : surplus(count()) {}

 private:
  static constexpr int kFew = 2000;

  static int count() {
    FreeElements<Node>::findRefusals();
    return std::max(0, FreeElements<Node>::count() - kFew);
  }

  HeldElements<Node> surplus;
};

}  // namespace KelpTest
