#include "kelp/utils/charstring.h"

#include <gtest/gtest.h>

#include <string>
#include <type_traits>

using Kelp::CharString;
using Kelp::CharStringBuf;
using Kelp::makeCharString;

namespace {

// Copies and destructors run while exceptions unwind.
static_assert(std::is_nothrow_copy_constructible_v<CharString>);
static_assert(std::is_nothrow_copy_assignable_v<CharString>);
static_assert(std::is_nothrow_move_constructible_v<CharString>);
static_assert(std::is_nothrow_move_assignable_v<CharString>);
static_assert(std::is_nothrow_destructible_v<CharString>);
static_assert(!std::is_polymorphic_v<CharString> && sizeof(CharString) == sizeof(void*));
static_assert(std::is_polymorphic_v<CharStringBuf> && !std::is_final_v<CharStringBuf>);

// "<null>" for the null string, which no test text equals.
std::string textOf(const CharString& string) { return string.isNull() ? "<null>" : string.chars(); }

int countOf(const CharString& string) { return string.buffer->referenceCount; }

const char* const kTexts[] = {"", "a", "a typical name", "thirty-nine characters, the inside limit",
                              "a text that is too long to be kept inside the buffer object itself"};

TEST(CharString, DefaultIsNull) {
  const CharString string;
  EXPECT_TRUE(string.isNull());
  EXPECT_TRUE(string.isEmpty());
  EXPECT_EQ(string.chars(), nullptr);
  EXPECT_EQ(string.length(), 0);
}

TEST(CharString, BufferThatWasNeverResizedHoldsNoCharacters) {
  CharString text;
  text.buffer = new Kelp::CharStringBuf;
  EXPECT_FALSE(text.isNull());
  EXPECT_TRUE(text.isEmpty());
  EXPECT_EQ(text.length(), 0);
  EXPECT_EQ(text.chars(), nullptr);
  EXPECT_FALSE(text == CharString("a"));
}

TEST(CharString, NullTextGivesNull) {
  const CharString constructed(nullptr);
  EXPECT_TRUE(constructed.isNull());
  CharString assigned("x");
  assigned = static_cast<const char*>(nullptr);
  EXPECT_TRUE(assigned.isNull());
}

TEST(CharString, EmptyTextGivesNonNullEmpty) {
  const CharString constructed("");
  EXPECT_FALSE(constructed.isNull());
  EXPECT_TRUE(constructed.isEmpty());
  CharString assigned;
  assigned = "";
  EXPECT_FALSE(assigned.isNull());
  EXPECT_STREQ(assigned.chars(), "");
  CharString emptied("x");
  emptied = "";
  EXPECT_FALSE(emptied.isNull());
  EXPECT_STREQ(emptied.chars(), "");
}

TEST(CharString, KeepsTextsOfEveryLength) {
  for (const char* text : kTexts) {
    const CharString string(text);
    EXPECT_STREQ(string.chars(), text);
    EXPECT_EQ(string.length(), static_cast<int>(std::string(text).size()));
    EXPECT_EQ(countOf(string), 1);
  }
}

TEST(CharString, AssigningATextReplacesAnyOther) {
  for (const char* before : kTexts) {
    for (const char* after : kTexts) {
      CharString string(before);
      EXPECT_EQ(&(string = after), &string);
      EXPECT_STREQ(string.chars(), after);
    }
  }
}

TEST(CharString, AssigningATextToASoleOwnerKeepsItsBuffer) {
  CharString string("abc");
  const CharStringBuf* buffer = string.buffer;
  string = "a text that is too long to be kept inside the buffer object itself";
  EXPECT_EQ(string.buffer, buffer);
  EXPECT_EQ(countOf(string), 1);
}

TEST(CharString, CopySharesTheBuffer) {
  const CharString original("abc");
  const CharString copy(original);
  EXPECT_EQ(copy.buffer, original.buffer);
  EXPECT_EQ(countOf(original), 2);
  const CharString null;
  const CharString copyOfNull(null);
  EXPECT_TRUE(copyOfNull.isNull());
}

TEST(CharString, AssignmentReleasesTheOldBufferAndSharesTheNew) {
  const CharString first("first");
  const CharString second("second");
  CharString string(first);
  EXPECT_EQ(&(string = second), &string);
  EXPECT_EQ(string.buffer, second.buffer);
  EXPECT_EQ(countOf(first), 1);
  EXPECT_EQ(countOf(second), 2);
  string = CharString();
  EXPECT_TRUE(string.isNull());
  EXPECT_EQ(countOf(second), 1);
}

TEST(CharString, AssignmentOfTheSameBufferLeavesTheCount) {
  CharString string("abc");
  const CharString sharing(string);
  string = sharing;
  EXPECT_EQ(countOf(string), 2);
  string = *&string;
  EXPECT_EQ(countOf(string), 2);
  EXPECT_STREQ(string.chars(), "abc");
}

TEST(CharString, SelfAssignmentOfASoleOwnerLeavesTheCount) {
  CharString string("abc");
  const CharString& same = string;
  string = same;
  EXPECT_EQ(countOf(string), 1);
  EXPECT_STREQ(string.chars(), "abc");
}

TEST(CharString, WritingThroughOneHandleLeavesTheOther) {
  CharString first("abc");
  const CharString second(first);
  first = "xyz";
  EXPECT_STREQ(second.chars(), "abc");
  EXPECT_EQ(countOf(second), 1);
  EXPECT_STREQ(first.chars(), "xyz");
  EXPECT_EQ(countOf(first), 1);
}

TEST(CharString, MovingGivesTheBufferUp) {
  CharString first("abc");
  CharString second(std::move(first));
  EXPECT_TRUE(first.isNull());  // NOLINT(bugprone-use-after-move): the state is what is tested
  EXPECT_EQ(countOf(second), 1);
  CharString third("old");
  third = std::move(second);
  EXPECT_TRUE(second.isNull());  // NOLINT(bugprone-use-after-move)
  EXPECT_STREQ(third.chars(), "abc");
  CharString& same = third;
  third = std::move(same);
  EXPECT_STREQ(third.chars(), "abc");
}

TEST(CharString, FreeMemReleasesOneShare) {
  CharString first("abc");
  const CharString second(first);
  first.freeMem();
  EXPECT_TRUE(first.isNull());
  EXPECT_EQ(countOf(second), 1);
  first.freeMem();
  EXPECT_TRUE(first.isNull());
}

TEST(CharString, EqualityTellsNullFromEmpty) {
  EXPECT_TRUE(CharString() == CharString());
  EXPECT_TRUE(CharString("") == CharString(""));
  EXPECT_TRUE(CharString("abc") == CharString("abc"));
  EXPECT_FALSE(CharString() == CharString(""));
  EXPECT_FALSE(CharString("") == CharString());
  EXPECT_FALSE(CharString("abc") == CharString("abd"));
  EXPECT_FALSE(CharString("abc") == CharString("ab"));
}

TEST(CharString, ATextEndsAtItsFirstNul) {
  const CharString string("a\0b");
  EXPECT_STREQ(string.chars(), "a");
  EXPECT_TRUE(string == CharString("a"));
}

TEST(CharStringSet, JoinsTwoParts) {
  CharString string;
  string.set("ab", "cd");
  EXPECT_STREQ(string.chars(), "abcd");
  string.set("longer than ", "what was there before, and too long for the inside of the buffer");
  EXPECT_STREQ(string.chars(),
               "longer than what was there before, and too long for the inside of the buffer");
}

TEST(CharStringSet, MissingOrEmptyPartGivesNull) {
  struct Row {
    const char* first;
    const char* second;
  };
  const Row rows[] = {{"ab", ""}, {"ab", nullptr}, {"", "cd"},         {nullptr, "cd"},
                      {"", ""},   {nullptr, ""},   {nullptr, nullptr}, {"", nullptr}};
  for (const Row& row : rows) {
    CharString string("before");
    const CharString sharing(string);
    string.set(row.first, row.second);
    EXPECT_TRUE(string.isNull());
    EXPECT_EQ(countOf(sharing), 1);
  }
}

TEST(CharStringSet, SharedBufferIsLeftToTheOthers) {
  CharString string("before");
  const CharString sharing(string);
  string.set("ab", "cd");
  EXPECT_STREQ(string.chars(), "abcd");
  EXPECT_STREQ(sharing.chars(), "before");
  EXPECT_EQ(countOf(string), 1);
  EXPECT_EQ(countOf(sharing), 1);
}

TEST(CharStringSet, SoleOwnerKeepsItsBuffer) {
  CharString string("before");
  const CharStringBuf* buffer = string.buffer;
  string.set("ab", "cd");
  EXPECT_EQ(string.buffer, buffer);
}

TEST(MakeCharString, JoinsWhatIsThere) {
  struct Row {
    const char* a;
    const char* b;
    const char* c;
    const char* joined;
  };
  const Row rows[] = {
      {"a", "b", "c", "abc"},
      {"a", nullptr, "c", "ac"},
      {nullptr, "", nullptr, ""},
      {nullptr, nullptr, nullptr, "<null>"},
      {nullptr, nullptr, "c", "c"},
      {nullptr, "b", "c", "bc"},
      {"", "", "", ""},
      {"a", "", "", "a"},
      {"", nullptr, "c", "c"},
      {nullptr, nullptr, "", ""},
      {"Expected \"", ")", "\"", "Expected \")\""},
  };
  for (const Row& row : rows) {
    const CharString joined = makeCharString(row.a, row.b, row.c);
    EXPECT_EQ(textOf(joined), row.joined);
    EXPECT_EQ(joined.isNull() ? 1 : countOf(joined), 1);
  }
}

TEST(CharStringAppend, SharedBufferIsLeftToTheOthers) {
  CharString string("ab");
  const CharString sharing(string);
  string.append("cd");
  EXPECT_STREQ(string.chars(), "abcd");
  EXPECT_STREQ(sharing.chars(), "ab");
  EXPECT_EQ(countOf(sharing), 1);
}

}  // namespace
