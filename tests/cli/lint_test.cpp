// kelp lint.
#include "tests/cli/program.h"

using KelpTest::Outcome;

namespace {

class LintCommand : public KelpTest::ProgramTest {
 protected:
  LintCommand() {
    write("good.scene", "Mesh pan { light = lamp; }\nLight lamp { x = 1; }\n");
    write("a.scene", "#include \"b.scene\"\nMesh pan {\n  x = 1;\n  x = steel;\n}\nMesh Pot {}\n");
    write("b.scene", "Mesh pot {\n  y = ListIntHex(\"0\");\n}\n");
  }

  static constexpr const char* kFound =
      "b.scene:2: warning: \"pot.y\" has hexadecimal text of 1 characters, an odd number "
      "[hex-length]\n"
      "a.scene:4: warning: \"pan.x\" refers to \"steel\", but no object has that name "
      "[dangling-reference]\n"
      "a.scene:4: warning: \"pan.x\" was assigned before, at a.scene:3; the last assignment "
      "counts [repeated-property]\n"
      "a.scene: warning: \"Pot\" differs from \"pot\" at b.scene:2 in the case of letters only "
      "[similar-name]\n";
};

}  // namespace

TEST_F(LintCommand, FindingsAreLinesWithPlaceAndCode) {
  EXPECT_EQ(kelp("lint good.scene"), (Outcome{0, "", ""}));
  EXPECT_EQ(kelp("lint a.scene"), (Outcome{1, kFound, ""}));
  EXPECT_EQ(kelp("lint - <b.scene"),
            (Outcome{1,
                     "<stdin>:2: warning: \"pot.y\" has hexadecimal text of 1 characters, an odd "
                     "number [hex-length]\n",
                     ""}));
}

TEST_F(LintCommand, JsonHasALineForEveryFinding) {
  EXPECT_EQ(kelp("lint --json good.scene"), (Outcome{0, "", ""}));
  EXPECT_EQ(
      kelp("lint --json --disable hex-length --disable repeated-property a.scene"),
      (Outcome{1,
               R"({"scene":"a.scene","file":"a.scene","line":4,"code":"dangling-reference",)"
               R"("type":"Mesh","name":"pan","property":"x",)"
               R"("message":"\"pan.x\" refers to \"steel\", but no object has that name"})"
               "\n"
               R"({"scene":"a.scene","code":"similar-name","type":"Mesh","name":"Pot","message":)"
               R"("\"Pot\" differs from \"pot\" at b.scene:2 in the case of letters only"})"
               "\n",
               ""}));
}

TEST_F(LintCommand, RulesAreTurnedOnAndOff) {
  EXPECT_EQ(kelp("lint --disable hex-length a.scene b.scene").out,
            std::string(kFound).substr(std::string(kFound).find('\n') + 1));
  EXPECT_EQ(kelp("lint --disable hex-length b.scene"), (Outcome{0, "", ""}));
  EXPECT_EQ(kelp("lint --enable unused-object good.scene"),
            (Outcome{1,
                     "good.scene:1: warning: \"pan\" is referred to by no other object "
                     "[unused-object]\n",
                     ""}));
  EXPECT_EQ(kelp("lint --enable unused-object --disable unused-object good.scene"),
            (Outcome{0, "", ""}));
  const std::string codes =
      "dangling-reference, unused-object, repeated-property, similar-name, number-overflow, "
      "hex-digit, hex-length";
  const Outcome unknown{
      2, "", "kelp: there is no code \"hex\" but " + codes + "; kelp --help tells more\n"};
  EXPECT_EQ(kelp("lint --enable hex good.scene"), unknown);
  EXPECT_EQ(kelp("lint --disable hex good.scene"), unknown);
}

TEST_F(LintCommand, ListOfRulesSaysWhichAreOn) {
  const std::string list = kelp("lint --list").out;
  EXPECT_TRUE(
      list.starts_with("dangling-reference  on   a reference to a name that no object has\n"
                       "unused-object       off  an object with a name"))
      << list;
  EXPECT_EQ(shell("$KELP lint --list | wc -l").out, "7\n");
  EXPECT_EQ(shell("$KELP lint --list --enable unused-object --disable hex-digit | "
                  "grep '^[a-z-]* *off'")
                .out,
            "hex-digit           off  hexadecimal text with a character that is no hexadecimal "
            "digit\n");
}

TEST_F(LintCommand, EveryFileIsReportedWhateverTheOthersAre) {
  write("bad.scene", "A a { x = ; }");
  const Outcome outcome = kelp("lint good.scene bad.scene none b.scene");
  EXPECT_EQ(outcome.exitCode, 2);
  EXPECT_EQ(outcome.out, kelp("lint b.scene").out);
  EXPECT_NE(outcome.err.find("bad.scene:1:11: error:"), std::string::npos) << outcome.err;
  EXPECT_NE(outcome.err.find("none: error:"), std::string::npos) << outcome.err;
  EXPECT_EQ(kelp("lint good.scene bad.scene").exitCode, 1);
  EXPECT_EQ(shell("ls a.scene good.scene | $KELP lint --files-from -"), (Outcome{1, kFound, ""}));
}

TEST_F(LintCommand, WrongUsageIsRefused) {
  EXPECT_EQ(kelp("lint"), (Outcome{2, "", "kelp: FILE is required; kelp --help tells more\n"}));
  EXPECT_EQ(kelp("lint a.scene >/dev/full"),
            (Outcome{2, "", "kelp: Cannot write to standard output: No space left on device\n"}));
}

TEST_F(LintCommand, WarningsAreColouredOnATerminal) {
  const std::string coloured =
      "b.scene:2: \x1b[1;35mwarning:\x1b[0m \"pot.y\" has hexadecimal text of 1 characters, an "
      "odd number [hex-length]\n";
  EXPECT_EQ(kelp("lint --color always b.scene"), (Outcome{1, coloured, ""}));
  EXPECT_EQ(shell("NO_COLOR=1 $KELP lint --color=always b.scene"), (Outcome{1, coloured, ""}));
  ASSERT_EQ(shell("script -qec true /dev/null </dev/null").exitCode, 0)
      << "needs the program script to run kelp on a terminal (package bsdutils)";
  const auto onTerminal = [this](const std::string& settings, const std::string& options) {
    return shell(settings + "script -qec '$KELP lint b.scene " + options + "' /dev/null </dev/null")
        .out.find("\x1b[1;35m");
  };
  EXPECT_NE(onTerminal("unset NO_COLOR; ", ""), std::string::npos);
  EXPECT_NE(onTerminal("NO_COLOR= ", ""), std::string::npos);
  EXPECT_EQ(onTerminal("NO_COLOR=1 ", ""), std::string::npos);
  EXPECT_EQ(onTerminal("unset NO_COLOR; ", "--color never"), std::string::npos);
  EXPECT_EQ(onTerminal("unset NO_COLOR; ", "| cat"), std::string::npos);
}

// Names in scenes must not steer the terminal.
TEST_F(LintCommand, ControlCharactersAreNotWritten) {
  write("hostile.scene", "A a { \"x\x1b[2J\n\" = b; }");
  EXPECT_EQ(kelp("lint hostile.scene").out,
            "hostile.scene:2: warning: \"a.x?[2J?\" refers to \"b\", but no object has that name "
            "[dangling-reference]\n");
}
