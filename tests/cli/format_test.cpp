#include <gtest/gtest.h>

#include "tests/cli/program.h"

using KelpTest::Outcome;

namespace {

constexpr const char* kMessy = "// a comment\nA   a{x=1; // why\ny=List( 1,2 );}\n";
constexpr const char* kNeat = "// a comment\nA a {\n  x = 1;  // why\n  y = List(1, 2);\n}\n";

}  // namespace

class Format : public KelpTest::ProgramTest {
 protected:
  Format() {
    write("messy.scene", kMessy);
    write("neat.scene", kNeat);
    write("bad.scene", "A a { x = ; }\n");
  }

  const std::string badReport =
      "bad.scene:1:11: error: Token \";\" not recognized as valid token\n"
      "A a { x = ; }\n"
      "          ^\n";
};

TEST_F(Format, TextGoesToStandardOutput) {
  EXPECT_EQ(kelp("format messy.scene"), (Outcome{0, kNeat, ""}));
  EXPECT_EQ(kelp("format messy.scene neat.scene"), (Outcome{0, std::string(kNeat) + kNeat, ""}));
  EXPECT_EQ(shell("$KELP format - <messy.scene"), (Outcome{0, kNeat, ""}));
  EXPECT_EQ(contents("messy.scene"), kMessy);
}

TEST_F(Format, OutputFileIsWritten) {
  EXPECT_EQ(kelp("format messy.scene -o out.scene"), (Outcome{0, "", ""}));
  EXPECT_EQ(contents("out.scene"), kNeat);
  EXPECT_EQ(kelp("format -o messy.scene messy.scene"), (Outcome{0, "", ""}));
  EXPECT_EQ(contents("messy.scene"), kNeat);
}

TEST_F(Format, BadSceneIsReportedAndNothingOfItWritten) {
  EXPECT_EQ(kelp("format bad.scene"), (Outcome{1, "", badReport}));
  EXPECT_EQ(kelp("format bad.scene neat.scene"), (Outcome{1, kNeat, badReport}));
  EXPECT_EQ(kelp("format bad.scene -o out"), (Outcome{1, "", badReport}));
  EXPECT_EQ(kelp("format -w bad.scene"), (Outcome{1, "", badReport}));
  EXPECT_EQ(kelp("format --check bad.scene"), (Outcome{1, "", badReport}));
  EXPECT_EQ(contents("bad.scene"), "A a { x = ; }\n");
  EXPECT_EQ(files(), "bad.scene\nmessy.scene\nneat.scene\n");
}

TEST_F(Format, UnreadableFilesAreReported) {
  EXPECT_EQ(kelp("format none neat.scene"),
            (Outcome{2, kNeat, "none: error: Cannot read \"none\": No such file or directory\n"}));
  EXPECT_EQ(kelp("format ."), (Outcome{2, "", ".: error: Cannot read \".\": Is a directory\n"}));
  EXPECT_EQ(shell("$KELP format - <&-"),
            (Outcome{2, "", "<stdin>: error: Cannot read standard input: Bad file descriptor\n"}));
  EXPECT_EQ(kelp("format --max-bytes 10 messy.scene"),
            (Outcome{2, "", "messy.scene: error: The scene has more than 10 bytes\n"}));
}

TEST_F(Format, IncludesAreLookedUpButNotFormatted) {
  EXPECT_EQ(shell("mkdir parts; printf 'x  =  1;' >parts/p.inc; "
                  "printf 'A {\\n#include \"p.inc\"\\n}' >i.scene; $KELP format i.scene -I parts"),
            (Outcome{0, "A {\n  #include \"p.inc\"\n}\n", ""}));
  EXPECT_EQ(kelp("format i.scene").exitCode, 1);
}

// ---- --check -----------------------------------------------------------------------------------

