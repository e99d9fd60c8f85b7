// kelp graph.
#include "tests/cli/program.h"

using KelpTest::Outcome;

namespace {

constexpr const char* kHead = "digraph scene {\n  rankdir=LR;\n  node [shape=box];\n";

class GraphCommand : public KelpTest::ProgramTest {
 protected:
  GraphCommand() {
    write("a.scene", "Mesh pan { material = steel; light = lamp.power; }\nLight lamp {}\n");
  }

  // A program that is found as dot by those that are run with kDot.
  void writeDot(const std::string& script) const {
    write("dot", "#!/bin/sh\n" + script);
    shell("chmod +x dot");
  }
  static constexpr const char* kDot = "PATH=\"$PWD:$PATH\" $KELP ";
};

}  // namespace

TEST_F(GraphCommand, ReferencesInDot) {
  const std::string graph = std::string(kHead) +
                            "  n1 [label=\"pan\\nMesh\"];\n"
                            "  n2 [label=\"lamp\\nLight\"];\n"
                            "  d1 [label=\"steel\", style=dashed];\n"
                            "  n1 -> d1 [label=\"material\"];\n"
                            "  n1 -> n2 [label=\"light\"];\n}\n";
  EXPECT_EQ(kelp("graph a.scene"), (Outcome{0, graph, ""}));
  EXPECT_EQ(kelp("graph - <a.scene"), (Outcome{0, graph, ""}));
  EXPECT_EQ(kelp("graph -o out a.scene"), (Outcome{0, "", ""}));
  EXPECT_EQ(contents("out"), graph);
}

TEST_F(GraphCommand, OnlyObjectsOfThePatterns) {
  EXPECT_EQ(kelp("graph --type 'L*' a.scene").out,
            std::string(kHead) + "  n1 [label=\"lamp\\nLight\"];\n}\n");
  EXPECT_EQ(kelp("graph --name '?an' a.scene").out, std::string(kHead) +
                                                        "  n1 [label=\"pan\\nMesh\"];\n"
                                                        "  d1 [label=\"steel\", style=dashed];\n"
                                                        "  n1 -> d1 [label=\"material\"];\n}\n");
  EXPECT_EQ(kelp("graph --name pan --type Light a.scene").out, std::string(kHead) + "}\n");
}

TEST_F(GraphCommand, PictureIsWhatDotDraws) {
  writeDot("echo \"picture $*\"; cat");
  const std::string graph = kelp("graph a.scene").out;
  EXPECT_EQ(shell(std::string(kDot) + "graph --svg a.scene"),
            (Outcome{0, "picture -Tsvg\n" + graph, ""}));
  EXPECT_EQ(shell(std::string(kDot) + "graph --png -o out a.scene"), (Outcome{0, "", ""}));
  EXPECT_EQ(contents("out"), "picture -Tpng\n" + graph);
}

// More than a pipe holds, both ways.
TEST_F(GraphCommand, DotMayTakeItsTime) {
  shell("for i in $(seq 20000); do echo \"A n$i { x = n1; }\"; done >many.scene");
  writeDot("cat; echo end");
  EXPECT_EQ(shell(std::string(kDot) + "graph --svg many.scene >drawn; $KELP graph many.scene >dot;"
                                      " echo end >>dot; cmp drawn dot"),
            (Outcome{0, "", ""}));
  writeDot("exit 0");
  EXPECT_EQ(shell(std::string(kDot) + "graph --svg many.scene"), (Outcome{0, "", ""}));
  writeDot("head -c 1000000 /dev/zero; cat >/dev/null");
  EXPECT_EQ(shell(std::string(kDot) + "graph --svg many.scene | wc -c").out, "1000000\n");
}

TEST_F(GraphCommand, DotThatFailsLeavesNothing) {
  writeDot("echo half; echo 'something is wrong' >&2; exit 3");
  EXPECT_EQ(shell(std::string(kDot) + "graph --svg a.scene"),
            (Outcome{2, "", "something is wrong\nkelp: dot failed with exit code 3\n"}));
  EXPECT_EQ(shell(std::string(kDot) + "graph --svg -o out a.scene").exitCode, 2);
  writeDot("kill -9 $$");
  EXPECT_EQ(shell(std::string(kDot) + "graph --png a.scene"),
            (Outcome{2, "", "kelp: dot was ended by signal 9\n"}));
  EXPECT_EQ(files(), "a.scene\ndot\n");
}

TEST_F(GraphCommand, MissingDotIsToldWithWhatToDo) {
  EXPECT_EQ(shell("PATH=/nowhere $KELP graph --svg a.scene"),
            (Outcome{2, "",
                     "kelp: There is no program dot to draw with: install graphviz, or leave out "
                     "--svg and have the graph drawn elsewhere\n"}));
  write("dot", "no program");
  EXPECT_EQ(shell("PATH=\"$PWD\" $KELP graph --png a.scene"),
            (Outcome{2, "", "kelp: Cannot run dot: Permission denied\n"}));
}

// What ignores broken pipes has children that do.
TEST_F(GraphCommand, BrokenPipeEndsDotAsItDoesElsewhere) {
  writeDot("sh -c 'kill -PIPE $$'; echo \"$?\"");
  EXPECT_EQ(shell(std::string(kDot) + "graph --svg a.scene").out, "141\n");
}

TEST_F(GraphCommand, WhatIsWrongIsReported) {
  write("bad.scene", "A a {} B b { x = ; }");
  EXPECT_EQ(kelp("graph bad.scene").exitCode, 1);
  EXPECT_NE(kelp("graph bad.scene").err, "");
  EXPECT_EQ(kelp("graph -o out bad.scene").exitCode, 1);
  EXPECT_EQ(kelp("graph none").exitCode, 2);
  EXPECT_EQ(kelp("graph a.scene a.scene"),
            (Outcome{2, "", "kelp: graph takes one FILE only; kelp --help tells more\n"}));
  EXPECT_EQ(kelp("graph --svg --png a.scene"),
            (Outcome{2, "", "kelp: --svg excludes --png; kelp --help tells more\n"}));
  EXPECT_EQ(kelp("graph a.scene >/dev/full"),
            (Outcome{2, "", "kelp: Cannot write to standard output: No space left on device\n"}));
  EXPECT_EQ(files(), "a.scene\nbad.scene\n");
}
