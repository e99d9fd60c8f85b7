// Splitting buffers, and buffers that a host brings along.
#include <gtest/gtest.h>

#include <algorithm>
#include <climits>
#include <cstring>
#include <iterator>
#include <new>
#include <string>
#include <vector>

#include "kelp/utils/charstring.h"
#include "tests/support/placement.h"

using Kelp::CharString;
using Kelp::CharStringBuf;
using KelpTest::Placed;

namespace {

// A buffer that gives its characters a new place at every resize and spoils the old one, so that
// whoever still reads there is seen.
class MovingBuf final : public CharStringBuf {
 public:
  explicit MovingBuf(int* destroyed) : destructions(destroyed) {}
  ~MovingBuf() override { ++*destructions; }

  void resize(int bytes) override {
    ++resizes;
    lastRequest = bytes;
    if (refuse) throw std::bad_alloc();
    char* fresh = new char[static_cast<size_t>(bytes)];
    std::memcpy(fresh, data, static_cast<size_t>(std::min(bytes, held)));
    std::memset(data, '#', static_cast<size_t>(held));
    delete[] data;
    data = fresh;
    held = bytes;
  }

  void start(const char* text) {
    held = static_cast<int>(std::strlen(text)) + 1;
    data = new char[static_cast<size_t>(held)];
    std::memcpy(data, text, static_cast<size_t>(held));
  }

  int held = 0;
  int resizes = 0;
  int lastRequest = 0;
  bool refuse = false;

