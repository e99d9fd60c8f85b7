// A scene gives the same objects and errors object by object as it does as a whole, wherever the
// text in memory ends.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <sstream>

#include "tests/support/corpus.h"
#include "tests/support/figures.h"
#include "tests/support/largescenes.h"
#include "tests/support/parsing.h"
#include "tests/support/richscenes.h"
#include "tests/support/smallstack.h"
#include "tests/support/streamed.h"
#include "tests/support/temporaryfiles.h"

using namespace Kelp;
using namespace KelpTest;
using namespace std::string_literals;

namespace {

constexpr size_t kFewWindows[] = {1, 7, 18, 32, 61, 118, 500, 4099};

// All sizes up to that of the text, or a few of them.
std::vector<size_t> windowsFor(size_t textSize, bool all) {
  std::vector<size_t> sizes;
  if (!all) sizes.assign(std::begin(kFewWindows), std::end(kFewWindows));
  for (size_t size = 1; all && size <= textSize + 2; ++size) sizes.push_back(size);
  return sizes;
}

SceneOptions corpusOptions(const std::string& stem) {
  SceneOptions options;
  std::istringstream affix(corpusText(stem, ".affix"));
  std::string side;
  affix >> side >> options.nameAffix;
  options.affixIsSuffix = side == "suffix";
  return options;
}

int64_t compareFile(const std::string& path, const SceneOptions& options) {
  const size_t size = std::filesystem::file_size(path);
  const ObjectsAndError expected = wholeFile(path, options);
  int64_t cases = 0;
  for (const size_t window : windowsFor(size, hasTimeForAll() && size < 4096)) {
    if (!hasTimeForAll() && (window + size) % 4 != 0) continue;
    EXPECT_EQ(streamed(SceneSource::file(path), withWindow(window, options)), expected)
        << path << " in a window of " << window;
    ++cases;
  }
  return cases;
}

void compareText(const std::string& text, const SceneOptions& options = {}) {
  const ObjectsAndError expected = wholeText(text, "scene", options);
  for (const size_t window : windowsFor(text.size(), text.size() < 600)) {
    ASSERT_EQ(streamed(SceneSource::text(text, "scene"), withWindow(window, options)), expected)
        << text.substr(0, 2000) << "\nin a window of " << window;
  }
}

}  // namespace

TEST(StreamEquality, CorpusIsReadTheSame) {
  const int live = livePoolElements();
  int64_t cases = 0;
  // On a stack that is large enough for all nesting, or its depth would depend on the callers'.
  runOnStackOf(kHugeStack, [&cases] {
    for (const char* prefix : {"y_", "n_", "i_"}) {
      for (const std::string& stem : corpusNames(prefix)) {
        cases += compareFile(corpusPath(stem, ".scene").string(), corpusOptions(stem));
      }
    }
  });
  EXPECT_EQ(livePoolElements(), live);
  reportFigure("streams, corpus", grouped(cases) + " windows equal to the whole text");
}

TEST(StreamEquality, GoldenScenesAreReadTheSame) {
  const std::filesystem::path root(KELP_SOURCE_DIR);
  int64_t cases = 0;
  for (const char* folder : {"tests/scenes", "examples"}) {
    for (const auto& entry : std::filesystem::directory_iterator(root / folder)) {
      if (entry.path().extension() == ".scene") cases += compareFile(entry.path().string(), {});
    }
  }
  reportFigure("streams, golden scenes", grouped(cases) + " windows equal to the whole text");
}

TEST(StreamEquality, EveryFormIsReadTheSameWhereverTheTextIsCut) {
  for (const std::string& scene : richScenes()) {
    compareText(scene);
    compareText(scene + scene + scene);
  }
}

TEST(StreamEquality, EveryErrorIsTheSameWhereverTheTextIsCut) {
  for (const std::string& scene : brokenScenes()) {
    compareText(scene);
    compareText("A a { x = 1; }\nB b { } " + scene + "\nC c { }");
  }
}

