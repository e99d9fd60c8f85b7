// Models that become scenes while memory runs out.
#ifdef KELP_HAS_IMPORT

#include "cli/import/modelscene.h"

#include <unistd.h>

#include <fstream>
#include <new>

#include "cli/import/assimp.h"
#include "tests/support/balance.h"

namespace {

constexpr const char* kModel =
    "mtllib none.mtl\no a box\nv 0 0 0\nv 1 0 0\nv 1 -1 0\nv 0 1 0\nvt 0 0\nvn 0 0 1\n"
    "f 1/1/1 2/1/1 3/1/1 4/1/1\nl 1 2\n";

std::string writtenModel() {
  std::string path = testing::TempDir() + "kelp_modelscene_test.obj";
  std::ofstream(path) << kModel;
  return path;
}

}  // namespace

TEST(ModelScene, EverythingIsReleasedWhereverMemoryRunsOut) {
  const std::string path = writtenModel();
  const KelpCli::Model model(path);
  ::unlink(path.c_str());
  const KelpCli::ModelOptions options;
  int objects = 0;
  const auto convert = [&] {
    objects = 0;
    KelpCli::ModelScene scene(model.scene(), options, [&](const Kelp::ObjectAST&) { ++objects; });
    scene.write();
  };
  convert();  // pools have their blocks then
  EXPECT_EQ(objects, 4);
  int failures = 0;
  bool failed = true;
  for (int64_t n = 1; failed; ++n) {
    SCOPED_TRACE(n);
    KelpTest::expectBalanced([&] {
      const KelpTest::FailingAllocation failing(n);
      try {
        convert();
      } catch (const std::bad_alloc&) {
      }
      failed = failing.hasFailed();
    });
    if (failed) ++failures;
  }
  EXPECT_GT(failures, 20);
}

#endif
