// A thread that is cancelled while it parses or filters: the stack unwinds and nothing stays.
#include <gtest/gtest.h>
#include <pthread.h>

#include <functional>

#include "tests/support/buildkind.h"
#include "tests/support/filters.h"
#include "tests/support/parsing.h"
#include "tests/support/richscenes.h"
#include "tests/support/scanners.h"

using namespace Kelp;
using namespace KelpTest;

namespace {

// Sanitizers lose track of the stack of a cancelled thread; there the frames are left by an
// exception that nothing in the library knows.
struct Cancelled {};

void cancelThisThread() {
  if constexpr (kSanitized) throw Cancelled{};
  pthread_cancel(pthread_self());
  pthread_testcancel();
}

// Runs `work` on a thread of its own. True when the thread was cancelled.
bool isCancelled(std::function<void()> work) {
  const auto run = [](void* argument) -> void* {
    try {
      (*static_cast<std::function<void()>*>(argument))();
    } catch (const Cancelled&) {
      return PTHREAD_CANCELED;
    }
    return nullptr;
  };
  pthread_t thread;
  if (pthread_create(&thread, nullptr, run, &work) != 0) return false;
  void* result = nullptr;
  pthread_join(thread, &result);
  return result == PTHREAD_CANCELED;
}

// Parses and is cancelled when it is about to read that token.
bool isCancelledAtToken(const std::string& text, int token) {
  SourcesReader reader;
  WatchedScanner scanner(&reader);
  TreeParser parser(&scanner);
  parser.collectReferenceNames = 1;
  reader.openText(text.data(), static_cast<int64_t>(text.size()), "scenes/test.scene");
  scanner.before = [&](int number) {
    if (number == token) cancelThisThread();
  };
  const bool cancelled = isCancelled([&] {
    ProgramAST* program = parser.parseProgram();
    if (program != nullptr) program->deleteThis();
  });
  if (cancelled) {
    EXPECT_EQ(parser.referenceNames.count, 0);
    EXPECT_TRUE(parser.errorInfo.getErrorText().isNull());
  }
  return cancelled;
}

}  // namespace

TEST(Cancellation, AtAnyTokenLeavesNothing) {
  int cancelled = 0;
  for (const std::string& text : richScenes()) {
    const int live = livePoolElements();
    int tokens = 1;
    while (isCancelledAtToken(text, tokens)) {
      ASSERT_EQ(livePoolElements(), live) << "before token " << tokens << " of " << text;
      ++tokens;
    }
    EXPECT_EQ(livePoolElements(), live);
    cancelled += tokens - 1;
  }
  EXPECT_GT(cancelled, 100);
}

TEST(Cancellation, InAFilterLeavesAUsableProgram) {
  for (int k = 0; k < 3; ++k) {
    FilteredScene scene("A n { x = o; } A o { y = n; } B p { z = n.x; }");
    int seen = 0;
    FunctionFilter filter([&](const CharString&, CharString& name, void*) {
      if (seen++ == k) cancelThisThread();
      name = (std::string("new_") + name.chars()).c_str();
      return 0;
    });
    EXPECT_TRUE(isCancelled([&] { scene.filter(filter); }));
    EXPECT_EQ(scene.references(), (std::vector<std::string>{"o", "n", "n"}));
    scene.rename({{"n", "m"}});
    EXPECT_EQ(scene.references(), (std::vector<std::string>{"o", "m", "m"}));
    EXPECT_NE(scene.program->getObject("m"), nullptr);
  }
}
