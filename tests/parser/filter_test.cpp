#include <gtest/gtest.h>

#include "tests/support/filters.h"
#include "tests/support/rows.h"
#include "tests/support/trees.h"

using namespace Kelp;
using namespace KelpTest;

TEST(Filter, OfNullTouchesNothing) {
  FilteredScene scene("A n { x = n; }");
  scene.object("n").filteredOut = 7;
  scene.source.parser.doFilter(scene.program.get(), nullptr);
  EXPECT_EQ(scene.object("n").filteredOut, 7);
  EXPECT_EQ(scene.references(), (std::vector<std::string>{"n"}));
}

TEST(Filter, RejectionMarksAndChangesNothingElse) {
  FilteredScene scene("A n { x = m; } B m { x = n.y + n::z; }");
  FunctionFilter filter([](const CharString&, CharString&, void*) { return 0; });
  scene.filter(filter);
  EXPECT_EQ(scene.program->numObjects, 2);
  for (const char* name : {"n", "m"}) {
    EXPECT_EQ(scene.object(name).filteredOut, 1);
    EXPECT_STREQ(scene.object(name).name.chars(), name);
  }
  EXPECT_EQ(scene.references(), (std::vector<std::string>{"m", "n", "n"}));
}

TEST(Filter, AnythingButZeroKeeps) {
  for (const int result : {1, 2, -1, 1 << 30}) {
    FilteredScene scene("A n {}");
    scene.object("n").filteredOut = 7;
    FunctionFilter filter([result](const CharString&, CharString&, void*) { return result; });
    scene.filter(filter);
    EXPECT_EQ(scene.object("n").filteredOut, 0);
  }
}

TEST(Filter, ASecondOneOverridesTheFirst) {
  FilteredScene scene("A n {} B m {}");
  FunctionFilter rejectA(
      [](const CharString& type, CharString&, void*) { return type == CharString("A") ? 0 : 1; });
  FunctionFilter rejectB(
      [](const CharString& type, CharString&, void*) { return type == CharString("B") ? 0 : 1; });
  scene.filter(rejectA);
  EXPECT_EQ(scene.object("n").filteredOut, 1);
  EXPECT_EQ(scene.object("m").filteredOut, 0);
  scene.filter(rejectB);
  EXPECT_EQ(scene.object("n").filteredOut, 0);
  EXPECT_EQ(scene.object("m").filteredOut, 1);
}

TEST(Filter, SeesTypeNameAndExtraOfEveryObjectInListOrder) {
  FilteredScene scene("A n {} B {} A m {}");
  int extra = 0;
  scene.object("n").extra = &extra;
  std::vector<std::string> seen;
  FunctionFilter filter([&](const CharString& type, CharString& name, void* given) {
    const char* mark = given == &extra ? "+" : given == nullptr ? "" : "?";
    seen.push_back(std::string(type.chars()) + ":" + name.chars() + mark);
    return 1;
  });
  scene.filter(filter);
  EXPECT_EQ(seen, (std::vector<std::string>{"A:m", "B:", "A:n+"}));
}

TEST(Filter, IsGivenASharedCopyOfTheName) {
  FilteredScene scene("A n {}");
  const CharStringBuf* own = scene.object("n").name.buffer;
  FunctionFilter filter([own](const CharString&, CharString& name, void*) {
    EXPECT_EQ(name.buffer, own);
    return 1;
  });
  scene.filter(filter);
  EXPECT_EQ(scene.object("n").name.buffer->referenceCount, 1);
}

TEST(Rename, MovesTheObjectAndItsReferences) {
  FilteredScene scene("A n {} A o {} R r { a = n; b = n.x[o.y]; c = n::t; d = o; e = nn; }");
  const ObjectAST* object = &scene.object("n");
  scene.rename({{"n", "m"}});
  EXPECT_EQ(scene.program->getObject("m"), object);
  EXPECT_EQ(scene.program->getObject("n"), nullptr);
  EXPECT_STREQ(object->name.chars(), "m");
  EXPECT_EQ(scene.references(), (std::vector<std::string>{"m", "m", "o", "m", "o", "nn"}));
}

TEST(Rename, TheNewNameIsSharedNotCopied) {
  FilteredScene scene("A n { x = n; }");
  CharString newName("m");
  FunctionFilter filter([&](const CharString&, CharString& name, void*) {
    name = newName;
    return 1;
  });
  scene.filter(filter);
  EXPECT_EQ(scene.object("m").name.buffer, newName.buffer);
  EXPECT_EQ(scene.source.parser.referenceNames.data[0]->buffer, newName.buffer);
  EXPECT_EQ(newName.buffer->referenceCount, 3);
}

TEST(Rename, TheSameTextIsNone) {
  FilteredScene scene("A n { x = n; }");
  const CharStringBuf* own = scene.object("n").name.buffer;
  FunctionFilter filter([](const CharString&, CharString& name, void*) {
    name = CharString("n");
    return 1;
  });
  scene.filter(filter);
  EXPECT_EQ(scene.object("n").name.buffer, own);
}

TEST(Rename, AChainIsNotFollowed) {
  for (const char* text :
       {"A n {} A m {} R r { x = n; y = m; }", "A m {} A n {} R r { x = n; y = m; }"}) {
    FilteredScene scene(text);
    scene.rename({{"n", "m"}, {"m", "k"}});
    EXPECT_EQ(scene.references(), (std::vector<std::string>{"m", "k"})) << text;
  }
}

