#include <gtest/gtest.h>
#include <sys/stat.h>

#include "tests/cli/program.h"

using KelpTest::Outcome;

namespace {

constexpr const char* kTree = "A a\n  x = 1  // a.scene:1\n";
constexpr const char* kJson =
    R"({"format":"kelp-tree 1","scene":"a.scene","objects":[{"type":"A","name":"a",)"
    R"("filteredOut":0,"properties":[{"name":"x","file":"a.scene","line":1,"frames":[],)"
    R"("value":{"kind":"number","value":1}}]}]})"
    "\n";

}  // namespace

class Dump : public KelpTest::ProgramTest {
 protected:
  Dump() {
    write("a.scene", "A a { x = 1; }\n");
    write("bad.scene", "A a { x = ; }\n");
  }
};

TEST_F(Dump, TreeIsTheDefault) {
  EXPECT_EQ(kelp("dump a.scene"), (Outcome{0, kTree, ""}));
  EXPECT_EQ(kelp("dump --format tree a.scene"), (Outcome{0, kTree, ""}));
}

TEST_F(Dump, JsonOnRequest) {
  EXPECT_EQ(kelp("dump a.scene --format json"), (Outcome{0, kJson, ""}));
}

TEST_F(Dump, StandardInputIsShownUnderItsName) {
  EXPECT_EQ(shell("$KELP dump - <a.scene"), (Outcome{0, "A a\n  x = 1  // <stdin>:1\n", ""}));
}

TEST_F(Dump, BadSceneIsReportedAndNothingWritten) {
  EXPECT_EQ(kelp("dump bad.scene -o out"),
            (Outcome{1, "",
                     "bad.scene:1:11: error: Token \";\" not recognized as valid token\n"
                     "A a { x = ; }\n"
                     "          ^\n"}));
  EXPECT_EQ(files(), "a.scene\nbad.scene\n");
}

TEST_F(Dump, UnreadableSceneIsReported) {
  EXPECT_EQ(kelp("dump none"),
            (Outcome{2, "", "none: error: Cannot read \"none\": No such file or directory\n"}));
}

// ---- what the scene options do -----------------------------------------------------------------

TEST_F(Dump, AffixStandsBeforeAndSuffixBehindNames) {
  write("b.scene", "A a { x = b; }\n");
  EXPECT_EQ(kelp("dump b.scene --affix p_").out, "A p_a\n  x = reference p_b  // b.scene:1\n");
  EXPECT_EQ(kelp("dump b.scene --suffix _s").out, "A a_s\n  x = reference b_s  // b.scene:1\n");
  EXPECT_EQ(kelp("dump b.scene --suffix=-s").out,
            "A \"a-s\"\n  x = reference \"b-s\"  // b.scene:1\n");
}

TEST_F(Dump, IncludePathsAreSearchedInTheirOrder) {
  EXPECT_EQ(shell("mkdir one two; cp a.scene two/i.scene; echo 'B b {}' > one/i.scene; "
                  "echo '#include \"i.scene\"' > c.scene; "
                  "$KELP dump -I one -I two c.scene; $KELP dump -Itwo -Ione c.scene; "
                  "$KELP check -I one c.scene -I two"),
            (Outcome{0, "B b\nA a\n  x = 1  // two/i.scene:1\n", ""}));
}

TEST_F(Dump, FramesAreRecordedWithEveryProperty) {
  EXPECT_EQ(kelp("dump --frames 1:2.5 a.scene").out,
            "A a\n  x = 1  // a.scene:1, frames 1 to 2.5\n");
  EXPECT_EQ(kelp("dump --frames=-10:-1e0 a.scene").out,
            "A a\n  x = 1  // a.scene:1, frames -10 to -1\n");
  EXPECT_EQ(kelp("dump --frames 0:0 a.scene").out, kTree);
}

// ---- output files and failures to write --------------------------------------------------------

TEST_F(Dump, OutputFileIsWrittenWithoutTraces) {
  EXPECT_EQ(kelp("dump a.scene -o out.json --format json"), (Outcome{0, "", ""}));
  EXPECT_EQ(contents("out.json"), kJson);
  EXPECT_EQ(files(), "a.scene\nbad.scene\nout.json\n");
}

