// What the program prints, as transcripts that a reader can judge: every file of
// tests/cli/transcripts holds commands, each behind "$ ", and what they print. They run in a folder
// with the scenes of examples/ and of tests/cli/transcripts/scenes.
//
// KELP_UPDATE_TRANSCRIPTS=1 writes what is printed now; read the difference before you commit it.
#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <vector>

#include "tests/cli/program.h"

namespace fs = std::filesystem;

namespace {

const fs::path kFolder = fs::path(KELP_SOURCE_DIR) / "tests/cli/transcripts";

std::vector<std::string> transcripts() {
  std::vector<std::string> names;
  for (const auto& entry : fs::directory_iterator(kFolder)) {
    if (entry.path().extension() == ".txt") names.push_back(entry.path().stem().string());
  }
  std::sort(names.begin(), names.end());
  return names;
}

std::string contentsOf(const fs::path& file) {
  std::ostringstream text;
  text << std::ifstream(file).rdbuf();
  return text.str();
}

class Transcripts : public KelpTest::ProgramTest, public testing::WithParamInterface<std::string> {
 protected:
  Transcripts() {
    for (const fs::path& folder : {fs::path(KELP_SOURCE_DIR) / "examples", kFolder / "scenes"}) {
      fs::copy(folder, directory / "in", fs::copy_options::recursive);
    }
  }

  // The same commands, with what they print now.
  std::string replayed(const std::string& transcript) const {
    std::string text;
    std::istringstream lines(transcript);
    for (std::string line; std::getline(lines, line);) {
      if (!line.starts_with("$ ")) continue;
      const KelpTest::Outcome outcome =
          shell("kelp() { \"$KELP\" \"$@\"; }; { " + line.substr(2) + "; } 2>&1");
      text += line + '\n' + outcome.out;
      if (outcome.exitCode != 0) text += "[exit code " + std::to_string(outcome.exitCode) + "]\n";
    }
    return text;
  }
};

}  // namespace

TEST_P(Transcripts, AreStillTrue) {
  const fs::path file = kFolder / (GetParam() + ".txt");
  const std::string transcript = contentsOf(file);
  const std::string now = replayed(transcript);
  if (std::getenv("KELP_UPDATE_TRANSCRIPTS") != nullptr) std::ofstream(file) << now;
  EXPECT_EQ(contentsOf(file), now);
  EXPECT_NE(now.find("$ kelp "), std::string::npos);
}

TEST(TranscriptFiles, ThereIsOneOfEveryCommand) {
  std::string commands;
  for (const std::string& name : transcripts()) commands += name + '\n';
  EXPECT_EQ(commands,
            "check\ncompletion\ndecode\ndiff\ndump\nencode\nfilter\nformat\ngraph\nhelp\nimport\n"
            "lint\nlist\nmerge\nshow\nstats\n");
}

INSTANTIATE_TEST_SUITE_P(Commands, Transcripts, testing::ValuesIn(transcripts()),
                         [](const auto& command) { return command.param; });
