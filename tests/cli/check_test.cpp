#include <gtest/gtest.h>

#include <sstream>
#include <vector>

#include "tests/cli/program.h"
// Behind the writer's header, which sets the width of its sizes.
#include <rapidjson/document.h>

using KelpTest::Outcome;

namespace {

constexpr const char* kGoodScene = "A a { x = 1; }\n";
constexpr const char* kBadScene = "A a {\n  x = (1 + 2;\n}\n";
constexpr const char* kBadReport =
    "bad.scene:2:13: error: Expected \")\"\n"
    "  x = (1 + 2;\n"
    "            ^\n";

std::vector<rapidjson::Document> jsonLines(const std::string& text) {
  std::vector<rapidjson::Document> documents;
  std::istringstream lines(text);
  for (std::string line; std::getline(lines, line);) {
    documents.emplace_back().Parse<rapidjson::kParseFullPrecisionFlag>(line.data(), line.size());
    EXPECT_FALSE(documents.back().HasParseError()) << line;
  }
  return documents;
}

}  // namespace

class Check : public KelpTest::ProgramTest {
 protected:
  Check() {
    write("good.scene", kGoodScene);
    write("bad.scene", kBadScene);
  }
};

TEST_F(Check, GoodSceneIsPassedInSilence) {
  EXPECT_EQ(kelp("check good.scene"), (Outcome{0, "", ""}));
}

TEST_F(Check, BadSceneIsReportedWithItsLineAndACaret) {
  EXPECT_EQ(kelp("check bad.scene"), (Outcome{1, "", kBadReport}));
}

TEST_F(Check, AllScenesAreReadAndTheWorstOutcomeWins) {
  const std::string missing = "none: error: Cannot read \"none\": No such file or directory\n";
  EXPECT_EQ(kelp("check bad.scene good.scene"), (Outcome{1, "", kBadReport}));
  EXPECT_EQ(kelp("check bad.scene good.scene bad.scene"),
            (Outcome{1, "", std::string(kBadReport) + kBadReport}));
  EXPECT_EQ(kelp("check none bad.scene"), (Outcome{2, "", missing + kBadReport}));
  EXPECT_EQ(kelp("check bad.scene none good.scene"), (Outcome{2, "", kBadReport + missing}));
}

TEST_F(Check, DirectoryIsUnreadable) {
  EXPECT_EQ(kelp("check ."), (Outcome{2, "", ".: error: Cannot read \".\": Is a directory\n"}));
}

TEST_F(Check, MessageThatTheLanguageLeavesEmptyIsNamed) {
  write("list.scene", "A { x = ListVector(Vector(1,2,3)}\n");
  EXPECT_EQ(kelp("check list.scene"), (Outcome{1, "",
                                               "list.scene:1:33: error: syntax error\n"
                                               "A { x = ListVector(Vector(1,2,3)}\n"
                                               "                                ^\n"}));
}

TEST_F(Check, FilesNamedLikeCommandsOrOptionsAreFiles) {
  write("dump", kGoodScene);
  write("-x", kGoodScene);
  EXPECT_EQ(kelp("check dump -- -x"), (Outcome{0, "", ""}));
  EXPECT_EQ(
      kelp("check -- -x --stats"),
      (Outcome{2, "", "--stats: error: Cannot read \"--stats\": No such file or directory\n"}));
}

TEST_F(Check, ControlCharactersOfAFileNameAreNotPrinted) {
  write("\x1b[31m", kBadScene);
  EXPECT_EQ(kelp("check *31m").err.substr(0, 20), "?[31m:2:13: error: E");
}

// ---- standard input ----------------------------------------------------------------------------

TEST_F(Check, StandardInputIsReadFromAPipe) {
  EXPECT_EQ(shell("cat good.scene | $KELP check -"), (Outcome{0, "", ""}));
  const std::string report = kBadReport;
  EXPECT_EQ(shell("cat bad.scene | $KELP check good.scene -"),
            (Outcome{1, "", "<stdin>" + report.substr(9)}));
}

TEST_F(Check, LongStandardInputIsReadWhole) {
  EXPECT_EQ(shell("{ cat good.scene; yes '// a comment of some length' | head -c 1000000; echo; "
                  "echo 'B {'; } | $KELP check -")
                .exitCode,
            1);
  EXPECT_EQ(shell("{ cat good.scene; yes '// a comment of some length' | head -c 1000000; echo; "
                  "echo 'B {}'; } | $KELP check -"),
            (Outcome{0, "", ""}));
}

TEST_F(Check, IncludesOfStandardInputLieInTheCurrentDirectory) {
  EXPECT_EQ(shell("echo '#include \"good.scene\"' | $KELP check -"), (Outcome{0, "", ""}));
}

TEST_F(Check, ClosedStandardInputIsUnreadable) {
  EXPECT_EQ(shell("$KELP check - <&-"),
            (Outcome{2, "", "<stdin>: error: Cannot read standard input: Bad file descriptor\n"}));
}

// ---- colours -----------------------------------------------------------------------------------

TEST_F(Check, ColoursMarkErrorAndCaretWhenAskedFor) {
  const std::string coloured =
      "bad.scene:2:13: \x1b[1;31merror:\x1b[0m Expected \")\"\n"
      "  x = (1 + 2;\n"
      "            \x1b[1;32m^\x1b[0m\n";
  EXPECT_EQ(kelp("check --color always bad.scene"), (Outcome{1, "", coloured}));
  EXPECT_EQ(shell("NO_COLOR=1 $KELP check --color=always bad.scene"), (Outcome{1, "", coloured}));
  EXPECT_EQ(kelp("check --color auto bad.scene"), (Outcome{1, "", kBadReport}));
  EXPECT_EQ(kelp("check --color never bad.scene"), (Outcome{1, "", kBadReport}));
}

