// What is left of an output file when a signal ends the program in the middle of writing it.
#include <gtest/gtest.h>

#include <csignal>
#include <cstdlib>

#include "cli/output.h"
#include "tests/cli/program.h"

using namespace KelpTest;

namespace {

class EndingSignals : public ProgramTest {
 protected:
  EndingSignals() { write("out", "old"); }

  // As a program starts in the foreground, wherever the tests were started.
  static void expectDefault(int signal) { std::signal(signal, SIG_DFL); }

  // Half of an output is in its temporary file when the signal comes.
  void writeUntil(int signal) const {
    KelpCli::Output output((directory / "in" / "out").string());
    output.stream() << "first half, ";
    output.flush();
    if (::raise(signal) != 0) std::_Exit(1);
    output.stream() << "second half";
    output.finish();
    std::_Exit(0);
  }
};

}  // namespace

TEST_F(EndingSignals, LeaveTheOldFileAndNoTemporaryOne) {
  for (const int signal : {SIGHUP, SIGINT, SIGQUIT, SIGTERM, SIGXCPU, SIGXFSZ}) {
    SCOPED_TRACE(signal);
    const auto end = [&] {
      expectDefault(signal);
      writeUntil(signal);
    };
    EXPECT_EXIT(end(), testing::KilledBySignal(signal), "");
    EXPECT_EQ(contents("out"), "old");
    EXPECT_EQ(files(), "out\n");
  }
}

TEST_F(EndingSignals, StayIgnoredWhenTheyWere) {
  const auto hungUp = [&] {
    std::signal(SIGHUP, SIG_IGN);
    writeUntil(SIGHUP);
  };
  EXPECT_EXIT(hungUp(), testing::ExitedWithCode(0), "");
  EXPECT_EQ(contents("out"), "first half, second half");
  EXPECT_EQ(files(), "out\n");
}

TEST_F(EndingSignals, AfterACompleteFileLeaveIt) {
  const auto interruptedLater = [&] {
    expectDefault(SIGINT);
    KelpCli::Output output((directory / "in" / "out").string());
    output.stream() << "whole";
    output.finish();
    ::raise(SIGINT);
  };
  EXPECT_EXIT(interruptedLater(), testing::KilledBySignal(SIGINT), "");
  EXPECT_EQ(contents("out"), "whole");
  EXPECT_EQ(files(), "out\n");
}

// The limit is one block: the program is ended while it writes the listing.
TEST_F(EndingSignals, OfAFileSizeLimitLeaveNoTrace) {
  const Outcome outcome = shell(
      "{ echo 'A {'; for i in $(seq 9999); do echo 'x = 1;'; done; echo '}'; } >long.scene; "
      "(ulimit -f 1; exec $KELP dump long.scene -o out); echo $?");
  EXPECT_EQ(outcome.out, std::to_string(128 + SIGXFSZ) + "\n");
  EXPECT_EQ(contents("out"), "old");
  EXPECT_EQ(files(), "long.scene\nout\n");
}
