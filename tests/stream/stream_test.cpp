// What a callback may do, what is kept, and what a result says.
#include "kelp/stream.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <stdexcept>

#include "tests/support/balance.h"
#include "tests/support/filters.h"
#include "tests/support/hiddenfields.h"
#include "tests/support/largescenes.h"
#include "tests/support/richscenes.h"
#include "tests/support/sexpression.h"
#include "tests/support/streamed.h"
#include "tests/support/temporaryfiles.h"

using namespace Kelp;
using namespace KelpTest;

namespace {

constexpr const char* kFive = "A a { x = 1; } B b { x = 2; } A c { x = 3; } B d { } A e { }";

// Drops the objects of all other types.
ObjectCallback keepType(const std::string& type) {
  return [type](const ObjectAST& object) {
    return object.type.chars() == type ? ObjectFate::kKeep : ObjectFate::kDrop;
  };
}

ObjectFate keepAll(const ObjectAST&) { return ObjectFate::kKeep; }
ObjectFate dropAll(const ObjectAST&) { return ObjectFate::kDrop; }

std::string namesOf(const Scene& scene) {
  std::string names;
  for (const ObjectAST& object : scene.objects()) names += object.name.chars();
  return names;
}

std::string longString(char c) { return std::string(2000, c); }

// What the one property of an object refers to.
const uint64_t* recordOf(const ObjectAST& object) {
  ExpressionAST* value = object.firstProperty->value;
  const auto* string = dynamic_cast<StringExpressionAST*>(value);
  const auto* hex = dynamic_cast<ListTypeExpressionAST<int>*>(value);
  return string != nullptr ? string->span : hex->textRef;
}

std::string_view textOf(const ObjectAST& object) {
  const uint64_t* record = recordOf(object);
  return {reinterpret_cast<const char*>(record[0]), record[1]};
}

}  // namespace

TEST(Stream, ObjectsComeInTextOrderAndEqualOnesApart) {
  std::string seen;
  const StreamResult result = forEachObject(
      SceneSource::text("A a { x = 1; } A a { y = 2; } B { }"), [&seen](const ObjectAST& object) {
        seen += sexpression(object);
        EXPECT_EQ(object.next, nullptr);
        return ObjectFate::kDrop;
      });
  EXPECT_TRUE(result);
  EXPECT_EQ(seen, R"((obj "A" "a" (= "x" 1))(obj "A" "a" (= "y" 2))(obj "B" ""))");
  EXPECT_EQ(result.objects, 3);
  EXPECT_EQ(result.bytes, 35);
  EXPECT_FALSE(result.stopped);
  EXPECT_TRUE(result.kept);
  EXPECT_TRUE(result.kept.objects().empty());
}

TEST(Stream, WhatIsKeptIsAScene) {
  for (const size_t window : std::initializer_list<size_t>{1, 20, 1000}) {
    const StreamResult result =
        forEachObject(SceneSource::text(kFive), keepType("A"), withWindow(window));
    EXPECT_EQ(namesOf(result.kept), "ace");
    EXPECT_EQ(sexpression(*result.kept.find("c")), R"((obj "A" "c" (= "x" 3)))");
    EXPECT_EQ(result.kept.find("b"), nullptr);
    EXPECT_EQ(result.objects, 5);
  }
}

TEST(Stream, WhoKeepsAllHasTheWholeScene) {
  for (const std::string& text : richScenes()) {
    BuiltinFunctionAST::rndGen.reset();
    const Scene whole = Scene::fromText(text, "scene");
    for (const size_t window : std::initializer_list<size_t>{1, 50, 100000}) {
      BuiltinFunctionAST::rndGen.reset();
      const StreamResult result =
          forEachObject(SceneSource::text(text, "scene"), keepAll, withWindow(window));
      EXPECT_EQ(sexpression(*result.kept.program()), sexpression(*whole.program()));
      EXPECT_EQ(hiddenFields(*result.kept.program()), hiddenFields(*whole.program()));
    }
  }
}