TEST_F(Check, TerminalGetsColoursUnlessTheEnvironmentRefusesThem) {
  ASSERT_EQ(shell("script -qec true /dev/null </dev/null").exitCode, 0)
      << "needs the program script to run kelp on a terminal (package bsdutils)";
  const std::string onTerminal = "script -qec '$KELP check bad.scene' /dev/null </dev/null";
  EXPECT_NE(shell("unset NO_COLOR; " + onTerminal).out.find("\x1b[1;31merror:"), std::string::npos);
  EXPECT_NE(shell("NO_COLOR= " + onTerminal).out.find("\x1b[1;31merror:"), std::string::npos);
  EXPECT_EQ(shell("NO_COLOR=1 " + onTerminal).out.find('\x1b'), std::string::npos);
}

// ---- --stats and --json ------------------------------------------------------------------------

TEST_F(Check, StatsAreOneLineForEachGoodScene) {
  write("list.scene", "A { x = ListInt(1, 2, 3); y = 1 + 2; }");
  const Outcome outcome = kelp("check --stats good.scene bad.scene list.scene");
  EXPECT_EQ(outcome.exitCode, 1);
  EXPECT_EQ(outcome.err, kBadReport);
  std::istringstream lines(outcome.out);
  std::string first, second, more;
  std::getline(lines, first);
  std::getline(lines, second);
  EXPECT_FALSE(std::getline(lines, more)) << more;
  const std::string firstFigures =
      "good.scene: 15 bytes, 1 objects, 1 properties, 1 expression nodes, 0 list elements, ";
  const std::string secondFigures =
      "list.scene: 38 bytes, 1 objects, 2 properties, 4 expression nodes, 3 list elements, ";
  ASSERT_EQ(first.substr(0, firstFigures.size()), firstFigures);
  ASSERT_EQ(second.substr(0, secondFigures.size()), secondFigures);
  double seconds = 0.0, speed = 0.0;
  char end = 0;
  EXPECT_EQ(std::sscanf(first.c_str() + firstFigures.size(), "%lf seconds, %lf MB/%c", &seconds,
                        &speed, &end),
            3)
      << first;
}

TEST_F(Check, StatsCountTheBytesOfIncludedFiles) {
  write("outer.scene", "#include \"good.scene\"\n");
  EXPECT_EQ(kelp("check --stats outer.scene").out.substr(0, 37),
            "outer.scene: 37 bytes, 1 objects, 1 p");
}

TEST_F(Check, JsonSaysTheSameOnStandardOutput) {
  const Outcome outcome = kelp("check --json good.scene bad.scene none");
  EXPECT_EQ(outcome.exitCode, 2);
  EXPECT_EQ(outcome.err, "");
  const std::vector<rapidjson::Document> lines = jsonLines(outcome.out);
  ASSERT_EQ(lines.size(), 3U);

  const rapidjson::Document& good = lines[0];
  EXPECT_STREQ(good["file"].GetString(), "good.scene");
  EXPECT_TRUE(good["good"].GetBool());
  EXPECT_EQ(good["bytes"].GetInt(), 15);
  EXPECT_EQ(good["objects"].GetInt(), 1);
  EXPECT_EQ(good["properties"].GetInt(), 1);
  EXPECT_EQ(good["expressionNodes"].GetInt(), 1);
  EXPECT_EQ(good["listElements"].GetInt(), 0);
  EXPECT_GT(good["seconds"].GetDouble(), 0.0);
  EXPECT_GT(good["megabytesPerSecond"].GetDouble(), 0.0);
  EXPECT_EQ(good.MemberCount(), 9U);
}

TEST_F(Check, JsonTellsErrorsWhole) {
  EXPECT_EQ(kelp("check --json bad.scene none"),
            (Outcome{2,
                     R"({"file":"bad.scene","good":false,"error":{"kind":"invalid",)"
                     R"("message":"Expected \")\"","file":"bad.scene","line":2,"column":13,)"
                     R"("sourceLine":"  x = (1 + 2;","readerFile":"bad.scene","readerLine":3}})"
                     "\n"
                     R"({"file":"none","good":false,"error":{"kind":"unreadable",)"
                     R"("message":"Cannot read \"none\": No such file or directory"}})"
                     "\n",
                     ""}));
}

TEST_F(Check, JsonOfNamesThatAreNotUtf8HasTheirBytes) {
  write("\xFF", kGoodScene);
  const std::vector<rapidjson::Document> lines = jsonLines(kelp("check --json ?").out);
  ASSERT_EQ(lines.size(), 1U);
  EXPECT_STREQ(lines[0]["file"]["bytes"].GetString(), "ff");
}

TEST_F(Check, FailureToWriteIsTold) {
  const Outcome full{2, "", "kelp: Cannot write to standard output: No space left on device\n"};
  EXPECT_EQ(shell("$KELP check --json good.scene >/dev/full"), full);
  EXPECT_EQ(shell("$KELP check --stats good.scene >/dev/full"), full);
  EXPECT_EQ(shell("$KELP check good.scene >/dev/full"), (Outcome{0, "", ""}));
}
