// Scenes read in a process whose pools are dirty give what they give in a fresh one.
#include <gtest/gtest.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>
#include <fstream>

#include "tests/support/corpus.h"
#include "tests/support/dirt.h"
#include "tests/support/figures.h"
#include "tests/support/hiddenfields.h"
#include "tests/support/parsing.h"
#include "tests/support/temporaryfiles.h"

using namespace Kelp;
using namespace KelpTest;

namespace {

// More than any of these scenes takes of one kind.
constexpr int kElements = 200;

constexpr char kFreshTreesVariable[] = "KELP_FRESH_TREES";

// All there is to see of a scene, recorded references included. The seeds of random calls follow
// the generator, which every process starts anew.
std::string described(const std::string& name) {
  BuiltinFunctionAST::rndGen.reset();
  CorpusParser source(name);
  source.parser.collectReferenceNames = 1;
  const auto_ast<ProgramAST> program(source.parser.parseProgram());
  if (program.get() == nullptr) return "error";
  std::string text = objectLines(*program.get()) + hiddenFields(*program.get());
  for (int i = 0; i < source.parser.referenceNames.count; ++i) {
    text += std::string(source.parser.referenceNames.data[i]->chars()) + ' ';
  }
  return text;
}

std::string contents(const std::filesystem::path& path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

// Pools hand out what was returned first, else elements in the order of memory: so nothing of this
// class has been returned. (Static objects of other tests hold nodes already.)
template <class Node>
bool handsOutFreshElements() {
  PoolElement<Node>* one = Node::pool.newElement();
  PoolElement<Node>* other = Node::pool.newElement();
  Node::pool.freeElement(other);
  Node::pool.freeElement(one);
  return other == one + 1;
}

template <class... Nodes>
bool handOutFreshElements() {
  return (handsOutFreshElements<Nodes>() && ...);
}

// Describes each scene in a child of its own, into a file of its name: no child has
// read another scene before.
void writeFreshTrees(const std::filesystem::path& directory) {
  ASSERT_TRUE(
      (handOutFreshElements<NumberExpressionAST, StringExpressionAST, VectorExpressionAST,
                            AColorExpressionAST, MatrixExpressionAST, TransformExpressionAST,
                            TransformHexExpressionAST, ObjectReferenceAST, NegatedExpressionAST,
                            InterpolateExpressionAST, KeyList, ObjectAST, PropertyAST>()));
  for (const std::string& name : corpusNames("y_")) {
    const pid_t child = fork();
    if (child == 0) {
      std::ofstream(directory / name, std::ios::binary) << described(name);
      _exit(0);
    }
    int status = -1;
    ASSERT_EQ(waitpid(child, &status, 0), child);
    EXPECT_EQ(status, 0) << name;
  }
}

// Runs this very test in a new process, where it only writes the trees.
int runFreshProcess(const std::filesystem::path& directory) {
  std::string program = "/proc/self/exe";
  std::string filter = "--gtest_filter=DirtyPools.GiveTheTreesOfAFreshProcess";
  char* arguments[] = {program.data(), filter.data(), nullptr};
  setenv(kFreshTreesVariable, directory.c_str(), 1);
  pid_t child = 0;
  const int failure = posix_spawn(&child, program.c_str(), nullptr, nullptr, arguments, environ);
  unsetenv(kFreshTreesVariable);
  int status = -1;
  if (failure == 0) waitpid(child, &status, 0);
  return status;
}

}  // namespace

TEST(DirtyPools, GiveTheTreesOfAFreshProcess) {
  if (const char* directory = std::getenv(kFreshTreesVariable)) return writeFreshTrees(directory);
  const TemporaryFiles files;
  ASSERT_EQ(runFreshProcess(files.directory), 0);
  const int live = livePoolElements();
  long long equal = 0;
  long long bytes = 0;
  const std::vector<std::string> names = corpusNames("y_");
  for (const std::string& name : names) {
    leaveDirtInPools(kElements);
    const std::string fresh = contents(files.path(name));
    const std::string reused = described(name);
    EXPECT_EQ(reused, fresh) << name;
    EXPECT_EQ(livePoolElements(), live) << name;
    equal += !fresh.empty() && reused == fresh ? 1 : 0;
    bytes += static_cast<long long>(fresh.size());
  }
  EXPECT_EQ(equal, static_cast<long long>(names.size()));
  reportFigure("dirty pools",
               grouped(equal) + " of " + grouped(static_cast<long long>(names.size())) +
                   " scenes as in a fresh process each, " + grouped(bytes) + " bytes compared");
}
