#include <algorithm>

#include "tests/cli/program.h"

using KelpTest::Outcome;

namespace {

class Diff : public KelpTest::ProgramTest {
 protected:
  Diff() {
    write("a.scene", "A a { x = 1; y = \"s\"; }\nB b { r = a; l = ListInt(1, 2); }\nC { }\n");
    write("b.scene",
          "D d { u = 1; }\nB b { l = ListInt(1, 3); q = a; }\nA a { y = \"s\"; x = 1; }\n");
    write("bad.scene", "A a {\n");
  }
};

}  // namespace

TEST_F(Diff, PrintsRemovedChangedAndAddedObjects) {
  EXPECT_EQ(kelp("diff a.scene b.scene"), (Outcome{1,
                                                   "  B b\n"
                                                   "-   r = a;\n"
                                                   "-   l = ListInt(1, 2);\n"
                                                   "+   l = ListInt(1, 3);\n"
                                                   "+   q = a;\n"
                                                   "- C\n"
                                                   "+ D d\n",
                                                   ""}));
}

TEST_F(Diff, ScenesThatMeanTheSameGiveNothing) {
  write("same.scene", "C {}\nB b { l = ListInt(1,2); r=a; }\nA a {y=\"s\"; x=2; x = 1;}\n");
  EXPECT_EQ(kelp("diff a.scene same.scene"), (Outcome{0, "", ""}));
  EXPECT_EQ(kelp("diff --json a.scene same.scene"), (Outcome{0, "", ""}));
}

TEST_F(Diff, QuietTellsByTheExitCode) {
  EXPECT_EQ(kelp("diff -q a.scene b.scene"), (Outcome{1, "", ""}));
  EXPECT_EQ(kelp("diff --quiet a.scene a.scene"), (Outcome{0, "", ""}));
}

TEST_F(Diff, JsonHoldsValuesAsSceneText) {
  const char* expected =
      R"x({"change":"changed","type":"B","name":"b","properties":[)x"
      R"x({"change":"removed","name":"r","before":"a"},)x"
      R"x({"change":"changed","name":"l","before":"ListInt(1, 2)","after":"ListInt(1, 3)"},)x"
      R"x({"change":"added","name":"q","after":"a"}]})x"
      "\n"
      R"x({"change":"removed","type":"C","name":"","properties":[]})x"
      "\n"
      R"x({"change":"added","type":"D","name":"d","properties":[]})x"
      "\n";
  EXPECT_EQ(kelp("diff --json a.scene b.scene"), (Outcome{1, expected, ""}));
}

TEST_F(Diff, LongValuesAreCutUnlessAskedFor) {
  std::string list = "ListInt(1";
  for (int i = 0; i < 1000; ++i) list += ", 1";
  write("long.scene", "A a { x = " + list + "); }\n");
  write("short.scene", "A a { }\n");
  const Outcome cut = kelp("diff short.scene long.scene");
  EXPECT_EQ(std::count(cut.out.begin(), cut.out.end(), '\n'), 1 + 5 + 1);
  EXPECT_TRUE(cut.out.ends_with("\n+     ...\n"));
  const Outcome full = kelp("diff --full short.scene long.scene");
  EXPECT_EQ(std::count(full.out.begin(), full.out.end(), '1'), 1001);
  EXPECT_TRUE(full.out.ends_with(");\n"));
}

TEST_F(Diff, ColoursMarkLinesWhenWished) {
  write("c.scene", "C { x = 1; }\n");
  write("d.scene", "C { x = 2; }\n");
  EXPECT_EQ(kelp("diff --color always c.scene d.scene").out,
            "  C\n\x1b[31m-   x = 1;\x1b[0m\n\x1b[32m+   x = 2;\x1b[0m\n");
  EXPECT_EQ(kelp("diff --color always -o out c.scene d.scene").exitCode, 1);
  EXPECT_EQ(contents("out"), "  C\n-   x = 1;\n+   x = 2;\n");
}

TEST_F(Diff, ASceneThatCannotBeReadIsTrouble) {
  const Outcome bad = kelp("diff a.scene bad.scene");
  EXPECT_EQ(bad.exitCode, 2);
  EXPECT_EQ(bad.out, "");
  EXPECT_TRUE(bad.err.starts_with("bad.scene:2:1: error: ")) << bad.err;
  const Outcome both = kelp("diff bad.scene none.scene");
  EXPECT_NE(both.err.find("bad.scene:2:1"), std::string::npos);
  EXPECT_NE(both.err.find("none.scene"), std::string::npos);
}

TEST_F(Diff, StandardInputIsOneOfTheScenes) {
  EXPECT_EQ(shell("\"$KELP\" diff - a.scene <a.scene"), (Outcome{0, "", ""}));
  EXPECT_EQ(shell("\"$KELP\" diff -q a.scene - <b.scene"), (Outcome{1, "", ""}));
}

TEST_F(Diff, TakesTwoFiles) {
  const char* tail = "; kelp --help tells more\n";
  EXPECT_EQ(kelp("diff a.scene"),
            (Outcome{2, "", std::string("kelp: diff takes two FILEs") + tail}));
  EXPECT_EQ(kelp("diff - -"),
            (Outcome{2, "", std::string("kelp: standard input cannot be both scenes") + tail}));
  EXPECT_EQ(kelp("diff -q --json a.scene b.scene").exitCode, 2);
}
