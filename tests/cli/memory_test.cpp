// What the commands do when memory runs out.
#include <gtest/gtest.h>
#include <unistd.h>

#include "cli/command.h"
#include "cli/diagnostics.h"
#include "cli/input.h"
#include "tests/support/allocations.h"

namespace {

const std::string kScene = KELP_SOURCE_DIR "/tests/cli/memory.scene";

}  // namespace

TEST(Memory, SceneThatDoesNotFitIsReportedWhereverMemoryRunsOut) {
  const Kelp::SceneOptions options;
  int reported = 0;
  bool failed = true;
  for (int n = 1; failed; ++n) {
    SCOPED_TRACE(n);
    KelpCli::Input input;
    {
      const KelpTest::FailingAllocation failing(n);
      input = KelpCli::readScene(kScene, options);
      failed = failing.hasFailed();
    }
    if (input.good()) continue;
    ++reported;
    EXPECT_EQ(KelpCli::exitCodeOf(input.error), KelpCli::kTrouble);
    // The second text is that of a pool of nodes which cannot grow.
    const std::string why = input.error.describe();
    EXPECT_TRUE(why == "Out of memory" || why == "[_SequenceBlock] Could not allocate memory")
        << why;
  }
  EXPECT_GT(reported, 5);
  EXPECT_TRUE(KelpCli::readScene(kScene, {}).good());
}

TEST(Memory, OutputFileIsWholeOrAbsentWhereverMemoryRunsOut) {
  const std::unique_ptr<KelpCli::Command> dump = KelpCli::dumpCommand();
  KelpCli::Options& options = dump->options;
  options.files = {kScene};
  options.output = testing::TempDir() + "kelp_memory_test_output";
  const char* path = options.output.c_str();
  testing::internal::CaptureStderr();
  bool failed = true;
  for (int n = 1; failed; ++n) {
    SCOPED_TRACE(n);
    KelpCli::ExitCode code = KelpCli::kTrouble;
    {
      const KelpTest::FailingAllocation failing(n);
      try {
        code = dump->run();
      } catch (const std::bad_alloc&) {
      }
      failed = failing.hasFailed();
    }
    EXPECT_EQ(code == KelpCli::kGood, ::access(path, F_OK) == 0);
    ::unlink(path);
  }
  testing::internal::GetCapturedStderr();
}
