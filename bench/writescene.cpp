// Writes a scene of the benchmarks to standard output, for measuring the program kelp:
//   kelp_write_scene mesh|objects|expressions|hex MEGABYTES
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "bench/scenegenerator.h"

int main(int argc, char** argv) {
  using KelpBench::Content;
  constexpr const char* kNames[] = {"mesh", "objects", "expressions", "hex"};
  constexpr Content kContents[] = {Content::kMesh, Content::kObjects, Content::kExpressions,
                                   Content::kHex};
  for (int i = 0; i < 4 && argc == 3; ++i) {
    if (std::strcmp(argv[1], kNames[i]) != 0) continue;
    const auto bytes = static_cast<size_t>(std::atof(argv[2]) * 1e6);
    const std::string text = generate(kContents[i], KelpBench::Syntax::kScene, bytes).text;
    return std::fwrite(text.data(), 1, text.size(), stdout) == text.size() ? 0 : 2;
  }
  std::fputs("usage: kelp_write_scene mesh|objects|expressions|hex MEGABYTES\n", stderr);
  return 2;
}
