#include "kelp/scene.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <iterator>
#include <memory>
#include <sstream>
#include <string>
#include <utility>

#include "kelp/parser/scenepluginfilter.h"
#include "kelp/parser/treeparser.h"
#include "kelp/utils/exceptions.h"
#include "tests/support/allocations.h"
#include "tests/support/parsing.h"
#include "tests/support/sexpression.h"
#include "tests/support/temporaryfiles.h"

using namespace Kelp;
using KelpTest::sexpression;
using KelpTest::TemporaryFiles;

namespace {

std::string names(const Scene& scene) {
  std::string list;
  for (const ObjectAST& object : scene.objects()) {
    list += (list.empty() ? "" : " ") + std::string(object.name.chars());
  }
  return list;
}

// Gives every object the name "new_" + its old one and refuses those of type "No".
class RenamingFilter : public ScenePluginFilter {
 public:
  int acceptObject(const CharString& type, CharString& name, void*) override {
    CharString renamed("new_");
    renamed.append(name.chars());
    name = renamed;
    return type == CharString("No") ? 0 : 1;
  }
};

// Reads a text while the n-th heap request fails. False when there were fewer requests.
bool failsToRead(const std::string& text, const SceneOptions& options, int64_t n) {
  const KelpTest::FailingAllocation failure(n);
  bool thrown = false;
  try {
    Scene::fromText(text, options);
  } catch (const std::bad_alloc&) {
    thrown = true;
  } catch (const ExceptionMsg&) {
    thrown = true;
  }
  EXPECT_EQ(thrown, failure.hasFailed()) << text << n;
  return failure.hasFailed();
}

TEST(Scene, BorrowedTextStaysWhereItIs) {
  const std::string text = "A a { x = ListIntHex(\"00ff\"); y = 1; }";
  const std::string padded = text + std::string(SourcesReader::kPadding, '\0');
  const Scene scene =
      Scene::fromBorrowedText(std::string_view(padded.data(), text.size()), "name.scene");
  ASSERT_TRUE(scene);
  EXPECT_EQ(sexpression(*scene.program()), sexpression(*Scene::fromText(text).program()));
  const auto* list =
      dynamic_cast<ListTypeExpressionAST<int>*>(scene.find("a")->findProperty("x")->value);
  ASSERT_NE(list, nullptr);
  EXPECT_EQ(list->textRef[0], reinterpret_cast<uintptr_t>(padded.data() + text.find("00ff")));
}

}  // namespace

static_assert(std::forward_iterator<Scene::Objects::Iterator>);
static_assert(!std::is_copy_constructible_v<Scene>);
static_assert(std::is_nothrow_move_constructible_v<Scene>);
static_assert(std::is_nothrow_move_assignable_v<Scene>);

TEST(SceneFromText, GoodTextGivesItsObjects) {
  const Scene scene = Scene::fromText("A a { x = 1; }\nB b {}\nC {}");
  ASSERT_TRUE(scene);
  EXPECT_EQ(scene.error().kind, SceneError::Kind::kNone);
  EXPECT_EQ(scene.error().message, "");
  EXPECT_EQ(names(scene), "a b ");
  EXPECT_EQ(sexpression(*scene.program()),
            "(scene (obj \"A\" \"a\" (= \"x\" 1)) (obj \"B\" \"b\") (obj \"C\" \"\"))");
}

TEST(SceneFromText, EmptyTextIsAnEmptyScene) {
  for (const char* text : {"", " ", "// nothing"}) {
    const Scene scene = Scene::fromText(text);
    EXPECT_TRUE(scene);
    EXPECT_TRUE(scene.objects().empty());
    EXPECT_EQ(scene.objects().begin(), scene.objects().end()) << text;
  }
}

