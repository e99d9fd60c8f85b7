#include "tests/cli/program.h"

using KelpTest::Outcome;

namespace {

class FilterCommand : public KelpTest::ProgramTest {
 protected:
  FilterCommand() {
    write("a.scene",
          "Lamp sun { power = 1; }\n"
          "Lamp moon { power = sun.power / 4; }\n"
          "Box crate { light = moon; heat = sun::warmth; other = ghost; }\n"
          "Box { lit = sun; }\n");
  }

  // The names of the objects that are left.
  std::string left(const std::string& arguments) const {
    return shell("\"$KELP\" filter a.scene " + arguments +
                 " | sed -n 's/^\\([A-Z].*\\) {.*/\\1/p' | paste -sd,")
        .out;
  }
};

}  // namespace

TEST_F(FilterCommand, WithoutAWishAllStays) {
  EXPECT_EQ(kelp("filter a.scene"), (Outcome{0,
                                             "Lamp sun {\n  power = 1;\n}\n\n"
                                             "Lamp moon {\n  power = sun.power / 4;\n}\n\n"
                                             "Box crate {\n  light = moon;\n  heat = sun::warmth;\n"
                                             "  other = ghost;\n}\n\n"
                                             "Box {\n  lit = sun;\n}\n",
                                             ""}));
}

TEST_F(FilterCommand, KeepsAndDropsByTypeAndName) {
  EXPECT_EQ(left("--keep-type Lamp"), "Lamp sun,Lamp moon\n");
  EXPECT_EQ(left("--keep-type 'L*'"), "Lamp sun,Lamp moon\n");
  EXPECT_EQ(left("--drop-type 'L*'"), "Box crate,Box\n");
  EXPECT_EQ(left("--keep-type Lamp --keep-type Box"), "Lamp sun,Lamp moon,Box crate,Box\n");
  EXPECT_EQ(left("--keep-name '*n'"), "Lamp sun,Lamp moon\n");
  EXPECT_EQ(left("--keep-name sun --keep-name crate"), "Lamp sun,Box crate\n");
  EXPECT_EQ(left("--drop-name 'm*' --drop-name crate"), "Lamp sun,Box\n");
  EXPECT_EQ(left("--keep-type Lamp --drop-name sun"), "Lamp moon\n");
  EXPECT_EQ(left("--keep-type Lamp --keep-name crate"), "\n");
  EXPECT_EQ(left("--drop-name ''"), "Lamp sun,Lamp moon,Box crate\n");
  EXPECT_EQ(left("--drop-name '?*'"), "Box\n");
}

TEST_F(FilterCommand, ReferencesFollowNewNames) {
  EXPECT_EQ(kelp("filter --drop-type Lamp --rename sun=star --rename moon=sun a.scene").out,
            "Box crate {\n  light = sun;\n  heat = star::warmth;\n  other = ghost;\n}\n\n"
            "Box {\n  lit = star;\n}\n");
  EXPECT_EQ(kelp("filter --keep-type Lamp --rename-regex 's/^(.)/\\1_/' a.scene").out,
            "Lamp s_un {\n  power = 1;\n}\n\nLamp m_oon {\n  power = s_un.power / 4;\n}\n");
}

TEST_F(FilterCommand, ChoiceAndNewNamesAreForTheNamesOfTheText) {
  EXPECT_EQ(kelp("filter --keep-name moon --rename sun=star --affix p_ a.scene").out,
            "Lamp p_moon {\n  power = p_star.power / 4;\n}\n");
  EXPECT_EQ(kelp("filter --keep-name moon --rename moon=m --suffix _s a.scene").out,
            "Lamp m_s {\n  power = sun_s.power / 4;\n}\n");
}

TEST_F(FilterCommand, NamesThatWouldBecomeOneAreRefused) {
  EXPECT_EQ(kelp("filter --rename sun=moon a.scene"),
            (Outcome{1, "", "kelp: \"moon\" and \"sun\" would both be called \"moon\"\n"}));
  EXPECT_EQ(kelp("filter --rename-regex 's/.*/x/' -o out a.scene"),
            (Outcome{1, "", "kelp: \"crate\" and \"moon\" would both be called \"x\"\n"}));
  EXPECT_EQ(files(), "a.scene\n");
  EXPECT_EQ(kelp("filter --rename sun=moon --rename moon=sun a.scene").exitCode, 0);
  EXPECT_EQ(kelp("filter --rename sun=moon --drop-name moon a.scene").exitCode, 0);
}

TEST_F(FilterCommand, ObjectsOfOneNameAndSeveralTypesGetTheSameNewName) {
  write("b.scene", "A x { } B x { r = x; }\n");
  EXPECT_EQ(kelp("filter --rename x=y b.scene").out, "A y { }\n\nB y {\n  r = y;\n}\n");
}

TEST_F(FilterCommand, WhatCannotBeWrittenIsRefused) {
  EXPECT_EQ(
      kelp("filter --rename none=some a.scene"),
      (Outcome{1, "",
               "kelp: there is no object \"none\" to rename; kelp list names all objects\n"}));
  const Outcome noName = kelp("filter --rename 'sun=1 2' -o out a.scene");
  EXPECT_EQ(noName.exitCode, 1);
  EXPECT_NE(noName.err.find("1 2"), std::string::npos) << noName.err;
  EXPECT_EQ(files(), "a.scene\n");
}

TEST_F(FilterCommand, WhatMakesNoSenseIsTold) {
  const char* tail = "; kelp --help tells more\n";
  const struct {
    const char* arguments;
    const char* message;
  } rows[] = {
      {"a.scene a.scene", "kelp: filter takes one FILE only"},
      {"a.scene --rename x", "kelp: --rename: \"x\" is not of the form OLD=NEW"},
      {"a.scene --rename x=y --rename x=z", "kelp: --rename: \"x\" gets two names"},
      {"a.scene --rename-regex x", "kelp: \"x\" is not of the form s/OLD/NEW/"},
  };
  for (const auto& row : rows) {
    EXPECT_EQ(kelp(std::string("filter ") + row.arguments),
              (Outcome{2, "", std::string(row.message) + tail}));
  }
  write("bad.scene", "A a {\n");
  EXPECT_EQ(kelp("filter bad.scene").exitCode, 1);
  EXPECT_EQ(kelp("filter none.scene").exitCode, 2);
}
