#include "tests/exhaustion/operation.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <climits>
#include <new>
#include <tuple>
#include <type_traits>
#include <typeinfo>
#include <utility>

#include "kelp/ast/expressions.h"
#include "kelp/ast/objects.h"
#include "kelp/utils/exceptions.h"
#include "tests/exhaustion/heldelements.h"
#include "tests/support/allocations.h"
#include "tests/support/figures.h"
#include "tests/support/parsing.h"

namespace KelpTest {

using namespace Kelp;

namespace {

enum class Ending { kCompleted, kBadAlloc, kExceptionMsg };

template <class Element>
void clearTexts(Element& node) {
  if constexpr (std::is_base_of_v<StringExpressionAST, Element>) {
    node.directory.freeMem();
    node.text.freeMem();
  } else if constexpr (std::is_base_of_v<ObjectReferenceAST, Element>) {
    node.name.freeMem();
  } else if constexpr (std::is_base_of_v<ObjectAST, Element>) {
    node.type.freeMem();
    node.name.freeMem();
  } else if constexpr (std::is_base_of_v<PropertyAST, Element>) {
    node.name.freeMem();
    node.file.freeMem();
  }
}

// Free nodes keep their texts until they are taken again. Without them the heap can be compared
// block by block. The first free nodes are those that an operation takes.
template <class... Nodes>
void dropTexts(int64_t most) {
  const auto drop = [most]<class Node>(Node*) {
    const HeldElements<Node> free(
        static_cast<int>(std::min<int64_t>(FreeElements<Node>::count(), most)));
    for (auto* node : free.held()) clearTexts(*node);
  };
  (drop(static_cast<Nodes*>(nullptr)), ...);
}

// What is alive before something and must be again behind it.
class Balance {
 public:
  // With a node class: all of its free nodes may have been taken.
  template <class Node = void>
  static Balance of(const Workload& workload) {
    return Balance([most = workload.mostNodes] {
      dropTexts<StringExpressionAST, ObjectReferenceAST, ObjectAST, PropertyAST>(most);
      if constexpr (!std::is_void_v<Node>) dropTexts<Node>(INT_MAX);
    });
  }

  void expectKept(int lostElements) const {
    dropAll();
    EXPECT_EQ(livePoolElements(), elements + lostElements);
    EXPECT_EQ(liveAllocations(), blocks);
  }

 private:
  explicit Balance(std::function<void()> drop) : dropAll(std::move(drop)) {
    dropAll();
    elements = livePoolElements();
    blocks = liveAllocations();
  }

  std::function<void()> dropAll;
  int elements;
  int64_t blocks;
};

Ending endingOf(Operation& operation) {
  try {
    operation.act();
  } catch (const std::bad_alloc&) {
    return Ending::kBadAlloc;
  } catch (const ExceptionMsg&) {
    return Ending::kExceptionMsg;
  }
  return Ending::kCompleted;
}

void expectSuccess(const Workload& workload) {
  const std::unique_ptr<Operation> operation = workload.make();
  ASSERT_EQ(endingOf(*operation), Ending::kCompleted);
  operation->check(true);
}

// Runs the workload while what `fail` makes is alive. The first ending is that of memory.
template <class Fail>
bool failsOnce(const Workload& workload, const Fail& fail, Ending* ending) {
  const std::unique_ptr<Operation> operation = workload.make();
  bool failed = false;
  {
    const auto failing = fail();
    *ending = endingOf(*operation);
    failed = failing->hasFailed();
  }
  EXPECT_EQ(*ending != Ending::kCompleted, failed);
  operation->check(*ending == Ending::kCompleted);
  return failed;
}

// From one point to the next: all of them when there is time, else so many that their number stays
// near the effort, the same every day.
class Stride {
 public:
  Stride(int64_t points, const Effort& effort, bool persistent)
      : step(hasTimeForAll() ? 1 : std::max<int64_t>(1, points / effort.everydayPoints)),
        first(persistent ? (step + 1) / 2 : 1) {}
  const int64_t step;
  const int64_t first;  // both modes together see more points
};

template <class Count>
int64_t countOf(const Workload& workload, const Count& count) {
  const Balance balance = Balance::of(workload);
  const std::unique_ptr<Operation> operation = workload.make();
  const int64_t before = count();
  endingOf(*operation);
  return count() - before;
}

// `fail(n, persistent)` makes what lets the n-th point fail. Ends when nothing failed any more.
template <class Fail>
Points failEveryPoint(const Workload& workload, int64_t points, const Effort& effort,
                      const Fail& fail) {
  Points run;
  for (const bool persistent : {false, true}) {
    const Stride stride(points, effort, persistent);
    int64_t failures = 0;
    bool failed = true;
    for (int64_t n = stride.first; failed && n <= points + stride.step; n += stride.step) {
      SCOPED_TRACE(workload.name + (persistent ? ", from point " : ", point ") + std::to_string(n));
      expectLeavesNothing(workload, [&] {
        Ending ending;
        failed = failsOnce(
            workload, [&] { return fail(n, persistent); }, &ending);
      });
      if (failed) ++failures;
      if (testing::Test::HasFailure()) return run;
    }
    EXPECT_GT(failures, 0) << workload.name << " never failed";
    EXPECT_FALSE(failed) << workload.name << " never succeeded";
    run.failures += failures;
  }
  run.sceneBytes = workload.sceneBytes;
  return run;
}

// Lets the element behind k others be the first that a pool has none of any more.
template <class Node>
int64_t failEveryElementOf(const Workload& workload, bool persistent) {
  FreeElements<Node>::findRefusals();
  const int available = FreeElements<Node>::count();
  int64_t failures = 0;
  bool failed = true;
  for (int k = 0; failed && k <= available; k += hasTimeForAll() ? 1 : 1 + k) {
    SCOPED_TRACE(workload.name + (persistent ? ", from element " : ", element ") +
                 std::to_string(k + 1) + " of " + typeid(Node).name());
    const Balance balance = Balance::of<Node>(workload);
    Ending ending;
    {
      const HeldElements<Node> held(available - k);
      const int wanted = Node::pool.liveCount() + k + 1;
      const auto asksForIt = [wanted] { return Node::pool.liveCount() == wanted; };
      failed = failsOnce(
          workload, [&] { return std::make_unique<RefusedBlocks>(asksForIt, persistent); },
          &ending);
    }
    EXPECT_EQ(ending, failed ? Ending::kExceptionMsg : Ending::kCompleted);
    if (failed) {
      ++failures;
      FreeElements<Node>::noteRefusal();
    }
    expectSuccess(workload);
    balance.expectKept(failed ? 1 : 0);
    if (testing::Test::HasFailure()) return failures;
  }
  EXPECT_FALSE(failed) << workload.name << " never succeeded";
  return failures;
}

template <class... Nodes>
struct Classes {
  using Surplus = std::tuple<SurplusElements<Nodes>...>;