TEST(Rename, AChainMovesTheObjectsInListOrder) {
  FilteredScene newestFirst("A n {} A m {}");
  const ObjectAST* n = &newestFirst.object("n");
  const ObjectAST* m = &newestFirst.object("m");
  newestFirst.rename({{"n", "m"}, {"m", "k"}});
  EXPECT_EQ(newestFirst.program->getObject("m"), n);
  EXPECT_EQ(newestFirst.program->getObject("k"), m);

  // Here n becomes m while the other m is still there, whose holder keeps the name and moves on.
  FilteredScene clash("A m {} A n {}");
  m = &clash.object("m");
  clash.rename({{"n", "m"}, {"m", "k"}});
  EXPECT_EQ(clash.program->getObject("k"), m);
  EXPECT_EQ(clash.program->getObject("m"), nullptr);
}

TEST(Rename, AnAddressRecordedTwiceFollowsOneRename) {
  FilteredScene scene("A n {} A m {} R r { x = n; }");
  scene.source.parser.referenceNames += scene.source.parser.referenceNames.data[0];
  scene.rename({{"n", "m"}, {"m", "k"}});
  EXPECT_EQ(scene.references(), (std::vector<std::string>{"m", "m"}));
}

TEST(Rename, MovesTheObjectThatHoldsTheName) {
  // Two objects share the name; the table knows the first one, whichever is renamed.
  FilteredScene scene("A n {} B n {}");
  ObjectAST* first = &scene.object("n");
  ObjectAST* second = scene.program->firstObject;
  ASSERT_NE(first, second);
  FunctionFilter filter([](const CharString& type, CharString& name, void*) {
    if (type == CharString("B")) name = "m";
    return 1;
  });
  scene.filter(filter);
  EXPECT_EQ(scene.program->getObject("m"), first);
  EXPECT_EQ(scene.program->getObject("n"), nullptr);
  EXPECT_STREQ(first->name.chars(), "n");
  EXPECT_STREQ(second->name.chars(), "m");
}

TEST(Rename, OfOneOldNameTheLastWins) {
  FilteredScene scene("A n {} B n {} R r { x = n; }");
  FunctionFilter filter([](const CharString& type, CharString& name, void*) {
    if (type == CharString("B")) name = "first";
    if (type == CharString("A")) name = "last";
    return 1;
  });
  scene.filter(filter);
  EXPECT_EQ(scene.references(), (std::vector<std::string>{"last"}));
  // Only the first rename found the old name in the table.
  EXPECT_NE(scene.program->getObject("first"), nullptr);
  EXPECT_EQ(scene.program->getObject("last"), nullptr);
}

TEST(Rename, AnAbsentNameDiffersFromTheEmptyOne) {
  FilteredScene scene("A {}");
  const ObjectAST* object = scene.program->firstObject;
  FunctionFilter toNull([](const CharString&, CharString& name, void*) {
    name = CharString();
    return 1;
  });
  scene.filter(toNull);
  EXPECT_TRUE(object->name.isNull());
  EXPECT_EQ(scene.program->getObject(""), nullptr);
  FunctionFilter toEmpty([](const CharString&, CharString& name, void*) {
    EXPECT_TRUE(name.isNull());
    name = "";
    return 1;
  });
  scene.filter(toEmpty);
  EXPECT_FALSE(object->name.isNull());
  EXPECT_EQ(scene.program->getObject(""), object);
}

TEST(Rename, AReferenceWithoutATextStaysWithoutOne) {
  FilteredScene scene("A n {} B {}");
  CharString none;
  scene.source.parser.referenceNames += &none;
  scene.rename({{"n", "m"}, {"", "named"}});
  EXPECT_TRUE(none.isNull());
}

TEST(Rename, OfAnEmptyProgramChangesNothing) {
  FilteredScene scene("");
  CharString reference("n");
  scene.source.parser.referenceNames += &reference;
  scene.rename({{"n", "m"}});
  EXPECT_STREQ(reference.chars(), "n");
}

TEST(Rename, ConcernsTheAffixedNames) {
  FilteredScene scene("A n { x = n; }", [](TreeParser& parser) { parser.nameAffix = "p_"; });
  scene.rename({{"p_n", "q_n"}});
  EXPECT_EQ(scene.references(), (std::vector<std::string>{"q_n"}));
}

TEST(Rename, LeavesTheTableOfReferencesAsItIs) {
  FilteredScene scene("A n { x = n; y = n.z; }");
  CharString* const first = scene.source.parser.referenceNames.data[0];
  scene.rename({{"n", "m"}});
  EXPECT_EQ(scene.source.parser.referenceNames.count, 2);
  EXPECT_EQ(scene.source.parser.referenceNames.data[0], first);
  scene.rename({{"m", "k"}});
  EXPECT_EQ(scene.references(), (std::vector<std::string>{"k", "k"}));
}

TEST(Rename, OfAHundredObjectsFindsThemAll) {
  constexpr int kObjects = 100;
  std::string text;
  for (int i = 0; i < kObjects; ++i) {
    const std::string n = std::to_string(i);
    text += "A o" + n + " { x = o" + n + "; y = o" + std::to_string((i + 1) % kObjects) + ".z; }";
  }
  FilteredScene scene(text);
  for (int round = 0; round < 3; ++round) {
    const std::string prefix(static_cast<size_t>(round) * 50 + 1, 'r');
    FunctionFilter filter([&](const CharString&, CharString& name, void*) {
      name = (prefix + name.chars()).c_str();
      return 1;
    });
    scene.filter(filter);
  }
  const std::string prefix(1 + 51 + 101, 'r');
  EXPECT_EQ(scene.program->namedObjects.count, kObjects);
  for (int i = 0; i < kObjects; ++i) {
    const std::string name = prefix + "o" + std::to_string(i);
    ASSERT_NE(scene.program->getObject(name.c_str()), nullptr);
    EXPECT_EQ(scene.object(name.c_str()).name.chars(), name);
    EXPECT_EQ(scene.references()[2 * static_cast<size_t>(i)], name);
  }
}
