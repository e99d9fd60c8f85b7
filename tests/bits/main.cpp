// Compares the bits of this build with those of the files: bits LITERALS SEEDS
#include <cstdio>
#include <exception>

#include "tests/support/goldenbits.h"

using namespace KelpTest;

namespace {

int countDifferingLiterals(const char* path, size_t* number) {
  const std::vector<GoldenLiteral> literals = goldenLiterals(path);
  const std::vector<LiteralBits> parsed = parsedLiterals(literals);
  int differing = 0;
  for (size_t i = 0; i < literals.size(); ++i) {
    if (parsed[i] == literals[i].bits) continue;
    if (++differing == 1) std::printf("first differing literal: %s\n", literals[i].text.c_str());
  }
  *number = literals.size();
  return differing;
}

bool compare(const char* literalFile, const char* seedFile) {
  size_t literals = 0;
  const int differing = countDifferingLiterals(literalFile, &literals);
  const GoldenSeeds golden = goldenSeeds(seedFile);
  const bool sameSeeds = drawnSeeds(golden) == golden;
  std::printf("%d of %zu literals differ; the %lld seeds are %s\n", differing, literals,
              static_cast<long long>(golden.draws.back().number),
              sameSeeds ? "equal" : "different");
  return differing == 0 && sameSeeds;
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 3) return 2;
  try {
    return compare(argv[1], argv[2]) ? 0 : 1;
  } catch (const std::exception& error) {
    std::fprintf(stderr, "bits: %s\n", error.what());
    return 2;
  }
}