TEST_F(Format, CheckNamesTheFilesThatWouldChange) {
  EXPECT_EQ(kelp("format --check neat.scene"), (Outcome{0, "", ""}));
  EXPECT_EQ(kelp("format --check messy.scene neat.scene"), (Outcome{1, "messy.scene\n", ""}));
  EXPECT_EQ(shell("$KELP format --check - <messy.scene"), (Outcome{1, "<stdin>\n", ""}));
  EXPECT_EQ(shell("printf 'A { }' >cut.scene; $KELP format --check cut.scene"),
            (Outcome{1, "cut.scene\n", ""}));
  EXPECT_EQ(shell("printf 'A { }\\n\\n' >more.scene; $KELP format --check more.scene"),
            (Outcome{1, "more.scene\n", ""}));
  EXPECT_EQ(contents("messy.scene"), kMessy);
}

// ---- -w ----------------------------------------------------------------------------------------

TEST_F(Format, FilesAreRewrittenInPlace) {
  EXPECT_EQ(kelp("format -w messy.scene neat.scene"), (Outcome{0, "", ""}));
  EXPECT_EQ(contents("messy.scene"), kNeat);
  EXPECT_EQ(files(), "bad.scene\nmessy.scene\nneat.scene\n");
}

TEST_F(Format, OneBadFileKeepsNoOtherFromBeingRewritten) {
  EXPECT_EQ(kelp("format --write bad.scene messy.scene"), (Outcome{1, "", badReport}));
  EXPECT_EQ(contents("messy.scene"), kNeat);
}

TEST_F(Format, RewrittenFileKeepsItsRights) {
  EXPECT_EQ(shell("chmod 640 messy.scene; $KELP format -w messy.scene; stat -c %a messy.scene"),
            (Outcome{0, "640\n", ""}));
}

TEST_F(Format, UnchangedFileIsNotTouched) {
  EXPECT_EQ(shell("before=$(stat -c '%i %Y %Z' neat.scene); $KELP format -w neat.scene; "
                  "test \"$before\" = \"$(stat -c '%i %Y %Z' neat.scene)\""),
            (Outcome{0, "", ""}));
}

TEST_F(Format, TargetOfASymbolicLinkIsRewritten) {
  EXPECT_EQ(shell("mkdir d; mv messy.scene d/real; ln -s d/real link; $KELP format -w link; "
                  "test -L link && ls d"),
            (Outcome{0, "real\n", ""}));
  EXPECT_EQ(contents("d/real"), kNeat);
}

TEST_F(Format, WhatIsNoRegularFileIsNotRewritten) {
  EXPECT_EQ(shell("mkfifo pipe; cat messy.scene >pipe & $KELP format -w pipe"),
            (Outcome{2, "", "kelp: Cannot rewrite \"pipe\": not a regular file\n"}));
}

TEST_F(Format, FailedRewriteLeavesTheOldFile) {
  // The limit is one block: less than the text needs.
  const Outcome outcome = shell(
      "{ echo 'A {'; for i in $(seq 9999); do echo 'x=1;'; done; echo '}'; } >long.scene; "
      "cp long.scene copy; trap '' XFSZ; ulimit -f 1; $KELP format -w long.scene neat.scene");
  EXPECT_EQ(outcome, (Outcome{2, "", "kelp: Cannot write to \"long.scene\": File too large\n"}));
  EXPECT_EQ(contents("long.scene"), contents("copy"));
  EXPECT_EQ(files(), "bad.scene\ncopy\nlong.scene\nmessy.scene\nneat.scene\n");
}

TEST_F(Format, FullDiskIsTold) {
  EXPECT_EQ(shell("$KELP format neat.scene >/dev/full"),
            (Outcome{2, "", "kelp: Cannot write to standard output: No space left on device\n"}));
  EXPECT_EQ(kelp("format neat.scene -o /dev/full"),
            (Outcome{2, "", "kelp: Cannot write to \"/dev/full\": No space left on device\n"}));
}