 private:
  int* destructions;
};

// A handle that owns a MovingBuf alone.
struct Moving {
  explicit Moving(const char* text) : buf(new MovingBuf(&destructions)) {
    buf->start(text);
    string.buffer = buf;
  }
  int destructions = 0;
  MovingBuf* buf;
  CharString string;
};

TEST(CharStringBuf, ConstructorWithoutResizeHasNoCharacters) {
  const CharStringBuf buffer{};
  EXPECT_EQ(buffer.data, nullptr);
  EXPECT_EQ(buffer.referenceCount, 1);
}

TEST(CharStringBuf, ResizeKeepsTheContentsAsFarAsTheyFit) {
  const std::string letters = "abcdefghijklmnopqrstuvwxyz";
  for (const int bytes : {1, 5, 26, 27, 39, 40, 41, 100, 1000}) {
    for (const int later : {1, 5, 26, 27, 39, 40, 41, 100, 1000}) {
      CharStringBuf buffer;
      buffer.resize(bytes);
      for (int i = 0; i < bytes; ++i) buffer.data[i] = letters[static_cast<size_t>(i) % 26];
      buffer.resize(later);
      for (int i = 0; i < std::min(bytes, later); ++i) {
        ASSERT_EQ(buffer.data[i], letters[static_cast<size_t>(i) % 26]) << bytes << ' ' << later;
      }
    }
  }
}

TEST(CharStringBuf, NeverLeavesATextWithoutItsEnd) {
  // Readers come between a split and the writes, also to memory that was in use before.
  const auto soilHeap = [](size_t bytes) {
    volatile char* block = new char[bytes];  // or else the compiler leaves it clean
    for (size_t i = 0; i < bytes; ++i) block[i] = 'x';
    delete[] block;
  };
  Placed<CharStringBuf> buffer('A');
  buffer->resize(10);
  EXPECT_EQ(strnlen(buffer->data, 40), 0U);
  soilHeap(501);
  buffer->resize(500);
  std::memset(buffer->data, 'x', 500);
  EXPECT_EQ(strnlen(buffer->data, 501), 500U);
  buffer->resize(21);
  EXPECT_EQ(strnlen(buffer->data, 500), 21U);
  buffer.destroy();
}

TEST(SplitBuffer, AlwaysAsksForOneByteMoreThanTheLength) {
  struct Recorder : CharStringBuf {
    void resize(int bytes) override { asked.push_back(bytes); }
    std::vector<int> asked;
  };
  CharString string;
  auto* recorder = new Recorder;
  string.buffer = recorder;
  const int lengths[] = {7, 0, -1, -5, INT_MIN, INT_MAX - 1};
  for (const int length : lengths) string.splitBuffer(length, 1);
  EXPECT_EQ(recorder->asked, (std::vector<int>{8, 1, 0, -4, INT_MIN + 1, INT_MAX}));
  EXPECT_THROW(string.splitBuffer(INT_MAX, 1), std::bad_alloc);
  EXPECT_EQ(recorder->asked.size(), std::size(lengths));
}

TEST(SplitBuffer, NegativeLengthsAskForNothing) {
  for (const int length : {-1, -2, -100, INT_MIN}) {
    CharString string;
    string.splitBuffer(length, 1);
    EXPECT_TRUE(string.isEmpty());
    CharString text("text");
    const CharString other = text;
    text.splitBuffer(length, 1);
    EXPECT_TRUE(text.isEmpty());
    EXPECT_EQ(text.buffer->referenceCount, 1);
    EXPECT_STREQ(other.chars(), "text");
  }
}

TEST(SplitBuffer, NullHandleGetsABuffer) {
  CharString string;
  string.splitBuffer(5, 0);
  ASSERT_FALSE(string.isNull());
  EXPECT_EQ(string.buffer->referenceCount, 1);
  std::memcpy(string.buffer->data, "12345", 6);
  EXPECT_STREQ(string.chars(), "12345");
}

TEST(SplitBuffer, ReadersAndWritersMayFollowAtOnce) {
  CharString string;
  string.splitBuffer(1000, 0);
  EXPECT_TRUE(string.isEmpty());
  EXPECT_EQ(string.length(), 0);
  string = "abc";
  EXPECT_STREQ(string.chars(), "abc");
  CharString joined;
  joined.splitBuffer(1000, 0);
  joined.set("ab", "cd");
  EXPECT_STREQ(joined.chars(), "abcd");
  CharString appended;
  appended.splitBuffer(1000, 0);
  appended.append("ab");
  EXPECT_STREQ(appended.chars(), "ab");
}

TEST(SplitBuffer, SoleOwnerKeepsItsTextWhateverKeepSays) {
  for (const int keep : {0, 1}) {
    CharString string("abcdef");
    const CharStringBuf* buffer = string.buffer;
    string.splitBuffer(20, keep);
    EXPECT_EQ(string.buffer, buffer);
    EXPECT_STREQ(string.chars(), "abcdef");
  }
}

TEST(SplitBuffer, SoleOwnerIsResizedVirtuallyToLengthPlusOne) {
  Moving moving("abcdef");
  moving.string.splitBuffer(9, 0);
  EXPECT_EQ(moving.string.buffer, moving.buf);
  EXPECT_EQ(moving.buf->lastRequest, 10);
  EXPECT_STREQ(moving.string.chars(), "abcdef");
}

TEST(SplitBuffer, SharedBufferIsCopiedAsFarAsKeptCharactersGo) {
  struct Row {
    const char* text;
    int length;
    const char* kept;
  };
  const Row rows[] = {{"abcdef", 10, "abcdef"},
                      {"abcdef", 6, "abcdef"},
                      {"abcdef", 5, "abcde"},
                      {"abcdef", 1, "a"},
                      {"abcdef", 0, ""},
                      {"", 5, ""},
                      {"", 0, ""}};
  for (const Row& row : rows) {
    const CharString original(row.text);
    CharString string(original);
    string.splitBuffer(row.length, 1);
    EXPECT_NE(string.buffer, original.buffer);
    EXPECT_STREQ(string.chars(), row.kept);
    EXPECT_STREQ(original.chars(), row.text);
    EXPECT_EQ(original.buffer->referenceCount, 1);
    EXPECT_EQ(string.buffer->referenceCount, 1);
  }
}

TEST(SplitBuffer, SharedBufferWithoutKeepIsReplaced) {
  const CharString original("abcdef");
  for (const int length : {3, 0, -1}) {
    CharString string(original);
    string.splitBuffer(length, length < 0 ? 1 : 0);
    EXPECT_NE(string.buffer, original.buffer);
    EXPECT_EQ(original.buffer->referenceCount, 1);
    EXPECT_EQ(string.length(), 0);
  }
}

TEST(SplitBuffer, LengthWithoutRoomForTheEndIsRefused) {
  CharString null;
  EXPECT_THROW(null.splitBuffer(INT_MAX, 1), std::bad_alloc);
  EXPECT_TRUE(null.isNull());
  Moving moving("abc");
  EXPECT_THROW(moving.string.splitBuffer(INT_MAX, 1), std::bad_alloc);
  EXPECT_EQ(moving.buf->resizes, 0);
  EXPECT_STREQ(moving.string.chars(), "abc");
}

TEST(CharStringBuf, HostsBufferIsDestroyedOnceThroughItsDestructor) {
  Moving moving("abc");
  {
    const CharString second(moving.string);
    CharString third;
    third = moving.string;
    moving.string.freeMem();
    EXPECT_EQ(moving.destructions, 0);
    third.freeMem();
    EXPECT_EQ(moving.destructions, 0);
    EXPECT_STREQ(second.chars(), "abc");
  }
  EXPECT_EQ(moving.destructions, 1);
}

TEST(CharStringBuf, EveryWayToLetGoDestroysTheLastShare) {
  using LetGo = void (*)(CharString&);
  const LetGo ways[] = {[](CharString& s) { s.freeMem(); },
                        [](CharString& s) { s = static_cast<const char*>(nullptr); },
                        [](CharString& s) { s = CharString(); },
                        [](CharString& s) { s = CharString("other"); },
                        [](CharString& s) { s.set("", "x"); },
                        [](CharString& s) { s.~CharString(), new (&s) CharString; }};
  for (const LetGo letGo : ways) {
    Moving moving("abc");
    letGo(moving.string);
    EXPECT_EQ(moving.destructions, 1);
  }
}

TEST(CharStringBuf, WritersResizeASoleOwnerVirtually) {
  Moving moving("abc");
  moving.string = "abcdefg";
  EXPECT_EQ(moving.buf->lastRequest, 8);
  moving.string.set("ab", "c");
  EXPECT_EQ(moving.buf->lastRequest, 4);
  moving.string.append("de");
  EXPECT_EQ(moving.buf->lastRequest, 6);
  EXPECT_EQ(moving.buf->resizes, 3);
  EXPECT_STREQ(moving.string.chars(), "abcde");
}

TEST(CharStringBuf, RefusedResizeLeavesTheText) {
  using Write = void (*)(CharString&);
  const Write writes[] = {[](CharString& s) { s = "longer than before"; },
                          [](CharString& s) { s.set("longer", " than before"); },
                          [](CharString& s) { s.append("def"); },
                          [](CharString& s) { s.splitBuffer(30, 1); }};
  for (const Write write : writes) {
    Moving moving("abc");
    moving.buf->refuse = true;
    EXPECT_THROW(write(moving.string), std::bad_alloc);
    EXPECT_STREQ(moving.string.chars(), "abc");
    EXPECT_EQ(moving.string.buffer, moving.buf);
    EXPECT_EQ(moving.buf->referenceCount, 1);
  }
}

// The arguments below lie in the string's own buffer, which moves while they are used.

struct OwnTextRow {
  const char* name;
  void (*write)(CharString& string, const char* own);
  const char* expected;
};

const OwnTextRow kOwnTextRows[] = {
    {"assign", [](CharString& s, const char* own) { s = own + 3; }, "def"},
    {"assign all", [](CharString& s, const char* own) { s = own; }, "abcdef"},
    {"assign end", [](CharString& s, const char* own) { s = own + 6; }, ""},
    {"set first", [](CharString& s, const char* own) { s.set(own, "x"); }, "abcdefx"},
    {"set second", [](CharString& s, const char* own) { s.set("x", own + 2); }, "xcdef"},
    {"set both", [](CharString& s, const char* own) { s.set(own + 4, own); }, "efabcdef"},
    {"append", [](CharString& s, const char* own) { s.append(own + 1); }, "abcdefbcdef"},
    {"append all", [](CharString& s, const char* own) { s.append(own); }, "abcdefabcdef"},
};

TEST(OwnText, OfASoleOwnerIsReadBeforeItMoves) {
  for (const OwnTextRow& row : kOwnTextRows) {
    Moving moving("abcdef");
    row.write(moving.string, moving.string.chars());
    EXPECT_STREQ(moving.string.chars(), row.expected) << row.name;
    EXPECT_EQ(moving.string.buffer, moving.buf) << row.name;
  }
}

TEST(OwnText, OfASharedBufferIsReadBeforeItGoes) {
  for (const OwnTextRow& row : kOwnTextRows) {
    Moving moving("abcdef");
    const CharString sharing(moving.string);
    row.write(moving.string, moving.string.chars());
    EXPECT_STREQ(moving.string.chars(), row.expected) << row.name;
    EXPECT_STREQ(sharing.chars(), "abcdef") << row.name;
    EXPECT_EQ(moving.buf->referenceCount, 1) << row.name;
  }
}

TEST(OwnText, InTheUsualBufferGrowingOutOfItsInside) {
  CharString string("abcdef");
  for (int i = 0; i < 5; ++i) string.set(string.chars(), string.chars());
  EXPECT_EQ(string.length(), 6 * 32);
}

TEST(OwnText, BehindTheFirstNulIsStillTheBuffersOwn) {
  const std::string tail(200, 't');
  CharString string(("key=" + tail).c_str());
  string.splitBuffer(string.length(), 1);
  string.buffer->data[3] = '\0';
  string.set(string.chars(), string.chars() + 4);
  EXPECT_EQ(std::string(string.chars()), "key" + tail);
}

}  // namespace
