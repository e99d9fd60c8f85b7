// Scanners that throw before a chosen token, with every kind of exception: what the parse makes of
// it, and that nothing is left.
#include <gtest/gtest.h>

#include <algorithm>
#include <iterator>
#include <new>
#include <optional>

#include "tests/exhaustion/parsing.h"
#include "tests/support/allocations.h"
#include "tests/support/figures.h"
#include "tests/support/scanners.h"

using namespace Kelp;
using namespace KelpTest;

namespace {

// Of nobody's family but the test's.
struct Foreign {};

enum class Kind { kSource, kUnrecorded, kMemory, kResource, kForeign };
constexpr Kind kKinds[] = {Kind::kSource, Kind::kUnrecorded, Kind::kMemory, Kind::kResource,
                           Kind::kForeign};

// For kUnrecorded it is the memory for the record of the failure that is missing, too.
void throwKind(Kind kind, const CharString& message) {
  switch (kind) {
    case Kind::kSource:
    case Kind::kUnrecorded:
      throw InvalidSourceFile(message);
    case Kind::kMemory:
      throw std::bad_alloc();
    case Kind::kResource:
      throw ExceptionMsg("exhausted");
    case Kind::kForeign:
      throw Foreign();
  }
}

struct ScannedText {
  explicit ScannedText(const NamedScene& scene) {
    reader.openText(scene.text.data(), static_cast<int64_t>(scene.text.size()), scene.name.c_str());
    parser.collectReferenceNames = 1;
    reader.readerParam1 = 1.0;
    restartSeeds();
  }

  SourcesReader reader;
  WatchedScanner scanner{&reader};
  TreeParser parser{&scanner};
};

// What comes out of a parse that fails before its k-th token; the program has been begun behind
// the second one, and from there on a source's failure becomes a record.
enum class Outcome { kNull, kSource, kMemory, kResource, kForeign, kParsed };

Outcome expectedOutcome(Kind kind, int k) {
  switch (kind) {
    case Kind::kSource:
      return k > 2 ? Outcome::kNull : Outcome::kSource;
    case Kind::kUnrecorded:
      return k > 2 ? Outcome::kMemory : Outcome::kSource;
    case Kind::kMemory:
      return Outcome::kMemory;
    case Kind::kResource:
      return Outcome::kResource;
    case Kind::kForeign:
      break;
  }
  return Outcome::kForeign;
}

Outcome outcomeOf(TreeParser& parser) {
  try {
    const auto_ast<ProgramAST> program(parser.parseProgram());
    return program.get() != nullptr ? Outcome::kParsed : Outcome::kNull;
  } catch (const InvalidSourceFile&) {
    return Outcome::kSource;
  } catch (const std::bad_alloc&) {
    return Outcome::kMemory;
  } catch (const ExceptionMsg&) {
    return Outcome::kResource;
  } catch (const Foreign&) {
    return Outcome::kForeign;
  }
}

// The scanner throws before token k, and with `persistent` before all later ones. True when it did.
bool failsAtToken(const NamedScene& scene, int k, Kind kind, bool persistent) {
  ScannedText source(scene);
  const CharString message("unreadable");
  std::optional<FailingAllocation> failing;
  bool failed = false;
  source.scanner.before = [&](int token) {
    if (token != k && !(persistent && token > k)) return;
    failed = true;
    if (kind == Kind::kUnrecorded) failing.emplace(1, persistent);
    throwKind(kind, message);
  };
  const Outcome outcome = outcomeOf(source.parser);
  failing.reset();
  if (!failed) return false;
  // What was read is added before the failure is recorded: it may be that which lacks memory.
  const bool whileAdding = kind == Kind::kUnrecorded && outcome == Outcome::kResource;
  EXPECT_EQ(whileAdding ? Outcome::kMemory : outcome, expectedOutcome(kind, k));
  const char* text = source.parser.errorInfo.getErrorText().chars();
  EXPECT_STREQ(text, outcome == Outcome::kNull ? "unreadable" : nullptr);
  EXPECT_EQ(source.parser.referenceNames.count, 0);
  return true;
}

// From one token to the next: with time for all, every token of a large scene fails with one kind
// in either mode, and every token of a small one with all kinds.
int strideOf(int tokens) {
  constexpr int kSmallScene = 100;
  if (hasTimeForAll()) return tokens <= kSmallScene ? 1 : static_cast<int>(std::size(kKinds));
  return std::max(1, tokens / 8);
}

Points failEveryToken(const NamedScene& scene) {
  const std::vector<Workload> unharmed = parsesOf({scene});
  ScannedText counting(scene);
  const auto_ast<ProgramAST> program(counting.parser.parseProgram());
  const int tokens = counting.scanner.tokens;
  Points points;
  points.sceneBytes = static_cast<int64_t>(scene.text.size());
  for (const Kind kind : kKinds) {
    for (const bool persistent : {false, true}) {
      bool failed = true;
      const int stride = strideOf(tokens);
      for (int k = 1 + static_cast<int>(kind) % stride; failed; k += stride) {
        SCOPED_TRACE(scene.name + ", token " + std::to_string(k));
        expectLeavesNothing(unharmed.front(),
                            [&] { failed = failsAtToken(scene, k, kind, persistent); });
        if (failed) ++points.failures;
        if (testing::Test::HasFailure()) return points;
      }
    }
  }
  EXPECT_GT(points.failures, 0) << scene.name << " never failed";
  return points;
}

}  // namespace

TEST(ScanFailure, BeforeEveryTokenLeavesNothing) {
  Points points;
  for (const NamedScene& scene : allScenes()) points += failEveryToken(scene);
  points.report("memory C, scenes", "tokens that could not be scanned, of five kinds,");
}