TEST(StreamEquality, WhatMayEndAtACutIsReadTheSame) {
  const std::string texts[] = {
      "A a { x = 1e+5; y = 1e+-2; z = 1.#INF; w = 1.5e; }",
      "A a { x = 1.5; } Nano nano { } nan b { }",
      "A a { } // a comment } \" /*\n/* another } \" // **/ B b { x = 1 /* here */ + /**/ 2; }",
      "A a { s = \"}\\\"{ \\\\\"; t = \"over\nlines\"; } B b { s = \"\"; }",
      "\xEF\xBB\xBF"
      "A a { }",
      "\xEF\xBB"
      "A a { }",
      "A a { x = b.c[1].y / d::e; } A a { y = 2; }",
      "A a { }\r\nB b {\r\n  x = 1 ;\r\n}\r\n",
      "A \xC3\xA4 { x = \"\xE2\x82\xAC\xE2\x82\xAC\"; } B { y = \"\xC3\xA4\xC3\xA4\" @ ; }",
      "A a { }\n#includes b\n",
      "A a { } #include \"x\"\n",
      "A a { x = 1; } \"text\" { }",
      "A a { x = 1; } B \"text\" { }",
      "A a { x = 1; } B b { } \"never closed { }\n",
      "A a { x = 1; } B b { } C \"never closed { }\n",
      "A a { x = 1; } B b { } /* never closed { }\n",
      "A a { x = 1; } B b { } 1.5 C { }",
      "A a { x = 1; } } B b { }",
      "A a { } B b { } " + "\0"s + " C c { }",
      "A a { } B b { } // " + "\0"s + "\n C c { }",
      "A a { x = nan; s = \"a string } with \\\" in it\"; /* and a\ncomment */ y = 1; } B b { x = "
      "nan; }",
      "A a { x = List(nan, \"text\", /* } */ -nan, b.c, 1e+5); h = ListIntHex(\"00ff\"); y = 1; }",
      "A a { x = nan; s = \"never closed; }\nB b { }",
      "A a { x = nan; /* never closed; }\nB b { }",
      "A a { x = random(1, 2); } B b { x = randomInt(3, 4); y = ListInt(1, 2,); }",
  };
  for (const std::string& text : texts) compareText(text);
}

TEST(StreamEquality, OptionsReachTheStream) {
  SceneOptions options;
  options.nameAffix = "_left";
  options.affixIsSuffix = true;
  options.firstFrame = 1;
  options.lastFrame = 9;
  options.maxObjects = 3;
  options.limits.maxStringLength = 10;
  options.maxNestingDepth = 3;
  for (const char* text : {"A a { x = b; } B b { } C c { }", "A a { } A a { } A a { } A a { }",
                           "A a { x = \"12345678901\"; }", "A a { x = ((((1)))); }"}) {
    compareText(text, options);
  }
}

TEST(StreamEquality, SeedsAreDrawnTheSameWhereverTheTextIsCut) {
  std::string text;
  for (int i = 0; i < 20; ++i)
    text += "A a { x = random(0, 1); y = nan; }\nA b { x = random(0, 1); }\n";
  const auto seedsOf = [&text](size_t window) {
    std::vector<float> seeds;
    BuiltinFunctionAST::rndGen.reset();
    forEachObject(
        SceneSource::text(text),
        [&seeds](const ObjectAST& object) {
          seeds.push_back(static_cast<BuiltinFunctionAST*>(object.firstProperty->value)->seed);
          return ObjectFate::kDrop;
        },
        withWindow(window));
    return seeds;
  };
  const std::vector<float> expected = seedsOf(text.size() + 100);
  ASSERT_EQ(expected.size(), 40U);
  for (const size_t window : std::initializer_list<size_t>{1, 10, 100, 137, 500})
    EXPECT_EQ(seedsOf(window), expected);
}

// ---- long ones ---------------------------------------------------------------------------------

TEST(StreamEquality, ObjectsLongerThanTheWindowAreReadWhole) {
  const std::string list = "ListInt(1" + repeated(",2", 20000) + ")";
  const std::string text = "A a { }\nB b { x = " + list + "; s = \"" + std::string(70000, 's') +
                           "\"; h = ListIntHex(\"" + repeated("0011", 5000) +
                           "\"); }\nC c { x = " + list + "; }\nD d { x = " + list + " }\n";
  compareText(text);
}

