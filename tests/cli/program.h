// The built program in a directory of its own.
#pragma once

#include <gtest/gtest.h>

#include <filesystem>
#include <string>

namespace KelpTest {

struct Outcome {
  int exitCode;
  std::string out;
  std::string err;
};

/// Gives every test an empty directory to write scenes to and to run the program in.
class ProgramTest : public testing::Test {
 protected:
  ProgramTest();
  ~ProgramTest() override;

  void write(const std::string& name, const std::string& text) const;
  std::string contents(const std::string& name) const;

  /// Runs a command of the shell in the directory; $KELP is the program.
  Outcome shell(const std::string& command) const;

  /// Runs the program with these arguments, written as for the shell.
  Outcome kelp(const std::string& arguments) const { return shell("\"$KELP\" " + arguments); }

  /// Names of the files in the directory, sorted, one a line.
  std::string files() const;

  std::filesystem::path directory;
};

bool operator==(const Outcome& left, const Outcome& right);
void PrintTo(const Outcome& outcome, std::ostream* out);

}  // namespace KelpTest
