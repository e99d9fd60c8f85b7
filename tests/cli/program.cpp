#include "tests/cli/program.h"

#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>
#include <fstream>
#include <set>
#include <sstream>
#include <stdexcept>

namespace KelpTest {

namespace fs = std::filesystem;

namespace {

std::string contentsOf(const fs::path& path) {
  std::ifstream file(path, std::ios::binary);
  std::ostringstream text;
  text << file.rdbuf();
  return text.str();
}

fs::path freshDirectory() {
  std::string pattern = (fs::temp_directory_path() / "kelp_test_XXXXXX").string();
  if (::mkdtemp(pattern.data()) == nullptr) throw std::runtime_error("no directory for the test");
  return pattern;
}

}  // namespace

ProgramTest::ProgramTest() : directory(freshDirectory()) { fs::create_directory(directory / "in"); }

ProgramTest::~ProgramTest() { fs::remove_all(directory); }

void ProgramTest::write(const std::string& name, const std::string& text) const {
  std::ofstream(directory / "in" / name, std::ios::binary) << text;
}

std::string ProgramTest::contents(const std::string& name) const {
  return contentsOf(directory / "in" / name);
}

Outcome ProgramTest::shell(const std::string& command) const {
  const std::string whole = "cd '" + (directory / "in").string() + "' && export KELP='" +
                            KELP_PROGRAM + "' && { " + command + "\n} >../out 2>../err";
  const int status = std::system(whole.c_str());
  return {WIFEXITED(status) ? WEXITSTATUS(status) : -1, contentsOf(directory / "out"),
          contentsOf(directory / "err")};
}

std::string ProgramTest::files() const {
  std::set<std::string> names;
  for (const auto& entry : fs::directory_iterator(directory / "in")) {
    names.insert(entry.path().filename().string());
  }
  std::string lines;
  for (const std::string& name : names) lines += name + '\n';
  return lines;
}

bool operator==(const Outcome& left, const Outcome& right) {
  return left.exitCode == right.exitCode && left.out == right.out && left.err == right.err;
}

void PrintTo(const Outcome& outcome, std::ostream* out) {
  *out << "exit code " << outcome.exitCode << "\nout: " << outcome.out << "\nerr: " << outcome.err;
}

}  // namespace KelpTest
