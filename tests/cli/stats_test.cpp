// kelp stats.
#include "tests/cli/program.h"

using KelpTest::Outcome;

namespace {

class StatsCommand : public KelpTest::ProgramTest {
 protected:
  StatsCommand() {
    write("a.scene",
          "Light lamp { power = 60 * 2; power = 75; at = pan; }\n"
          "Mesh pan { faces = ListIntHex(\"00ff\"); x = ListInt(1, 2, 3); y = none.z; }\n"
          "Mesh {}");
  }
};

}  // namespace

TEST_F(StatsCommand, CountsByKinds) {
  EXPECT_EQ(kelp("stats a.scene"),
            (Outcome{0,
                     "a.scene: 3 objects, 6 properties (1 repeated), 3 list elements, 4 bytes of "
                     "hexadecimal text, 2 references (1 dangling)\n"
                     "objects by type\n"
                     "  Mesh             2\n"
                     "  Light            1\n"
                     "expressions by kind\n"
                     "  number                       3\n"
                     "  intList                      2\n"
                     "  operators                    1\n"
                     "  propertyReference            1\n"
                     "  reference                    1\n"
                     "largest objects (nodes, list elements, hexadecimal bytes)\n"
                     "  Mesh pan             10\n"
                     "  Light lamp            5\n"
                     "  Mesh                  0\n",
                     ""}));
}

TEST_F(StatsCommand, JsonHasTheSame) {
  EXPECT_EQ(kelp("stats --json a.scene").out,
            "{\"file\":\"a.scene\",\"objects\":3,\"properties\":6,\"repeatedProperties\":1,"
            "\"listElements\":3,\"hexBytes\":4,\"references\":2,\"danglingReferences\":1,"
            "\"types\":[{\"name\":\"Mesh\",\"count\":2},{\"name\":\"Light\",\"count\":1}],"
            "\"expressions\":[{\"name\":\"number\",\"count\":3},{\"name\":\"intList\",\"count\":2},"
            "{\"name\":\"operators\",\"count\":1},{\"name\":\"propertyReference\",\"count\":1},"
            "{\"name\":\"reference\",\"count\":1}],"
            "\"largest\":[{\"type\":\"Mesh\",\"name\":\"pan\",\"size\":10},"
            "{\"type\":\"Light\",\"name\":\"lamp\",\"size\":5},"
            "{\"type\":\"Mesh\",\"name\":\"\",\"size\":0}]}\n");
}

TEST_F(StatsCommand, StreamDoesNotResolveReferences) {
  const std::string streamed = kelp("stats --stream a.scene").out;
  EXPECT_NE(streamed.find(" 2 references\n"), std::string::npos);
  EXPECT_EQ(kelp("stats --stream --json a.scene").out.find("dangling"), std::string::npos);
  EXPECT_EQ(streamed.substr(streamed.find("objects by type")), kelp("stats a.scene | sed 1d").out);
}

TEST_F(StatsCommand, FilesThatAreNoGoodDoNotKeepOthersFromIt) {
  write("bad.scene", "A");
  const Outcome outcome = kelp("stats --json bad.scene none a.scene");
  EXPECT_EQ(outcome.exitCode, 2);
  EXPECT_EQ(outcome.out, kelp("stats --json a.scene").out);
  EXPECT_EQ(kelp("stats bad.scene").exitCode, 1);
}

TEST_F(StatsCommand, BarsOnATerminalOnly) {
  const std::string onTerminal =
      shell("script -qec \"$KELP stats a.scene\" /dev/null </dev/null").out;
  EXPECT_NE(onTerminal.find("  Mesh             2  " + std::string(40, '#') + "\r"),
            std::string::npos)
      << onTerminal;
  EXPECT_NE(onTerminal.find("  Light            1  " + std::string(20, '#') + "\r"),
            std::string::npos);
}