TEST(SceneFromText, TextMayGoAfterwards) {
  auto text = std::make_unique<std::string>("A a { x = \"" + std::string(2000, 's') + "\"; }");
  const Scene scene = Scene::fromText(*text, "name.scene");
  std::fill(text->begin(), text->end(), '!');
  text.reset();
  EXPECT_EQ(sexpression(*scene.program()),
            "(scene (obj \"A\" \"a\" (= \"x\" \"" + std::string(2000, 's') + "\")))");
}

TEST(SceneFromText, NameStandsInProperties) {
  const Scene named = Scene::fromText("A a {\n x = 1; }", "dir/n.scene");
  EXPECT_STREQ(named.objects()[0].firstProperty->file.chars(), "dir/n.scene");
  EXPECT_EQ(named.objects()[0].firstProperty->line, 2);
  const Scene unnamed = Scene::fromText("A a { x = 1; }");
  EXPECT_STREQ(unnamed.objects()[0].firstProperty->file.chars(), "<text>");
}

TEST(SceneFromFile, ReadsWhatFromTextReads) {
  const TemporaryFiles files;
  const std::string text = "A a { x = ListFloatHex(\"3F800000\"); }\nB b { y = a.x; }";
  const std::string path = files.write("a.scene", text);
  for (const bool map : {false, true}) {
    SceneOptions options;
    options.mapFiles = map;
    const Scene scene = Scene::fromFile(path, options);
    ASSERT_TRUE(scene);
    EXPECT_EQ(sexpression(*scene.program()), sexpression(*Scene::fromText(text).program()));
    EXPECT_EQ(scene.objects()[0].firstProperty->file.chars(), path);
    EXPECT_EQ(scene.reader().bytesRead(), static_cast<int64_t>(text.size()));
  }
}

TEST(SceneObjects, StandInTextOrderMergedOnesAtTheirFirstPlace) {
  const Scene scene = Scene::fromText("A a { x = 1; } B b {} A a { y = 2; } C c {} B b {} A d {}");
  EXPECT_EQ(names(scene), "a b c d");
  const Scene::Objects objects = scene.objects();
  EXPECT_EQ(objects.size(), 4U);
  EXPECT_EQ(sexpression(objects[0]), "(obj \"A\" \"a\" (= \"x\" 1) (= \"y\" 2))");
  EXPECT_EQ(std::distance(objects.begin(), objects.end()), 4);
  EXPECT_STREQ(objects.begin()->type.chars(), "A");
  auto at = objects.begin();
  EXPECT_STREQ((at++)->name.chars(), "a");
  EXPECT_STREQ(at->name.chars(), "b");
}

TEST(SceneObjects, FindGivesTheFirstOfAName) {
  const Scene scene = Scene::fromText("A a {} B a {} B b {}");
  ASSERT_NE(scene.find("a"), nullptr);
  EXPECT_STREQ(scene.find("a")->type.chars(), "A");
  EXPECT_EQ(scene.find("b"), &scene.objects()[2]);
  EXPECT_EQ(scene.find("c"), nullptr);
  EXPECT_EQ(scene.find("A"), nullptr);
}

TEST(SceneObjects, RangeLivesAsLongAsTheScene) {
  const Scene scene = Scene::fromText("A a {} B b {}");
  int number = 0;
  for (auto at = scene.objects().begin(); at != scene.objects().end(); ++at) ++number;
  EXPECT_EQ(number, 2);
  EXPECT_EQ(&scene.objects(), &scene.objects());
}

TEST(SceneObjects, FollowObjectsAddedToTheProgram) {
  const Scene scene = Scene::fromText("A a {}");
  Scene other = Scene::fromText("B b {}");
  EXPECT_EQ(scene.objects().size(), 1U);
  EXPECT_EQ(other.objects().size(), 1U);
  scene.program()->mergeProgram(other.program(), 0, 0, nullptr);
  ASSERT_EQ(scene.objects().size(), 2U);
  EXPECT_STREQ(scene.objects()[1].type.chars(), "B");
  EXPECT_TRUE(other.objects().empty());
}

