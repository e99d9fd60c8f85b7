// How an error tells of the files that led to it.
#include <gtest/gtest.h>

#include <sstream>
#include <string>

#include "kelp/scene.h"
#include "kelp/stream.h"
#include "tests/support/temporaryfiles.h"

using Kelp::Scene;
using Kelp::SceneError;

namespace {

class IncludeChain : public testing::Test {
 protected:
  // "a:1 b:2": file names without their folder, innermost first.
  std::string chainOf(const SceneError& error) const {
    std::string chain;
    for (const auto& [file, line] : error.includedFrom) {
      if (!chain.empty()) chain += ' ';
      chain += file.substr(file.rfind('/') + 1) + ':' + std::to_string(line);
    }
    return chain;
  }

  // Read whole and object by object.
  std::string chain(const std::string& scene) const {
    const std::string path = files.path(scene);
    const Scene whole = Scene::fromFile(path);
    const auto drop = [](const Kelp::ObjectAST&) { return Kelp::ObjectFate::kDrop; };
    const SceneError streamed = Kelp::forEachObject(Kelp::SceneSource::file(path), drop).error;
    EXPECT_EQ(chainOf(whole.error()), chainOf(streamed)) << scene;
    EXPECT_EQ(whole.error().position(), streamed.position()) << scene;
    return chainOf(whole.error());
  }

  KelpTest::TemporaryFiles files;
};

}  // namespace

TEST_F(IncludeChain, IsEmptyInTheScenesOwnFile) {
  files.write("good", "A a { }\n");
  files.write("first", "A {\n");
  files.write("behind", "#include \"good\"\nA {\n");
  EXPECT_EQ(chain("first"), "");
  EXPECT_EQ(chain("behind"), "");
  EXPECT_EQ(chain("none"), "");
  EXPECT_EQ(chain("good"), "");
}

TEST_F(IncludeChain, GoesFromTheInnermostFileOutwards) {
  files.write("bad", "A a { x = 1; }\nA b { x = ; }\n");
  files.write("middle", "\nA c { }\n#include \"bad\"\n");
  files.write("scene", "A d { }\n#include \"middle\"\nA e { }\n");
  EXPECT_EQ(chain("bad"), "");
  EXPECT_EQ(chain("middle"), "middle:3");
  EXPECT_EQ(chain("scene"), "middle:3 scene:2");
}

TEST_F(IncludeChain, NamesTheInclusionThatTheTokenCameFrom) {
  files.write("part", "x = 1;\n");
  files.write("word", "x\n");
  files.write("twice", "A a {\n#include \"part\"\n#include \"part\"\n#include \"word\"\n; }\n");
  // The token behind a name is what is not understood: it stands in the scene's own file.
  EXPECT_EQ(chain("twice"), "");
  files.write("doubled", "A a {\n#include \"word\"\n#include \"word\"\n}\n");
  EXPECT_EQ(chain("doubled"), "doubled:3");
  files.write("half", "A a { x = 1\n");
  files.write("halves", "#include \"half\"\n#include \"half\"\n");
  EXPECT_EQ(chain("halves"), "halves:2");
}

TEST_F(IncludeChain, OfAFileThatCannotBeFoundEndsAtWhoIncludesIt) {
  files.write("asks", "#include \"nothing\"\n");
  files.write("scene", "\n#include \"asks\"\n");
  EXPECT_EQ(chain("asks"), "");
  EXPECT_EQ(chain("scene"), "scene:2");
}

TEST_F(IncludeChain, IsPrintedBehindTheExcerpt) {
  files.write("bad", "A ;\n");
  files.write("scene", "\n#include \"bad\"\n");
  const Scene scene = Scene::fromFile(files.path("scene"));
  std::ostringstream out;
  out << scene.error();
  const std::string text = out.str();
  EXPECT_TRUE(text.ends_with("\nincluded from " + files.path("scene") + ":2")) << text;
}

TEST_F(IncludeChain, SixtyFourFilesAreNamed) {
  for (int i = 0; i < 63; ++i) {
    files.write("f" + std::to_string(i), "#include \"f" + std::to_string(i + 1) + "\"\n");
  }
  files.write("f63", "A ;\n");
  const std::string all = chain("f0");
  EXPECT_TRUE(all.starts_with("f62:1 f61:1 ")) << all;
  EXPECT_TRUE(all.ends_with(" f1:1 f0:1")) << all;
}

TEST(Suggestion, NamesWhatWasProbablyMeant) {
  EXPECT_EQ(Scene::fromText("A { x = Vectr(1, 2, 3); }").error().suggestion(), "Vector");
  EXPECT_EQ(Scene::fromText("A { x = nothing(1); }").error().suggestion(), "");
  EXPECT_EQ(Scene::fromText("A { x = 1 }").error().suggestion(), "");
  EXPECT_EQ(Scene::fromText("A { x = 1; }").error().suggestion(), "");
}
