// kelp check --stream.
#include <unistd.h>

#include "cli/diagnostics.h"
#include "cli/input.h"
#include "tests/cli/program.h"
#include "tests/support/allocations.h"
#include "tests/support/buildkind.h"

using KelpTest::Outcome;

namespace {

class StreamOption : public KelpTest::ProgramTest {
 protected:
  StreamOption() {
    write("good.scene", "A a { x = ListInt(1, 2); }\nB b { y = 1 + 2; }\n");
    write("bad.scene", "A a {\n  x = (1 + 2;\n}\n");
    write("outer.scene", "#include \"good.scene\"\n");
  }

  // The figures without the times.
  Outcome figures(const std::string& arguments) const {
    Outcome outcome = kelp(arguments + " | sed 's/, [0-9.]* seconds.*//; s/\"seconds.*//'");
    return outcome;
  }
};

}  // namespace

TEST_F(StreamOption, AnswersAreThoseOfTheWholeScene) {
  for (const char* arguments :
       {"good.scene", "bad.scene", "outer.scene", "none", ".", "bad.scene none good.scene",
        "good.scene --max-objects 1", "good.scene --max-bytes 10", "good.scene --affix a_",
        "outer.scene --max-includes 1", "--json bad.scene none", "- </dev/null", "- <bad.scene",
        "- <&-"}) {
    EXPECT_EQ(kelp(std::string("check --stream ") + arguments),
              kelp(std::string("check --no-stream ") + arguments))
        << arguments;
  }
  EXPECT_EQ(shell("cat good.scene bad.scene | $KELP check --stream -"),
            shell("cat good.scene bad.scene | $KELP check -"));
}

TEST_F(StreamOption, FiguresAreThoseOfTheWholeScene) {
  for (const char* arguments : {"--stats good.scene outer.scene", "--json good.scene"}) {
    EXPECT_EQ(figures(std::string("check --stream ") + arguments),
              figures(std::string("check ") + arguments));
  }
}

TEST_F(StreamOption, EqualObjectsCountApart) {
  write("twice.scene", "A a { x = 1; } A a { y = 2; }");
  EXPECT_EQ(
      figures("check --stream --stats twice.scene").out,
      "twice.scene: 29 bytes, 2 objects, 2 properties, 2 expression nodes, 0 list elements\n");
  EXPECT_EQ(
      figures("check --stats twice.scene").out,
      "twice.scene: 29 bytes, 1 objects, 2 properties, 2 expression nodes, 0 list elements\n");
}

TEST_F(StreamOption, IsTheDefaultOfFilesThatAreLargerThanAQuarterOfMemory) {
  const int64_t memory = int64_t{::sysconf(_SC_PHYS_PAGES)} * ::sysconf(_SC_PAGESIZE);
  // A hole that takes no room on the disk, but memory when it is read whole.
  shell("printf 'A a { }\\n' >large.scene; truncate -s " + std::to_string(memory / 4 + 1) +
        " large.scene");
  // Sanitizers need more address space than memory.
  const std::string limit = KelpTest::kSanitized ? "" : "ulimit -v 500000; ";
  EXPECT_EQ(shell(limit + "$KELP check large.scene"),
            (Outcome{1, "",
                     "large.scene:2:1: error: NUL byte on line 2\n" + std::string(100, '?') +
                         "...\n^\n"}));
  if (!KelpTest::kSanitized) {
    EXPECT_EQ(shell(limit + "$KELP check --no-stream large.scene"),
              (Outcome{2, "", "large.scene: error: Out of memory\n"}));
  }
}

TEST_F(StreamOption, SceneThatDoesNotFitIsReportedWhereverMemoryRunsOut) {
  const std::string file = (directory / "in" / "good.scene").string();
  const auto read = [&file] {
    return KelpCli::streamScene(file, {},
                                [](const Kelp::ObjectAST&) { return Kelp::ObjectFate::kDrop; });
  };
  int reported = 0;
  bool failed = true;
  for (int n = 1; failed; ++n) {
    KelpCli::StreamedInput input;
    {
      const KelpTest::FailingAllocation failing(n);
      input = read();
      failed = failing.hasFailed();
    }
    if (input.good()) continue;
    ++reported;
    EXPECT_EQ(KelpCli::exitCodeOf(input.error), KelpCli::kTrouble);
    EXPECT_NE(input.error.describe().find("memory"), std::string::npos);
  }
  EXPECT_GT(reported, 5);
  EXPECT_TRUE(read().good());
}