TEST(SceneDefault, IsFalseWithoutErrorAndObjects) {
  Scene scene;
  EXPECT_FALSE(scene);
  EXPECT_EQ(scene.error().kind, SceneError::Kind::kNone);
  EXPECT_TRUE(scene.objects().empty());
  EXPECT_EQ(scene.find("a"), nullptr);
  scene = Scene::fromText("A a {}");
  EXPECT_TRUE(scene);
}

TEST(SceneDefault, NoErrorPrintsNothing) {
  std::ostringstream out;
  out << Scene::fromText("A a {}").error();
  EXPECT_EQ(out.str(), "");
}

TEST(SceneObjects, NoneAfterAnError) {
  Scene scene = Scene::fromText("A a {} B b {");
  ASSERT_FALSE(scene);
  EXPECT_EQ(scene.program(), nullptr);
  EXPECT_TRUE(scene.objects().empty());
  EXPECT_EQ(scene.find("a"), nullptr);
  RenamingFilter filter;
  scene.filter(filter);
}

TEST(SceneOptions, AffixIsJoinedToObjectsAndReferences) {
  SceneOptions options;
  options.nameAffix = "p_";
  EXPECT_EQ(sexpression(*Scene::fromText("A a { x = b; }", options).program()),
            "(scene (obj \"A\" \"p_a\" (= \"x\" (ref \"p_b\"))))");
  options.affixIsSuffix = true;
  EXPECT_EQ(sexpression(*Scene::fromText("A a { x = b; }", options).program()),
            "(scene (obj \"A\" \"ap_\" (= \"x\" (ref \"bp_\"))))");
}

TEST(SceneOptions, FramesBecomeRecordsOfTheProperties) {
  SceneOptions options;
  options.firstFrame = 3.0;
  options.lastFrame = 7.5;
  const Scene scene = Scene::fromText("A a { x = 1; } A a { y = 2; }", options);
  int properties = 0;
  for (const PropertyAST* p = scene.find("a")->firstProperty; p != nullptr; p = p->next) {
    ASSERT_NE(p->records, nullptr);
    EXPECT_EQ(p->records->t1, 3.0);
    EXPECT_EQ(p->records->t2, 7.5);
    EXPECT_EQ(p->records->next, nullptr);
    ++properties;
  }
  EXPECT_EQ(properties, 2);
}

TEST(SceneOptions, NoFramesNoRecords) {
  const Scene scene = Scene::fromText("A a { x = 1; }");
  EXPECT_EQ(scene.find("a")->firstProperty->records, nullptr);
}

TEST(SceneOptions, IncludePathsAreLookedUpInTheirOrder) {
  const TemporaryFiles files;
  files.write("one/b.inc", "B one {}");
  files.write("two/b.inc", "B two {}");
  SceneOptions options;
  options.includePaths = {files.path("none"), files.path("one"), files.path("two")};
  const Scene scene =
      Scene::fromFile(files.write("a.scene", "#include \"b.inc\"\nA a {}"), options);
  ASSERT_TRUE(scene);
  EXPECT_EQ(names(scene), "one a");
}

TEST(SceneOptions, NestingIsBounded) {
  const std::string three = "A a { x = (((1))); }";
  SceneOptions options;
  options.maxNestingDepth = 3;
  EXPECT_TRUE(Scene::fromText(three, options));
  options.maxNestingDepth = 2;
  const Scene scene = Scene::fromText(three, options);
  EXPECT_FALSE(scene);
  EXPECT_EQ(scene.error().message, "Expression is nested too deeply");
  options.maxNestingDepth = 0;
  EXPECT_TRUE(Scene::fromText(three, options));
}

