#include "tests/cli/program.h"

using KelpTest::Outcome;

namespace {

class MergeCommand : public KelpTest::ProgramTest {
 protected:
  MergeCommand() {
    write("a.scene", "A a { x = 1; y = 1; } B b { r = a; }\n");
    write("b.scene", "C c { z = 3; } D d { } A a { y = 2; w = \"s\"; }\n");
    write("c.scene", "E e { } A a { x = 7; }\n");
    write("bad.scene", "A a {\n");
  }
};

}  // namespace

TEST_F(MergeCommand, LaterAssignmentsWinAndNewObjectsFollow) {
  EXPECT_EQ(kelp("merge a.scene b.scene c.scene"),
            (Outcome{0,
                     "A a {\n  y = 2;\n  w = \"s\";\n  x = 7;\n}\n\n"
                     "B b {\n  r = a;\n}\n\n"
                     "C c {\n  z = 3;\n}\n\n"
                     "D d { }\n\n"
                     "E e { }\n",
                     ""}));
}

TEST_F(MergeCommand, OneSceneIsWrittenWithItsLastAssignments) {
  write("twice.scene", "A a { x = 1; x = 2; } A a { x = 3; y = 1; } A b { x = 1; }\n");
  EXPECT_EQ(kelp("merge twice.scene").out, "A a {\n  x = 3;\n  y = 1;\n}\n\nA b {\n  x = 1;\n}\n");
}

TEST_F(MergeCommand, ASceneWithItselfIsItself) {
  EXPECT_EQ(kelp("merge a.scene a.scene").out, kelp("merge a.scene").out);
}

TEST_F(MergeCommand, LongTextsOutliveTheMerge) {
  const std::string text(5000, 'x');
  const std::string hex(16, '0');
  write("long.scene", "A a { s = \"" + text + "\"; h = ListIntHex(\"" + hex + "\"); }\n");
  const Outcome merged = kelp("merge b.scene long.scene c.scene");
  EXPECT_NE(merged.out.find('"' + text + '"'), std::string::npos);
  EXPECT_NE(merged.out.find("ListIntHex(\"" + hex + "\")"), std::string::npos);
}

TEST_F(MergeCommand, MeansWhatOneTextOfAllMeans) {
  EXPECT_EQ(shell("cat a.scene b.scene c.scene >all.scene; \"$KELP\" merge -o out a.scene b.scene "
                  "c.scene && \"$KELP\" diff all.scene out"),
            (Outcome{0, "", ""}));
}

TEST_F(MergeCommand, AffixesAreJoinedToAllNames) {
  EXPECT_EQ(kelp("merge --affix p_ a.scene c.scene").out,
            "A p_a {\n  y = 1;\n  x = 7;\n}\n\nB p_b {\n  r = p_a;\n}\n\nE p_e { }\n");
}

TEST_F(MergeCommand, ASceneThatCannotBeReadLeavesNoOutput) {
  const Outcome bad = kelp("merge -o out a.scene bad.scene");
  EXPECT_EQ(bad.exitCode, 1);
  EXPECT_TRUE(bad.err.starts_with("bad.scene:2:1: error: ")) << bad.err;
  EXPECT_EQ(kelp("merge -o out a.scene none.scene").exitCode, 2);
  EXPECT_EQ(files(), "a.scene\nb.scene\nbad.scene\nc.scene\n");
  EXPECT_EQ(shell("\"$KELP\" merge a.scene >/dev/full"),
            (Outcome{2, "", "kelp: Cannot write to standard output: No space left on device\n"}));
}
