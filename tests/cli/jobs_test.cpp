#include <algorithm>

#include "tests/cli/program.h"

using KelpTest::Outcome;

namespace {

class Jobs : public KelpTest::ProgramTest {
 protected:
  // Scenes of different sizes, a bad one among them.
  void writeScenes(int count) const {
    for (int i = 0; i < count; ++i) {
      std::string text;
      for (int j = 0; j < (count - i) * 50; ++j) text += "A a" + std::to_string(j) + " { }\n";
      write("s" + std::to_string(1000 + i) + ".scene", i == 7 ? "A {\n" : text);
    }
  }
};

}  // namespace

TEST_F(Jobs, PrintTheSameAsOneProcessInTheSameOrder) {
  writeScenes(100);
  for (const char* command : {"stats", "stats --json", "lint", "lint --json", "format --check"}) {
    const Outcome one = kelp(std::string(command) + " -j 1 s*.scene");
    EXPECT_EQ(one.exitCode, 1) << command;
    for (const char* jobs : {"-j 2", "--jobs 5", "-j 200", "-j 0"}) {
      EXPECT_EQ(kelp(std::string(command) + ' ' + jobs + " s*.scene"), one) << command << jobs;
    }
  }
}

TEST_F(Jobs, TakeNamesFromLists) {
  writeScenes(20);
  const std::string names = "ls s*.scene | \"$KELP\" check --json --files-from - ";
  const std::string shown = " | sed 's/,\"bytes.*//'";
  const Outcome one = shell(names + shown);
  EXPECT_EQ(std::count(one.out.begin(), one.out.end(), '\n'), 20);
  EXPECT_EQ(shell(names + "-j 3" + shown), one);
}

TEST_F(Jobs, WorstResultIsThatOfAll) {
  writeScenes(9);
  EXPECT_EQ(kelp("check -j 3 s1000.scene s1001.scene"), (Outcome{0, "", ""}));
  EXPECT_EQ(kelp("check -j 3 s*.scene").exitCode, 1);
  EXPECT_EQ(kelp("check -j 3 s*.scene none.scene").exitCode, 2);
}

TEST_F(Jobs, RewriteFiles) {
  for (int i = 0; i < 30; ++i) write("f" + std::to_string(i) + ".scene", "A   a{}");
  EXPECT_EQ(kelp("format -w -j 4 f*.scene"), (Outcome{0, "", ""}));
  EXPECT_EQ(kelp("format --check -j 4 f*.scene"), (Outcome{0, "", ""}));
  for (int i = 0; i < 30; ++i) EXPECT_EQ(contents("f" + std::to_string(i) + ".scene"), "A a { }\n");
}

TEST_F(Jobs, AProcessThatDiesIsToldForItsFileAlone) {
  for (const char* name : {"a", "b", "c", "d"}) write(std::string(name) + ".scene", "A a { }\n");
  // The pipe has a writer that says nothing: its process waits until it is killed.
  const Outcome outcome = shell(
      "mkfifo pipe; exec 3<>pipe;"
      "\"$KELP\" list a.scene >/dev/null; \"$KELP\" stats -j 2 a.scene b.scene pipe c.scene "
      "d.scene "
      ">out 2>err & pid=$!;"
      "tries=0; until [ $(wc -l <out) -ge 4 ] || [ $tries -ge 200 ]; do sleep 0.05; "
      "tries=$((tries + 1)); done; sleep 0.2;"
      "for p in /proc/[0-9]*; do "
      "if grep -q \"^PPid:.$pid\\$\" $p/status 2>/dev/null; then kill -9 ${p#/proc/}; fi; done;"
      "wait $pid; code=$?; grep -c objects, out; cat err; exit $code");
  EXPECT_EQ(outcome.exitCode, 2);
  EXPECT_EQ(outcome.out, "4\nkelp: The process that worked on \"pipe\" has died: Killed\n");
}

TEST_F(Jobs, NoProcessIsLeftBehind) {
  write("a.scene", "A a { }\n");
  const Outcome outcome = shell(
      "mkfifo pipe; exec 3<>pipe; \"$KELP\" check -j 2 pipe a.scene 3>&- & pid=$!;"
      "sleep 0.3; kill -9 $pid; wait $pid 2>/dev/null; sleep 0.3;"
      "for p in /proc/[0-9]*; do [ \"$(readlink $p/cwd)\" = \"$PWD\" ] && readlink $p/exe; done"
      " 2>/dev/null | grep -c 'kelp$'");
  EXPECT_EQ(outcome.out, "0\n");
}

TEST_F(Jobs, NumberMustBeOne) {
  write("a.scene", "A a { }\n");
  for (const char* number : {"-1", "x", "1.5", "''"}) {
    EXPECT_EQ(kelp(std::string("check a.scene -j ") + number).exitCode, 2) << number;
  }
}