TEST(SceneFilter, RenamesObjectsAndRecordedReferences) {
  SceneOptions options;
  options.collectReferences = true;
  Scene scene = Scene::fromText("A a { x = b; y = b.z; } No b { v = a::w; }", options);
  RenamingFilter filter;
  scene.filter(filter);
  EXPECT_EQ(
      sexpression(*scene.program()),
      "(scene (obj \"A\" \"new_a\" (= \"x\" (ref \"new_b\")) (= \"y\" (prop \"new_b\" \"z\"))) "
      "(obj \"No\" \"new_b\" (= \"v\" (rt \"new_a\" \"w\"))))");
  EXPECT_EQ(scene.find("a"), nullptr);
  ASSERT_NE(scene.find("new_b"), nullptr);
  EXPECT_EQ(scene.find("new_b")->filteredOut, 1);
  EXPECT_EQ(scene.find("new_a")->filteredOut, 0);
}

TEST(SceneFilter, ReferencesKeepTheirNamesUnlessRecorded) {
  Scene scene = Scene::fromText("A a { x = b; } B b {}");
  RenamingFilter filter;
  scene.filter(filter);
  EXPECT_EQ(sexpression(*scene.program()),
            "(scene (obj \"A\" \"new_a\" (= \"x\" (ref \"b\"))) (obj \"B\" \"new_b\"))");
}

TEST(SceneMove, TreeGoesWithTheScene) {
  Scene first = Scene::fromText("A a { x = \"" + std::string(3000, 's') + "\"; }");
  const ObjectAST* object = first.find("a");
  Scene second = std::move(first);
  EXPECT_EQ(second.find("a"), object);
  Scene third = Scene::fromText("B b {");
  third = std::move(second);
  ASSERT_TRUE(third);
  EXPECT_EQ(third.find("a"), object);
  EXPECT_EQ(names(third), "a");
}

TEST(SceneMove, SceneMovedFromIsFalseAndEmpty) {
  Scene first = Scene::fromText("A a {}");
  const Scene second = std::move(first);
  EXPECT_TRUE(second);
  EXPECT_FALSE(first);  // NOLINT(bugprone-use-after-move): that it may be asked is the point
  EXPECT_EQ(first.program(), nullptr);
  EXPECT_TRUE(first.objects().empty());
  EXPECT_EQ(first.find("a"), nullptr);
  RenamingFilter filter;
  first.filter(filter);
}

TEST(SceneLifetime, NoNodeOutlivesItsScene) {
  const int before = KelpTest::livePoolElements();
  {
    Scene scene = Scene::fromText("A a { x = 1 + b; y = \"s\"; } B b { z = Vector(1, 2, 3); }");
    EXPECT_GT(KelpTest::livePoolElements(), before);
    scene = Scene::fromText("A a {}");
    EXPECT_EQ(KelpTest::livePoolElements(), before + 1);
    const Scene bad = Scene::fromText("A a { x = 1 + (2; }");
    EXPECT_EQ(KelpTest::livePoolElements(), before + 1);
  }
  EXPECT_EQ(KelpTest::livePoolElements(), before);
}

TEST(SceneLifetime, ExhaustedMemoryReachesTheCallerAndLeaksNothing) {
  SceneOptions options;
  options.nameAffix = "affix";
  options.includePaths = {"somewhere"};
  for (const std::string text :
       {"A a { x = 1 + b; y = \"s\\\"\"; z = ListInt(1); }", "A a { x = ; }", " \"unended"}) {
    Scene::fromText(text, options);
    const int64_t allocations = KelpTest::liveAllocations();
    const int nodes = KelpTest::livePoolElements();
    int64_t requests = 0;
    while (failsToRead(text, options, ++requests)) {
      EXPECT_EQ(KelpTest::livePoolElements(), nodes) << text << requests;
      // Free nodes keep their strings: reading the whole text leaves the same ones every time.
      Scene::fromText(text, options);
      EXPECT_EQ(KelpTest::liveAllocations(), allocations) << text << requests;
    }
    EXPECT_GT(requests, 10);
  }
}