TEST(Stream, KeptObjectsOwnTheirLongTexts) {
  const TemporaryFiles files;
  files.write("one.inc",
              "T c { s = \"" + longString('c') + "\"; }\nT e { s = ListIntHex(\"\"); }\n");
  const std::string text = "T a { s = \"" + longString('a') + "\"; }\n" + "X x { s = \"" +
                           longString('x') + "\"; }\n" + "T b { s = \"" + longString('b') +
                           "\\\"\"; }\n" +
                           "T h { s = ListIntHex(\"00ff\"); }\n#include \"one.inc\"\n" +
                           "T w { s = ListIntHex(word); }\n";
  const std::string path = files.write("main.scene", text);
  for (const size_t window : std::initializer_list<size_t>{1, 3000, 100000}) {
    StreamResult result = forEachObject(SceneSource::file(path), keepType("T"), withWindow(window));
    ASSERT_EQ(namesOf(result.kept), "abhcew");
    const Scene kept = std::move(result.kept);
    EXPECT_EQ(textOf(*kept.find("a")), longString('a'));
    EXPECT_EQ(textOf(*kept.find("b")), longString('b') + '"');
    EXPECT_EQ(textOf(*kept.find("h")), "00ff");
    EXPECT_EQ(textOf(*kept.find("c")), longString('c'));
    EXPECT_EQ(textOf(*kept.find("w")), "");
    EXPECT_EQ(textOf(*kept.find("e")), "");
    for (const char* name : {"a", "b", "h", "c", "e"}) {
      const auto owner = reinterpret_cast<uintptr_t>(&kept.reader().sceneText());
      EXPECT_EQ(recordOf(*kept.find(name))[2], owner) << name;
    }
    EXPECT_EQ(recordOf(*kept.find("w"))[2], 0U);
  }
}

TEST(Stream, KeptObjectsKeepNoTextsButTheirLongOnes) {
  const StreamResult result = forEachObject(
      SceneSource::text(R"(T a { s = "\""; t = ListString("\\"); } T b { s = "\"\""; } T c { })"),
      keepAll);
  EXPECT_EQ(result.kept.objects().size(), 3U);
  EXPECT_EQ(result.kept.reader().keptTextCount(), 0U);
}

TEST(Stream, LongTextsAreGoodWhileTheObjectIsShown) {
  const std::string text = "T a { s = \"" + longString('a') + "\"; }\nT b { s = \"" +
                           longString('b') + "\\\\\"; }\nT c { s = ListIntHex(\"0f\"); }";
  std::string seen;
  forEachObject(
      SceneSource::text(text),
      [&seen](const ObjectAST& object) {
        seen += textOf(object);
        return ObjectFate::kDrop;
      },
      withWindow(10));
  EXPECT_EQ(seen, longString('a') + longString('b') + "\\0f");
}

TEST(Stream, KeptReferencesFollowAFilter) {
  StreamOptions options = withWindow(10);
  options.collectReferences = true;
  StreamResult result = forEachObject(
      SceneSource::text("A a { x = b; } X x { x = b; y = b.c; } B b { x = a.y; } X z { x = b; }"),
      [](const ObjectAST& object) {
        return *object.type.chars() == 'X' ? ObjectFate::kDrop : ObjectFate::kKeep;
      },
      options);
  EXPECT_EQ(result.kept.parser().referenceNames.count, 2);
  FunctionFilter filter([](const CharString&, CharString& name, void*) {
    name.append("2");
    return 1;
  });
  result.kept.filter(filter);
  EXPECT_EQ(sexpression(*result.kept.program()),
            R"((scene (obj "A" "a2" (= "x" (ref "b2"))) (obj "B" "b2" (= "x" (prop "a2" "y")))))");
}

// ---- stopping ----------------------------------------------------------------------------------

TEST(Stream, CallbackStopsBehindAnyObject) {
  for (const ObjectFate fate : {ObjectFate::kDropAndStop, ObjectFate::kKeepAndStop}) {
    for (int64_t last = 1; last <= 5; ++last) {
      int64_t seen = 0;
      const StreamResult result = forEachObject(
          SceneSource::text(kFive),
          [&](const ObjectAST&) { return ++seen == last ? fate : ObjectFate::kKeep; },
          withWindow(20));
      EXPECT_TRUE(result);
      EXPECT_TRUE(result.stopped);
      EXPECT_EQ(result.objects, last);
      const int64_t dropped = fate == ObjectFate::kDropAndStop ? 1 : 0;
      EXPECT_EQ(static_cast<int64_t>(namesOf(result.kept).size()), last - dropped);
    }
  }
}

TEST(Stream, WhatIsBehindAStopIsNotRead) {
  const StreamResult result = forEachObject(
      SceneSource::text("A a { } B b { } " + std::string(10000, ' ') + "no scene"),
      [](const ObjectAST&) { return ObjectFate::kDropAndStop; }, withWindow(100));
  EXPECT_TRUE(result);
  EXPECT_LT(result.bytes, 10000);
}

TEST(Stream, WhatACallbackThrowsPassesThroughAndLeavesNothing) {
  for (int last = 1; last <= 5; ++last) {
    expectBalanced([last] {
      int seen = 0;
      const auto throwAtLast = [&](const ObjectAST&) -> ObjectFate {
        if (++seen == last) throw std::runtime_error("enough");
        return seen % 2 == 0 ? ObjectFate::kKeep : ObjectFate::kDrop;
      };
      EXPECT_THROW(forEachObject(SceneSource::text(kFive), throwAtLast, withWindow(20)),
                   std::runtime_error);
    });
  }
  const auto throwInvalid = [](const ObjectAST&) -> ObjectFate { throw InvalidSourceFile("mine"); };
  EXPECT_THROW(forEachObject(SceneSource::text(kFive), throwInvalid), InvalidSourceFile);
}

