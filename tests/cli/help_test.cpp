#include <sstream>

#include "cli/command.h"
#include "tests/cli/program.h"

using KelpTest::Outcome;

namespace {

class Help : public KelpTest::ProgramTest {
 protected:
  // The words that bash offers for the last one of a command line.
  std::string completed(const std::string& words) const {
    return shell(
               "\"$KELP\" completion bash >kelp_words; touch kitchen.scene; bash -c '. "
               "./kelp_words; "
               "COMP_WORDS=(kelp " +
               words + "); COMP_CWORD=$((${#COMP_WORDS[@]} - 1)); _kelp; echo ${COMPREPLY[*]}'")
        .out;
  }
};

// All names of options, as in the help of a command.
std::vector<std::string> optionsOf(const std::string& help) {
  std::vector<std::string> options;
  std::istringstream lines(help);
  for (std::string line; std::getline(lines, line);) {
    const size_t start = line.find_first_not_of(' ');
    if (start != 2 || line[start] != '-') continue;
    std::istringstream names(line.substr(start, line.find(' ', start) - start));
    for (std::string name; std::getline(names, name, ',');) options.push_back(name);
  }
  return options;
}

std::string manOf(const std::string& option) {
  std::string text;
  for (const char c : option) text += c == '-' ? std::string("\\-") : std::string(1, c);
  return "\\fB" + text + "\\fR";
}

}  // namespace

TEST_F(Help, OfACommandIsWhatTheCommandSaysItself) {
  for (const auto& command : KelpCli::allCommands()) {
    const std::string name = command->name;
    const Outcome help = kelp("help " + name);
    EXPECT_EQ(help, kelp(name + " --help"));
    EXPECT_NE(help.out.find(std::string(command->description)), std::string::npos) << name;
  }
  EXPECT_EQ(kelp("help"), kelp("--help"));
}

TEST_F(Help, OfNoCommandIsAnError) {
  EXPECT_EQ(kelp("help nothing"),
            (Outcome{2, "", "kelp: there is no command \"nothing\"; kelp --help tells more\n"}));
  EXPECT_EQ(kelp("help --man check").exitCode, 2);
  EXPECT_EQ(kelp("help check dump").exitCode, 2);
}

TEST_F(Help, ManualPageAndCompletionsKnowEveryOptionOfEveryCommand) {
  const std::string man = kelp("help --man").out;
  const std::string bash = kelp("completion bash").out;
  const std::string zsh = kelp("completion zsh").out;
  const std::string fish = kelp("completion fish").out;
  size_t options = 0;
  for (const auto& command : KelpCli::allCommands()) {
    const std::string name = command->name;
    EXPECT_NE(man.find(".SS kelp " + name + '\n'), std::string::npos) << name;
    EXPECT_NE(bash.find("\n    " + name + ")\n"), std::string::npos) << name;
    EXPECT_NE(zsh.find("\n    " + name + ")\n"), std::string::npos) << name;
    EXPECT_NE(fish.find("-a " + name + " -d"), std::string::npos) << name;
    for (const std::string& option : optionsOf(kelp("help " + name).out)) {
      ++options;
      EXPECT_NE(man.find(manOf(option)), std::string::npos) << option;
      EXPECT_NE(bash.find(option), std::string::npos) << option;
      EXPECT_NE(zsh.find("*" + option + "["), std::string::npos) << option;
      const bool isLong = option.starts_with("--");
      const std::string inFish = isLong ? " -l " + option.substr(2) : " -s " + option.substr(1);
      EXPECT_NE(fish.find(inFish + ' '), std::string::npos) << option;
    }
  }
  EXPECT_GT(options, 80U);
}

TEST_F(Help, BashCompletesCommandsOptionsWordsAndFiles) {
  EXPECT_EQ(completed("ch"), "check\n");
  EXPECT_EQ(completed("help du"), "dump\n");
  EXPECT_EQ(completed("check --conf"), "--confine\n");
  EXPECT_EQ(completed("check --color a"), "auto always\n");
  EXPECT_EQ(completed("dump --format js"), "json\n");
  EXPECT_EQ(completed("dump kit"), "kitchen.scene\n");
  EXPECT_EQ(completed("check --stats kit"), "kitchen.scene\n");
  EXPECT_EQ(completed("nothing --x"), "\n");
}

TEST_F(Help, CompletionIsForThreeShells) {
  EXPECT_EQ(
      kelp("completion csh"),
      (Outcome{2, "", "kelp: \"csh\" is none of bash, zsh and fish; kelp --help tells more\n"}));
  EXPECT_EQ(kelp("completion").exitCode, 2);
}

TEST_F(Help, ManualPageHasNoLineThatRoffMistakes) {
  std::istringstream lines(kelp("help --man").out);
  for (std::string line; std::getline(lines, line);) {
    if (line.empty() || (line[0] != '.' && line[0] != '\'')) continue;
    const std::string macro = line.substr(0, line.find(' '));
    EXPECT_NE(std::string(".TH .SH .SS .TP .PP .B .I .RI .nf .fi").find(macro), std::string::npos)
        << line;
  }
}
