// Lists of files on the command line.
#include "tests/cli/program.h"

using KelpTest::Outcome;

namespace {

std::string missing(const std::string& name) {
  return name + ": error: Cannot read \"" + name + "\": No such file or directory\n";
}

class FilesFrom : public KelpTest::ProgramTest {
 protected:
  FilesFrom() { write("good.scene", "A a { }\n"); }
};

}  // namespace

TEST_F(FilesFrom, NamesOfALineEachAreRead) {
  write("list", "none1\ngood.scene\n\nwith blank\n  none2");
  EXPECT_EQ(kelp("check --files-from list"),
            (Outcome{2, "", missing("none1") + missing("with blank") + missing("  none2")}));
}

TEST_F(FilesFrom, NamesThatEndInNulMayHoldLineEnds) {
  write("a\nb.scene", "A {");
  EXPECT_EQ(shell("printf 'good.scene\\0a\\nb.scene\\0\\0none' | $KELP check -0 --files-from -"),
            (Outcome{2, "",
                     "a?b.scene:1:4: error: expected a \"{\" at end of object definition\n"
                     "A {\n   ^\n"
                     "none: error: Cannot read \"none\": No such file or directory\n"}));
  EXPECT_EQ(shell("find . -name '*.scene' -print0 | $KELP check --null --files-from=-").exitCode,
            1);
}

TEST_F(FilesFrom, FilesOfTheCommandLineComeFirst) {
  write("list", "none1\n");
  EXPECT_EQ(kelp("check none2 --files-from list good.scene -- none3"),
            (Outcome{2, "", missing("none2") + missing("none3") + missing("none1")}));
}

TEST_F(FilesFrom, StandardInputIsAListOrAScene) {
  EXPECT_EQ(shell("echo good.scene | $KELP check --files-from -"), (Outcome{0, "", ""}));
  write("list", "-\n");
  EXPECT_EQ(shell("echo 'A {' | $KELP check --files-from list").err.substr(0, 11), "<stdin>:2:1");
  EXPECT_EQ(shell("echo good.scene | $KELP check - --files-from -"),
            (Outcome{2, "",
                     "kelp: --files-from: standard input cannot be the list and a scene; "
                     "kelp --help tells more\n"}));
  EXPECT_EQ(shell("echo - | $KELP check --files-from -").exitCode, 2);
}

TEST_F(FilesFrom, EmptyListIsAllWell) {
  write("list", "");
  EXPECT_EQ(kelp("check --files-from list"), (Outcome{0, "", ""}));
  write("list", "\n\n");
  EXPECT_EQ(kelp("check --files-from list"), (Outcome{0, "", ""}));
}

TEST_F(FilesFrom, UnreadableListIsTrouble) {
  EXPECT_EQ(kelp("check --files-from none good.scene"),
            (Outcome{2, "", "kelp: Cannot read \"none\": No such file or directory\n"}));
  EXPECT_EQ(kelp("check --files-from ."),
            (Outcome{2, "", "kelp: Cannot read \".\": Is a directory\n"}));
  EXPECT_EQ(shell("$KELP check --files-from - <&-"),
            (Outcome{2, "", "kelp: Cannot read standard input: Bad file descriptor\n"}));
}

TEST_F(FilesFrom, LongListsAreReadWhole) {
  EXPECT_EQ(shell("yes good.scene | head -n 9000 | $KELP check --stats --files-from - | wc -l").out,
            "9000\n");
  const std::string name(3000, 'x');
  EXPECT_EQ(shell("for i in $(seq 50); do echo " + name +
                  "; done | $KELP check --files-from - 2>&1 | grep -c 'File name too long'")
                .out,
            "50\n");
}
