#include "tests/cli/program.h"

using KelpTest::Outcome;

namespace {

class ProgressLine : public KelpTest::ProgramTest {
 protected:
  ProgressLine() {
    std::string text;
    for (int i = 0; i < 3000; ++i) text += "A a" + std::to_string(i) + " { x = 1; }\n";
    write("a.scene", text);
  }

  // What a terminal gets of a run on a scene that comes slowly.
  std::string onTerminal(const std::string& arguments) const {
    return shell(
               "(cat a.scene; sleep 0.8; sed s/a/b/ a.scene) >slow & "
               "script -qec '$KELP " +
               arguments + " <slow' /dev/null </dev/null")
        .out;
  }
};

bool tellsProgress(const std::string& text) {
  return text.find("MB/s") != std::string::npos || text.find("kB/s") != std::string::npos;
}

}  // namespace

TEST_F(ProgressLine, IsShownOfALongRunAndVanishes) {
  ASSERT_EQ(shell("mkfifo slow; script -qec true /dev/null </dev/null").exitCode, 0);
  for (const char* arguments : {"check -", "check --stream -", "stats --stream -"}) {
    const std::string text = onTerminal(arguments);
    EXPECT_TRUE(tellsProgress(text)) << text;
    EXPECT_NE(text.find("\r<stdin>  "), std::string::npos) << text;
    // Nothing is printed behind it on its line.
    const size_t last = text.rfind("B/s");
    EXPECT_EQ(text.compare(last, 10, "B/s\x1b[K\r\x1b[K"), 0) << text;
  }
}

TEST_F(ProgressLine, IsNotShownOfAShortRunOrInAPipe) {
  EXPECT_FALSE(tellsProgress(shell("script -qec '$KELP check a.scene' /dev/null </dev/null").out));
  const Outcome piped = shell("(cat a.scene; sleep 0.8; sed s/a/b/ a.scene) | $KELP check -");
  EXPECT_EQ(piped, (Outcome{0, "", ""}));
}
