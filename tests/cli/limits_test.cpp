// Limits on the command line.
#include "tests/cli/program.h"

using KelpTest::Outcome;

namespace {

class LimitsOnTheCommandLine : public KelpTest::ProgramTest {
 protected:
  LimitsOnTheCommandLine() {
    write("two.scene", "A a { }\nB b { }\n");  // 16 bytes
    std::filesystem::create_directories(directory / "in" / "sub");
    write("sub/out.scene", "#include \"../two.scene\"\n");
    write("sub/twice.scene", "#include \"../two.scene\"\n#include \"../two.scene\"\n");
  }
};

}  // namespace

TEST_F(LimitsOnTheCommandLine, ScenesWithinThemAreGood) {
  for (const char* limit : {"--max-bytes 16", "--max-bytes 1kB", "--max-bytes 1GiB",
                            "--max-objects 2", "--max-includes 1", "--confine"}) {
    EXPECT_EQ(kelp(std::string("check two.scene ") + limit), (Outcome{0, "", ""})) << limit;
  }
  EXPECT_EQ(kelp("check sub/twice.scene --max-includes 2"), (Outcome{0, "", ""}));
  EXPECT_EQ(kelp("check sub/out.scene --confine -I ."), (Outcome{0, "", ""}));
}

TEST_F(LimitsOnTheCommandLine, LargerScenesAreRefused) {
  EXPECT_EQ(kelp("check two.scene --max-bytes 15"),
            (Outcome{2, "", "two.scene: error: The scene has more than 15 bytes\n"}));
  EXPECT_EQ(kelp("check --max-objects 1 two.scene"),
            (Outcome{1, "",
                     "two.scene:2:1: error: The scene has more than 1 objects\n"
                     "B b { }\n"
                     "^\n"}));
  EXPECT_EQ(kelp("dump --max-includes 1 sub/twice.scene"),
            (Outcome{1, "",
                     "sub/twice.scene:2:1: error: The scene includes more than 1 files\n"
                     "#include \"../two.scene\"\n"
                     "^\n"}));
  EXPECT_EQ(kelp("check sub/out.scene --confine"),
            (Outcome{1, "",
                     "sub/out.scene:1:1: error: File \"sub/../two.scene\" lies outside the scene's "
                     "folder\n"
                     "#include \"../two.scene\"\n"
                     "^\n"}));
}

TEST_F(LimitsOnTheCommandLine, EndlessInputIsGivenUp) {
  const Outcome tooLarge{2, "", "<stdin>: error: The scene has more than 1000000 bytes\n"};
  EXPECT_EQ(shell("yes | \"$KELP\" check - --max-bytes 1MB"), tooLarge);
  EXPECT_EQ(kelp("check /dev/zero --max-bytes 1MB"),
            (Outcome{2, "", "/dev/zero: error: The scene has more than 1000000 bytes\n"}));
}

TEST_F(LimitsOnTheCommandLine, ValuesThatMakeNoSenseAreRefused) {
  for (const char* usage : {"--max-bytes 0", "--max-bytes -1", "--max-bytes 5x", "--max-objects 0",
                            "--max-objects x", "--max-includes 0"}) {
    EXPECT_EQ(kelp(std::string("check two.scene ") + usage).exitCode, 2) << usage;
  }
}