TEST(Stream, CallbackMayReadOtherScenes) {
  std::string seen;
  forEachObject(
      SceneSource::text(kFive),
      [&seen](const ObjectAST& object) {
        const Scene other = Scene::fromText(kFive);
        const StreamResult inner = forEachObject(SceneSource::text(kFive), dropAll);
        seen += object.name.chars() + std::to_string(other.objects().size() * 10) +
                std::to_string(inner.objects) + ' ';
        return ObjectFate::kDrop;
      },
      withWindow(20));
  EXPECT_EQ(seen, "a505 b505 c505 d505 e505 ");
}

// ---- errors ------------------------------------------------------------------------------------

TEST(Stream, WhatWasKeptBeforeAnErrorStays) {
  for (const size_t window : std::initializer_list<size_t>{1, 1000}) {
    const StreamResult result = forEachObject(
        SceneSource::text("A a { } B b { } A c { }\nA d { x = 5 watts; } A e { }", "scene"),
        keepType("A"), withWindow(window));
    EXPECT_FALSE(result);
    EXPECT_EQ(result.error.kind, SceneError::Kind::kInvalid);
    EXPECT_EQ(result.error.position(), "scene:2:13");
    EXPECT_EQ(result.error.sourceLine, "A d { x = 5 watts; } A e { }");
    EXPECT_EQ(result.objects, 3);
    EXPECT_EQ(namesOf(result.kept), "ac");
    EXPECT_TRUE(result.kept);
  }
}

TEST(Stream, OfALongLineTheErrorHoldsThePartAroundTheToken) {
  const auto startsCharacter = [](char c) {
    return (static_cast<unsigned char>(c) & 0xC0U) != 0x80U;
  };
  // Names of several lengths, so that the line is cut at every byte of a character.
  for (int length = 1; length <= 9; ++length) {
    const std::string unit = "A " + repeated("\xE2\x82\xAC", length) + " { } ";
    const StreamResult result = forEachObject(
        SceneSource::text(repeated(unit, 20000) + "B { x = 5 watts; }" + std::string(100000, ' ')),
        dropAll, withWindow(1));
    const SceneError& error = result.error;
    EXPECT_EQ(error.column, 20000 * (length + 7) + 11);
    EXPECT_GT(error.lineColumn, 1);
    EXPECT_LT(error.sourceLine.size(), 500000U);
    EXPECT_TRUE(startsCharacter(error.sourceLine[0]));
    const std::string before = error.sourceLine.substr(0, error.sourceLine.find("watts"));
    EXPECT_EQ(std::count_if(before.begin(), before.end(), startsCharacter),
              error.column - error.lineColumn);
  }
}

TEST(Stream, OfALongLineOfBrokenCharactersTheErrorHoldsThePartAroundTheToken) {
  const std::string broken = repeated("\x80", 100000);
  const StreamResult result =
      forEachObject(SceneSource::text("A a { } B { s = \"" + broken + "\"; x = 5 watts; }" +
                                      std::string(100000, ' ')),
                    dropAll, withWindow(1));
  const std::string& line = result.error.sourceLine;
  EXPECT_GE(line.find("watts"), 65536U - 20);
  EXPECT_EQ(line.substr(0, 20), repeated("\x80", 20));
}

TEST(Stream, DroppedObjectsAndTheirTextsAreGone) {
  std::string text;
  for (int i = 0; i < 300; ++i) {
    text += "A a" + std::to_string(i) + " { s = \"" + longString('s') + "\\\"\"; x = 1 + 2; }\n";
  }
  const int live = livePoolElements();
  int64_t most = 0;
  const int64_t before = liveAllocations();
  forEachObject(
      SceneSource::text(text),
      [&](const ObjectAST&) {
        EXPECT_LT(livePoolElements() - live, 10);
        most = std::max(most, liveAllocations() - before);
        return ObjectFate::kDrop;
      },
      withWindow(5000));
  EXPECT_EQ(livePoolElements(), live);
  EXPECT_LT(most, 200);
}

TEST(Stream, NothingIsLeftOfAnyScene) {
  for (const auto* scenes : {&richScenes(), &brokenScenes()}) {
    for (const std::string& text : *scenes) {
      expectBalanced([&text] { forEachObject(SceneSource::text(text), dropAll, withWindow(9)); });
      expectBalanced([&text] { forEachObject(SceneSource::text(text), keepAll, withWindow(9)); });
    }
  }
}
