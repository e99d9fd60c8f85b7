// kelp list.
#include "tests/cli/program.h"

using KelpTest::Outcome;

namespace {

class ListCommand : public KelpTest::ProgramTest {
 protected:
  ListCommand() {
    write("a.scene", "Light lamp { power = 1; }\nMesh {}\n#include \"b.scene\"\nMesh pan {}\n");
    write("b.scene", "Mesh pot {\n\n  x = 1;\n  y = 2;\n}\n");
  }
};

}  // namespace

TEST_F(ListCommand, ObjectsInColumns) {
  EXPECT_EQ(kelp("list a.scene"), (Outcome{0,
                                           "TYPE   NAME  PROPERTIES  PLACE\n"
                                           "Light  lamp           1  a.scene:1\n"
                                           "Mesh   -              0  -\n"
                                           "Mesh   pot            2  b.scene:3\n"
                                           "Mesh   pan            0  -\n",
                                           ""}));
}

TEST_F(ListCommand, OnlyThoseOfThePatterns) {
  EXPECT_EQ(kelp("list --type 'M*' --name 'p[aeiou]t' a.scene").out,
            "TYPE  NAME  PROPERTIES  PLACE\nMesh  pot            2  b.scene:3\n");
  EXPECT_EQ(kelp("list --name '' a.scene").out, kelp("list a.scene").out);
  EXPECT_EQ(kelp("list --type light a.scene"), (Outcome{0, "TYPE  NAME  PROPERTIES  PLACE\n", ""}));
}

TEST_F(ListCommand, JsonHasALineForEveryObject) {
  EXPECT_EQ(
      kelp("list --json --type 'L*' a.scene").out,
      "{\"type\":\"Light\",\"name\":\"lamp\",\"properties\":1,\"file\":\"a.scene\",\"line\":1}\n");
  EXPECT_EQ(
      kelp("list --json --name '' --type Mesh - <a.scene").out,
      "{\"type\":\"Mesh\",\"name\":\"\",\"properties\":0}\n"
      "{\"type\":\"Mesh\",\"name\":\"pot\",\"properties\":2,\"file\":\"b.scene\",\"line\":3}\n"
      "{\"type\":\"Mesh\",\"name\":\"pan\",\"properties\":0}\n");
}

TEST_F(ListCommand, StreamHasTheSameObjectsUnmerged) {
  EXPECT_EQ(kelp("list --stream a.scene"), kelp("list --no-stream a.scene"));
  write("twice.scene", "A a { x = 1; } A a { y = 2; }");
  EXPECT_EQ(kelp("list --json twice.scene | wc -l").out, "1\n");
  EXPECT_EQ(kelp("list --json --stream twice.scene | wc -l").out, "2\n");
}

// The columns are measured over the first thousand.
TEST_F(ListCommand, ManyObjectsAreAllListed) {
  EXPECT_EQ(
      shell("for i in $(seq 2500); do echo \"A n$i {}\"; done | $KELP list - | sort -u | wc -l")
          .out,
      "2501\n");
  EXPECT_EQ(
      shell("for i in $(seq 2500); do echo \"A n$i {}\"; done | $KELP list - | tail -n 1").out,
      "A     n2500           0  -\n");
}

TEST_F(ListCommand, ErrorOfTheSceneIsReported) {
  write("bad.scene", "A a {} B b { x = ; }");
  EXPECT_EQ(kelp("list bad.scene").exitCode, 1);
  EXPECT_NE(kelp("list bad.scene").err, "");
  EXPECT_EQ(kelp("list --json --stream bad.scene").out,
            "{\"type\":\"A\",\"name\":\"a\",\"properties\":0}\n");
  EXPECT_EQ(kelp("list -o out bad.scene").exitCode, 1);
  EXPECT_EQ(kelp("list none").exitCode, 2);
  EXPECT_EQ(kelp("list a.scene b.scene"),
            (Outcome{2, "", "kelp: list takes one FILE only; kelp --help tells more\n"}));
  EXPECT_EQ(files(), "a.scene\nb.scene\nbad.scene\n");
  EXPECT_EQ(kelp("list -o out a.scene"), (Outcome{0, "", ""}));
  EXPECT_EQ(contents("out"), kelp("list a.scene").out);
}
