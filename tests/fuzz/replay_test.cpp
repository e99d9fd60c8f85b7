// Every seed and every input that once broke something, tried again.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

#include "tests/fuzz/targets.h"
#include "tests/support/figures.h"

using namespace KelpTest;

namespace {

constexpr size_t kLeastSeeds = 300;

// Files that begin with a dot only keep the folder.
std::vector<std::filesystem::path> filesOf(const char* kind, const char* target) {
  std::vector<std::filesystem::path> files;
  const auto folder = std::filesystem::path(KELP_SOURCE_DIR "/tests/fuzz") / kind / target;
  for (const auto& entry : std::filesystem::directory_iterator(folder)) {
    if (entry.path().filename().string()[0] != '.') files.push_back(entry.path());
  }
  std::sort(files.begin(), files.end());
  return files;
}

// In a buffer of the exact size, so that the address sanitizer sees reading beyond its end.
void replay(const FuzzTarget& target, const std::filesystem::path& path) {
  SCOPED_TRACE(path.string());
  std::ifstream in(path, std::ios::binary);
  ASSERT_TRUE(in);
  const std::vector<char> bytes{std::istreambuf_iterator<char>(in), {}};
  const auto* data = reinterpret_cast<const uint8_t*>(bytes.data());
  ASSERT_NO_THROW(target.run(data, bytes.size()));
}

class FuzzCorpus : public testing::TestWithParam<FuzzTarget> {};

TEST_P(FuzzCorpus, EverySeedAndEveryOldCrashPasses) {
  const FuzzTarget& target = GetParam();
  const auto seeds = filesOf("corpus", target.name);
  const auto crashes = filesOf("crashes", target.name);
  ASSERT_FALSE(seeds.empty());
  for (const auto& path : seeds) replay(target, path);
  for (const auto& path : crashes) replay(target, path);
  reportFigure(std::string("fuzz replay ") + target.name,
               grouped(static_cast<long long>(seeds.size())) + " seeds, " +
                   grouped(static_cast<long long>(crashes.size())) + " old crashes");
}

INSTANTIATE_TEST_SUITE_P(AllTargets, FuzzCorpus, testing::ValuesIn(kFuzzTargets),
                         [](const auto& target) { return std::string(target.param.name); });

TEST(FuzzCorpora, HoldEnoughSeeds) {
  size_t seeds = 0;
  for (const FuzzTarget& target : kFuzzTargets) seeds += filesOf("corpus", target.name).size();
  EXPECT_GE(seeds, kLeastSeeds);
}

TEST(FuzzTargets, TakeAnyTwoBytesAndNone) {
  for (const FuzzTarget& target : kFuzzTargets) {
    EXPECT_EQ(target.run(nullptr, 0), 0);
    const uint8_t bytes[] = {1, 0x80};
    for (size_t size = 1; size <= sizeof bytes; ++size) EXPECT_EQ(target.run(bytes, size), 0);
  }
}

}  // namespace
