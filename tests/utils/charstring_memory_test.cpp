// Strings when memory runs out, and what they ask of it.
#include <gtest/gtest.h>

#include <string>

#include "kelp/utils/charstring.h"
#include "tests/support/allocations.h"
#include "tests/support/failures.h"
#include "tests/support/placement.h"

using Kelp::CharString;
using Kelp::makeCharString;
using KelpTest::allocationCount;
using KelpTest::liveAllocations;
using KelpTest::Placed;
using KelpTest::runsOutOfMemory;

namespace {

const std::string kLong(200, 'L');

TEST(CharStringMemory, TypicalNameCostsOneRequestAndCopiesNone) {
  const int64_t before = allocationCount();
  const CharString name("a typical name of an object");
  EXPECT_EQ(allocationCount() - before, 1);
  const CharString copy(name);
  CharString assigned;
  assigned = copy;
  EXPECT_EQ(allocationCount() - before, 1);
}

TEST(CharStringMemory, EverythingIsGivenBack) {
  const int64_t before = liveAllocations();
  {
    CharString string(kLong.c_str());
    CharString sharing(string);
    string.splitBuffer(500, 1);
    string.append("more");
    sharing.set("a", kLong.c_str());
    sharing = string;
    string = makeCharString("a", "b", kLong.c_str());
  }
  EXPECT_EQ(liveAllocations(), before);
}

TEST(CharStringMemory, FailedConstructionLeavesNothing) {
  const int64_t before = liveAllocations();
  int64_t n = 1;
  while (runsOutOfMemory(n, [] { const CharString string(kLong.c_str()); })) ++n;
  EXPECT_EQ(n, 3);  // the buffer, its characters
  EXPECT_EQ(liveAllocations(), before);
}

TEST(CharStringMemory, FailedMakeCharStringLeavesNothing) {
  const int64_t before = liveAllocations();
  int64_t n = 1;
  const auto make = [] { makeCharString("abc", kLong.c_str(), kLong.c_str()); };
  while (runsOutOfMemory(n, make)) ++n;
  EXPECT_GT(n, 3);
  EXPECT_EQ(liveAllocations(), before);
}

struct WriteRow {
  const char* name;
  void (*write)(CharString& string);
};

const WriteRow kWrites[] = {
    {"assign", [](CharString& s) { s = kLong.c_str(); }},
    {"assign own", [](CharString& s) { s = s.chars() + 1; }},
    {"set", [](CharString& s) { s.set("x", kLong.c_str()); }},
    {"set own", [](CharString& s) { s.set(s.chars(), kLong.c_str()); }},
    {"append", [](CharString& s) { s.append(kLong.c_str()); }},
    {"append own", [](CharString& s) { s.append(s.chars()); }},
    {"split", [](CharString& s) { s.splitBuffer(300, 0); }},
    {"split keeping", [](CharString& s) { s.splitBuffer(300, 1); }},
};

// Each request in turn fails; the handle must be as before: text, buffer, count, heap.
void expectUnchangedByFailure(const WriteRow& row, const char* text, bool shared) {
  for (int64_t n = 1;; ++n) {
    const int64_t before = liveAllocations();
    {
      CharString string(text);
      const CharString other(shared ? string : CharString("other"));
      const Kelp::CharStringBuf* buffer = string.buffer;
      if (!runsOutOfMemory(n, [&] { row.write(string); })) {
        EXPECT_GT(n, 1) << row.name;
        return;
      }
      EXPECT_EQ(string.buffer, buffer) << row.name << ' ' << n;
      EXPECT_STREQ(string.chars(), text) << row.name << ' ' << n;
      EXPECT_EQ(string.buffer->referenceCount, shared ? 2 : 1) << row.name << ' ' << n;
    }
    EXPECT_EQ(liveAllocations(), before) << row.name << ' ' << n;
  }
}

TEST(CharStringMemory, FailedWriteOfASharedBufferChangesNothing) {
  for (const WriteRow& row : kWrites) expectUnchangedByFailure(row, "abcdef", true);
}

TEST(CharStringMemory, FailedWriteOfASoleOwnerChangesNothing) {
  for (const WriteRow& row : kWrites)
    expectUnchangedByFailure(row, "abcdefghijklmnopqrstuvw", false);
}

TEST(CharStringMemory, FailedWriteOfNullLeavesNull) {
  for (const WriteRow& row : kWrites) {
    if (std::string(row.name).find("own") != std::string::npos) continue;
    for (int64_t n = 1;; ++n) {
      CharString string;
      const int64_t before = liveAllocations();
      if (!runsOutOfMemory(n, [&] { row.write(string); })) break;
      EXPECT_TRUE(string.isNull()) << row.name << ' ' << n;
      EXPECT_EQ(liveAllocations(), before) << row.name << ' ' << n;
    }
  }
}

TEST(CharStringMemory, DestructorLeavesNull) {
  Placed<CharString> string(0x5A, "abc");
  string.destroy();
  EXPECT_EQ(string.fieldAt<void*>(0), nullptr);
}

}  // namespace