TEST(StreamEquality, PlacesOnALineThatIsLongerThanWhatIsKeptOfItAreTheSame) {
  std::string text;
  for (int i = 0; i < 5000; ++i) text += "A \xC3\xA4" + std::to_string(i) + " { x = 1; } ";
  compareText(text + "B { x = 5 watts; } " + text);
  compareText("C { }\n" + text + "B { x = 5 watts; }" + std::string(200000, ' ') + "\nD { }");
}

TEST(StreamEquality, IndentWiderThanWhatIsKeptOfALineIsPassed) {
  compareText("A a { }\n" + std::string(150000, ' ') + "B b { } #include \"x\"\n" +
              std::string(150000, ' ') + "C c {\n" + std::string(70000, ' ') + "x = 5 watts; }");
}

// ---- included files ----------------------------------------------------------------------------

TEST(StreamEquality, IncludesAreFollowedWhereverTheTextIsCut) {
  const TemporaryFiles files;
  files.write("one.inc", "B b { x = 1; }\n#include \"deep/two.inc\"\nB c { x = 2; }");
  files.write("deep/two.inc", "C c { s = \"" + std::string(1100, 't') + "\"; } ");
  files.write("half.inc", " x = 1;\n y = 2; } D d {");
  files.write("word.inc", "E");
  files.write("bad.inc", "B b { x = 1; }\nB c { x = 5 watts; }");
  files.write("open.inc", "B b { x = \"never closed; }");
  files.write("cycle.inc", "F f { }\n#include \"main.scene\"\n");
  const std::string texts[] = {
      "A a { }\n#include \"one.inc\"\nA b { }\n",
      "#include \"one.inc\"\n#include \"one.inc\" // again\n/* here */ #include \"deep/two.inc\"",
      "A a {\n#include \"half.inc\"\n z = 3; }\nA b { }\n",
      "A a { }\n#include \"word.inc\"\n e { x = 1; }\n#include \"word.inc\"\n{ }",
      "A a { }\nA b { }\n#include \"bad.inc\"\nA c { }\n",
      "A a { }\nA b { }\n#include \"open.inc\"\nA c { }\n",
      "A a { }\nA b { }\n#include \"missing.inc\"\nA c { }\n",
      "A a { }\nA b { }\n#include \"one.inc\" A c { }\n",
      "A a { }\nA b { }\n#include one.inc\n",
      "A a { }\n#include \"cycle.inc\"\nA b { }\n",
      "A a {\n x = Vector(1,\n#include \"word.inc\"\n, 3); }\nB b { }",
  };
  for (const std::string& text : texts) {
    const std::string path = files.write("main.scene", text);
    const ObjectsAndError expected = wholeFile(path);
    for (size_t window = 1; window <= text.size() + 2; ++window) {
      ASSERT_EQ(streamed(SceneSource::file(path), withWindow(window)), expected)
          << text << "\nin a window of " << window;
    }
  }
}

TEST(StreamEquality, ErrorBehindATypeThatEndsTheWindowHasItsPlace) {
  for (const std::string text : {"A a { }\n\n  Type = 1;", "Type = 1;", "\xEF\xBB\xBF= 1;"}) {
    const ObjectsAndError expected = wholeText(text, "main.scene");
    EXPECT_NE(expected.error, "");
    for (size_t window = 1; window <= text.size() + 2; ++window) {
      EXPECT_EQ(streamed(SceneSource::text(text, "main.scene"), withWindow(window)), expected)
          << text << "\nin a window of " << window;
    }
  }
}

TEST(StreamEquality, LimitOfIncludesCountsThoseThatAreReadAgainOnce) {
  const TemporaryFiles files;
  files.write("x.inc", " x = 1;\n");
  std::string text;
  for (int i = 0; i < 10; ++i) text += "A a {\n#include \"x.inc\"\n y = 1; }\n";
  const std::string path = files.write("main.scene", text);
  SceneOptions options;
  for (const int64_t most : {9, 10}) {
    options.limits.maxIncludes = most;
    const ObjectsAndError expected = wholeFile(path, options);
    EXPECT_EQ(expected.error.empty(), most == 10);
    for (size_t window = 1; window <= text.size(); window += 3) {
      EXPECT_EQ(streamed(SceneSource::file(path), withWindow(window, options)), expected);
    }
  }
}