TEST_F(Dump, OutputFileIsReplacedAndKeepsItsRights) {
  EXPECT_EQ(shell("echo old >out; chmod 640 out; $KELP dump a.scene --output out; "
                  "stat -c %a out; umask 027; $KELP dump a.scene -o new; stat -c %a new"),
            (Outcome{0, "640\n640\n", ""}));
  EXPECT_EQ(contents("out"), kTree);
}

TEST_F(Dump, OutputThroughASymbolicLinkReplacesItsTarget) {
  EXPECT_EQ(shell("mkdir d; echo old >d/real; ln -s d/real link; $KELP dump a.scene -o link; "
                  "test -L link && cat d/real; ls d"),
            (Outcome{0, std::string(kTree) + "real\n", ""}));
}

TEST_F(Dump, OutputToADeviceOrMinusIsWrittenThere) {
  EXPECT_EQ(kelp("dump a.scene -o -"), (Outcome{0, kTree, ""}));
  EXPECT_EQ(kelp("dump a.scene -o /dev/null"), (Outcome{0, "", ""}));
  EXPECT_EQ(kelp("dump a.scene -o /dev/full"),
            (Outcome{2, "", "kelp: Cannot write to \"/dev/full\": No space left on device\n"}));
}

TEST_F(Dump, OutputInTheScenesPlaceIsPossible) {
  EXPECT_EQ(kelp("dump a.scene -o a.scene"), (Outcome{0, "", ""}));
  EXPECT_EQ(contents("a.scene"), kTree);
}

TEST_F(Dump, OutputThatCannotBeMadeIsTold) {
  EXPECT_EQ(kelp("dump a.scene -o none/out"),
            (Outcome{2, "", "kelp: Cannot write to \"none/out\": No such file or directory\n"}));
  EXPECT_EQ(kelp("dump a.scene -o ."),
            (Outcome{2, "", "kelp: Cannot write to \".\": Is a directory\n"}));
}

TEST_F(Dump, FailedWriteLeavesTheOldFileAndNoTemporaryOne) {
  write("out", "old");
  // The limit is one block: less than the listing needs.
  const Outcome outcome = shell(
      "{ echo 'A {'; for i in $(seq 9999); do echo 'x = 1;'; done; echo '}'; } >long.scene; "
      "trap '' XFSZ; ulimit -f 1; $KELP dump long.scene -o out");
  EXPECT_EQ(outcome, (Outcome{2, "", "kelp: Cannot write to \"out\": File too large\n"}));
  EXPECT_EQ(contents("out"), "old");
  EXPECT_EQ(files(), "a.scene\nbad.scene\nlong.scene\nout\n");
}

TEST_F(Dump, FullDiskClosedPipeAndClosedOutputAreTold) {
  const std::string cannot = "kelp: Cannot write to standard output: ";
  for (const char* format : {"tree", "json"}) {
    const std::string dump = std::string("$KELP dump a.scene --format ") + format;
    EXPECT_EQ(shell(dump + " >/dev/full"), (Outcome{2, "", cannot + "No space left on device\n"}));
    EXPECT_EQ(shell(dump + " >&-"), (Outcome{2, "", cannot + "Bad file descriptor\n"}));
    // The loop ends when the reader has gone.
    EXPECT_EQ(shell("{ while (trap '' PIPE; echo) 2>/dev/null; do :; done; " + dump +
                    "; echo $? >code; } | true; cat code"),
              (Outcome{0, "2\n", cannot + "Broken pipe\n"}));
  }
}

TEST_F(Dump, ClosedDescriptorsDoNotHurtTheOutputFile) {
  EXPECT_EQ(shell("$KELP dump a.scene -o out 2>&-; $KELP check bad.scene 2>&-"),
            (Outcome{1, "", ""}));
  EXPECT_EQ(contents("out"), kTree);
  EXPECT_EQ(shell("$KELP dump a.scene -o second >&- 2>&- <&-"), (Outcome{0, "", ""}));
  EXPECT_EQ(contents("second"), kTree);
}
