#include <gtest/gtest.h>

#include "cli/commandline.h"
#include "tests/cli/program.h"

using KelpTest::Outcome;

class Usage : public KelpTest::ProgramTest {
 protected:
  Usage() { write("a.scene", "A a { }\n"); }
};

TEST_F(Usage, WhatMakesNoSenseIsToldWithCodeTwo) {
  const struct {
    const char* arguments;
    const char* message;
  } rows[] = {
      {"", "A subcommand is required"},
      {"a.scene", "A subcommand is required"},
      {"check", "FILE is required"},
      {"dump", "FILE is required"},
      {"dump a.scene a.scene", "dump takes one FILE only"},
      {"dump a.scene -- a.scene", "dump takes one FILE only"},
      {"check --", "FILE is required"},
      {"format", "FILE is required"},
      {"format -o b a.scene a.scene", "format takes one FILE only with --output"},
      {"format -w a.scene -", "standard input cannot be rewritten"},
      {"format -w --check a.scene", "--check excludes --write"},
      {"format -w -o b a.scene", "--write excludes --output"},
      {"format --check -o b a.scene", "--check excludes --output"},
      {"format --affix b a.scene", "The following argument was not expected: --affix"},
      {"check --none a.scene", "The following argument was not expected: --none"},
      {"check --format json a.scene", "The following argument was not expected: --format"},
      {"dump --stats a.scene", "The following argument was not expected: --stats"},
      {"dump --format yaml a.scene", "--format: \"yaml\" is none of tree|json"},
      {"dump --format 1 a.scene", "--format: \"1\" is none of tree|json"},
      {"check --color green a.scene", "--color: \"green\" is none of auto|always|never"},
      {"check --affix a --suffix b a.scene", "--affix excludes --suffix"},
      {"dump --suffix b --affix a a.scene", "--affix excludes --suffix"},
      {"check --frames 1 a.scene", "--frames: \"1\" is not of the form FIRST:LAST"},
      {"check --frames 1:x a.scene", "--frames: \"x\" is not a frame number"},
      {"check --frames :2 a.scene", "--frames: \"\" is not a frame number"},
      {"check --frames 1:2:3 a.scene", "--frames: \"2:3\" is not a frame number"},
      {"check --frames 1:inf a.scene", "--frames: \"inf\" is not a frame number"},
      {"check --frames 1:nan a.scene", "--frames: \"nan\" is not a frame number"},
      {"check --frames 2:1 a.scene", "--frames: the first frame lies behind the last"},
      {"check -0 a.scene", "--null requires --files-from"},
      {"check a.scene --files-from", "--files-from: 1 required LIST missing"},
      {"check --stream --no-stream a.scene", "--stream excludes --no-stream"},
      {"dump --files-from list", "The following argument was not expected: --files-from"},
      {"check a.scene -I", "--include: 1 required DIR missing"},
  };
  for (const auto& row : rows) {
    const std::string expected = std::string("kelp: ") + row.message + "; kelp --help tells more\n";
    EXPECT_EQ(kelp(row.arguments), (Outcome{2, "", expected})) << row.arguments;
  }
}

TEST_F(Usage, VersionIsPrinted) { EXPECT_EQ(kelp("--version"), (Outcome{0, "kelp 0.1.0\n", ""})); }

TEST_F(Usage, HelpNamesEveryCommandAndOption) {
  const struct {
    const char* arguments;
    std::vector<std::string> words;
  } rows[] = {
      {"--help", {"Usage: kelp", "check", "dump", "--version"}},
      {"check --help",
       {"Usage: kelp check", "FILE", "--stats", "--json", "-I", "--affix", "--suffix", "--frames",
        "--color", "Exit codes", "--files-from LIST", "-0,--null", "--stream", "--no-stream"}},
      {"dump --help",
       {"Usage: kelp dump", "FILE", "--format tree|json", "-o,--output", "-I", "--affix",
        "--suffix", "--frames", "--color", "Exit codes"}},
      {"format --help",
       {"Usage: kelp format", "FILE", "--check", "-w,--write", "-o,--output", "-I", "--color",
        "Exit codes"}},
  };
  for (const auto& row : rows) {
    const Outcome outcome = kelp(row.arguments);
    EXPECT_EQ(outcome.exitCode, 0);
    EXPECT_EQ(outcome.err, "");
    for (const std::string& word : row.words) {
      EXPECT_NE(outcome.out.find(word), std::string::npos) << word << " in\n" << outcome.out;
    }
  }
}

TEST_F(Usage, HelpThatCannotBeWrittenIsAFailure) {
  EXPECT_EQ(shell("$KELP --help >/dev/full"),
            (Outcome{2, "", "kelp: Cannot write to standard output: No space left on device\n"}));
}

TEST(Options, CommandLineFillsTheSceneOptions) {
  const char* arguments[] = {"kelp", "check",    "-I", "one",      "a",   "--include", "two",
                             "b",    "--suffix", "s",  "--frames", "1:2", "--json"};
  const KelpCli::CommandLine line =
      KelpCli::parseCommandLine(static_cast<int>(std::size(arguments)), arguments);
  EXPECT_STREQ(line.command->name, "check");
  const KelpCli::Options& options = line.command->options;
  EXPECT_EQ(options.files, (std::vector<std::string>{"a", "b"}));
  EXPECT_EQ(options.scene.includePaths, (std::vector<std::string>{"one", "two"}));
  EXPECT_EQ(options.scene.nameAffix, "s");
  EXPECT_TRUE(options.scene.affixIsSuffix);
  EXPECT_EQ(options.scene.firstFrame, 1.0);
  EXPECT_EQ(options.scene.lastFrame, 2.0);
  EXPECT_TRUE(options.json);
}