  static int64_t failEveryElement(const Workload& workload, bool persistent) {
    return (failEveryElementOf<Nodes>(workload, persistent) + ...);
  }
};

using AllClasses =
    Classes<NumberExpressionAST, StringExpressionAST, VectorExpressionAST, AColorExpressionAST,
            MatrixExpressionAST, TransformExpressionAST, TransformHexExpressionAST,
            ObjectReferenceAST, NegatedExpressionAST, InterpolateExpressionAST, KeyList, ObjectAST,
            PropertyAST, ArrayExpressionAST, BinaryExpressionAST, BuiltinFunctionAST,
            ListExpressionAST, ListCell, PropertyReferenceAST, RuntimeValueAST>;

}  // namespace

Points& Points::operator+=(const Points& more) {
  failures += more.failures;
  sceneBytes += more.sceneBytes;
  return *this;
}

void Points::report(const std::string& layer, const std::string& kind) const {
  const std::string bytes = sceneBytes > 0 ? ", " + grouped(sceneBytes) + " bytes of scenes" : "";
  reportFigure(layer, grouped(failures) + " " + kind + " in two modes" + bytes);
}

struct SurplusNodes::Held {
  AllClasses::Surplus surplus;
};

SurplusNodes::SurplusNodes() : held(std::make_unique<Held>()) {}

SurplusNodes::~SurplusNodes() = default;

void expectLeavesNothing(const Workload& unharmed, const std::function<void()>& run) {
  const Balance balance = Balance::of(unharmed);
  run();
  expectSuccess(unharmed);
  balance.expectKept(0);
}

Points failEveryRequest(const Workload& workload, const Effort& effort) {
  expectSuccess(workload);
  const int64_t points = countOf(workload, [] { return allocationCount(); });
  return failEveryPoint(workload, points, effort, [](int64_t n, bool persistent) {
    return std::make_unique<FailingAllocation>(n, persistent);
  });
}

Points failEveryBlock(const Workload& workload, const Effort& effort) {
  expectSuccess(workload);
  int64_t requests = 0;
  const RefusedBlocks counting([&requests] {
    ++requests;
    return false;
  });
  const int64_t points = countOf(workload, [&requests] { return requests; });
  return failEveryPoint(workload, points, effort, [](int64_t n, bool persistent) {
    return std::make_unique<RefusedBlocks>([n]() mutable { return --n == 0; }, persistent);
  });
}

Points failEveryElement(const Workload& workload) {
  expectSuccess(workload);
  Points run;
  for (const bool persistent : {false, true}) {
    run.failures += AllClasses::failEveryElement(workload, persistent);
  }
  EXPECT_GT(run.failures, 0) << workload.name << " never failed";
  run.sceneBytes = workload.sceneBytes;
  return run;
}

}  // namespace KelpTest
