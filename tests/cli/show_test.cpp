// kelp show.
#include "tests/cli/program.h"

using KelpTest::Outcome;

namespace {

class ShowCommand : public KelpTest::ProgramTest {
 protected:
  ShowCommand() {
    write("a.scene",
          "Light lamp{power=60*(1+.5);power=75;color=Color(1,1,1);}\n"
          "Mesh lamp{faces=ListInt(1,2);}Mesh pan{}");
  }
};

}  // namespace

TEST_F(ShowCommand, EveryObjectOfTheNameAsSceneText) {
  EXPECT_EQ(kelp("show a.scene lamp"), (Outcome{0,
                                                "Light lamp {\n"
                                                "  power = 60 * (1 + 0.5);\n"
                                                "  power = 75;\n"
                                                "  color = Color(1, 1, 1);\n"
                                                "}\n"
                                                "\n"
                                                "Mesh lamp {\n"
                                                "  faces = ListInt(1, 2);\n"
                                                "}\n",
                                                ""}));
}

TEST_F(ShowCommand, PropertyAsItWasAssignedLast) {
  EXPECT_EQ(kelp("show a.scene lamp.power"), (Outcome{0, "  power = 75;\n", ""}));
  EXPECT_EQ(kelp("show - lamp.faces <a.scene").out, "  faces = ListInt(1, 2);\n");
}

TEST_F(ShowCommand, JsonIsThatOfTheTree) {
  const std::string tree = kelp("dump --format json a.scene").out;
  const std::string object = kelp("show --json a.scene pan").out;
  ASSERT_GT(object.size(), 20U);
  EXPECT_NE(tree.find(object.substr(0, object.size() - 1)), std::string::npos);
  const std::string property = kelp("show --json a.scene lamp.power").out;
  EXPECT_NE(tree.find(property.substr(0, property.size() - 1)), std::string::npos);
  EXPECT_NE(property.find("75"), std::string::npos);
  EXPECT_EQ(kelp("show --json a.scene lamp | wc -l").out, "2\n");
}

TEST_F(ShowCommand, StreamShowsTheSame) {
  for (const char* what : {"lamp", "lamp.power", "pan", "nothing", "lamp.nothing"}) {
    EXPECT_EQ(kelp(std::string("show --stream a.scene ") + what),
              kelp(std::string("show a.scene ") + what));
  }
}

TEST_F(ShowCommand, EqualObjectsOfAStreamAreShownApart) {
  write("twice.scene", "A a { x = 1; } A a { y = 2; }");
  EXPECT_EQ(kelp("show --stream twice.scene a").out, "A a {\n  x = 1;\n}\n\nA a {\n  y = 2;\n}\n");
  EXPECT_EQ(kelp("show twice.scene a").out, "A a {\n  x = 1;\n  y = 2;\n}\n");
}

TEST_F(ShowCommand, WhatIsNotThereIsSaid) {
  EXPECT_EQ(kelp("show a.scene none"),
            (Outcome{1, "",
                     "kelp: a.scene: there is no object \"none\"; kelp list names all objects\n"}));
  EXPECT_EQ(kelp("show a.scene pan.x"), (Outcome{1, "",
                                                 "kelp: a.scene: \"pan\" has no property \"x\"; "
                                                 "kelp show FILE pan shows those it has\n"}));
  EXPECT_EQ(
      kelp("show a.scene"),
      (Outcome{2, "", "kelp: show takes FILE and OBJECT[.PROPERTY]; kelp --help tells more\n"}));
  EXPECT_EQ(kelp("show none lamp").exitCode, 2);
  EXPECT_EQ(kelp("show -o out a.scene none").exitCode, 1);
  EXPECT_EQ(files(), "a.scene\n");
}

TEST_F(ShowCommand, NameThatAnAffixHasSpoiltIsRefused) {
  const Outcome outcome = kelp("show --affix '1 ' a.scene '1 pan'");
  EXPECT_EQ(outcome.exitCode, 1);
  EXPECT_NE(outcome.err.find("1 pan"), std::string::npos);
  EXPECT_EQ(kelp("show --affix my_ a.scene my_pan").out, "Mesh my_pan { }\n");
}
