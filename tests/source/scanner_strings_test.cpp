#include <gtest/gtest.h>

#include <cstring>
#include <memory>
#include <string>

#include "kelp/utils/exceptions.h"
#include "tests/support/allocations.h"
#include "tests/support/tokenlist.h"

using namespace Kelp;
using KelpTest::TextScanner;
using KelpTest::tokensOf;

namespace {

struct Row {
  std::string text;
  std::string decoded;
};

// What the rules of escapes make of a literal, and literals without any.
const Row kRows[] = {
    {R"("")", ""},
    {R"("abc")", "abc"},
    {R"("a\"b")", R"(a"b)"},
    {R"("\"")", R"(")"},
    {R"("\\")", R"(\)"},
    {R"("\\\\")", R"(\\)"},
    {R"("\\\"")", R"(\")"},
    {R"("\\n")", R"(\n)"},
    {R"("a\nb")", R"(a\nb)"},
    {R"("\a\\b\"c\")" + std::string("\""), R"(\a\b"c")"},
    {R"("C:\dir\file")", R"(C:\dir\file)"},
    {"\"\\\n\"", "\\\n"},
    {"\"a\nb\n\"", "a\nb\n"},
    {"\"a\r\nb\"", "a\r\nb"},
    {"\"\t\x01\x7F\"", "\t\x01\x7F"},
    {"\"\xC3\xA9\xFF\"", "\xC3\xA9\xFF"},
    {"\"// /* #include\"", "// /* #include"},
    {"\"\n#include \"", "\n#include "},
    {"\"0123456789abcde\"", "0123456789abcde"},
    {"\"0123456789abcdef\"", "0123456789abcdef"},
    {"\"0123456789abcdefg\"", "0123456789abcdefg"},
};

std::string recordedText(const Token& token) {
  const auto* characters = reinterpret_cast<const char*>(token.overflow[0]);
  return characters == nullptr ? "<no record>" : std::string(characters, token.overflow[1]);
}

std::string textOf(const Token& token) {
  return token.text.count == 0
             ? ""
             : std::string(token.text.data, static_cast<size_t>(token.text.count));
}

std::string inQuotes(const std::string& text) { return '"' + text + '"'; }

}  // namespace

TEST(ScannerStrings, TextIsDecodedAndRecorded) {
  for (const Row& row : kRows) {
    TextScanner source(row.text + "x");
    source.next();
    EXPECT_EQ(source.token.type, TOKEN_STRING) << row.text;
    EXPECT_EQ(textOf(source.token), row.decoded) << row.text;
    EXPECT_EQ(source.token.overflowCount, 0);
    EXPECT_EQ(recordedText(source.token), row.decoded) << row.text;
    EXPECT_NE(source.token.overflow[0], 0U) << row.text;
    EXPECT_EQ(source.token.overflow[2], reinterpret_cast<uintptr_t>(source.reader.position.source));
    EXPECT_EQ(source.next(), "id:x") << row.text;
  }
}

TEST(ScannerStrings, SkipScanLeavesOnlyTheTextOut) {
  for (const Row& row : kRows) {
    TextScanner source(row.text + "x");
    source.scanner.skipScan(source.token);
    EXPECT_EQ(source.token.type, TOKEN_STRING) << row.text;
    EXPECT_EQ(source.token.text.count, 0) << row.text;
    EXPECT_EQ(recordedText(source.token), row.decoded) << row.text;
    EXPECT_EQ(source.token.overflow[2], reinterpret_cast<uintptr_t>(source.reader.position.source));
    EXPECT_EQ(source.next(), "id:x") << row.text;
  }
}

TEST(ScannerStrings, SkipScanReadsOtherTokensAsScanDoes) {
  const char* text = "a 5.e2 @ ( nan //\n .";
  TextScanner source(text);
  std::string list;
  for (source.scanner.skipScan(source.token); source.token.type != TOKEN_END;
       source.scanner.skipScan(source.token)) {
    list += (list.empty() ? "" : " ") + KelpTest::shown(source.token);
  }
  EXPECT_EQ(list, tokensOf(text));
}

TEST(ScannerStrings, OnlyStringsHaveARecord) {
  TextScanner source("a 5 ; @ nan");
  while (source.next() != "end") {
    for (const uint64_t word : source.token.overflow) EXPECT_EQ(word, 0U);
  }
}

TEST(ScannerStrings, MoreThan1023CharactersCountAsOverflow) {
  const std::pair<size_t, int> rows[] = {{0, 0},    {1, 0},    {1022, 0},    {1023, 0},
                                         {1024, 1}, {1025, 2}, {5000, 3977}, {1000000, 998977}};
  for (const auto& [length, overflow] : rows) {
    const std::string text(length, 's');
    TextScanner source(inQuotes(text));
    source.next();
    EXPECT_EQ(source.token.overflowCount, overflow) << length;
    EXPECT_EQ(textOf(source.token), text) << length;
    EXPECT_EQ(recordedText(source.token), text) << length;
  }
}

TEST(ScannerStrings, SkippedLongStringCountsAsOverflowToo) {
  TextScanner source(inQuotes(std::string(1024, 's')));
  source.scanner.skipScan(source.token);
  EXPECT_EQ(source.token.overflowCount, 1);
  EXPECT_EQ(source.token.text.count, 0);
}

TEST(ScannerStrings, OverflowCountsDecodedCharacters) {
  std::string literal;
  for (int i = 0; i < 1023; ++i) literal += R"(\")";
  TextScanner atLimit(inQuotes(literal));
  atLimit.next();
  EXPECT_EQ(atLimit.token.overflowCount, 0);
  TextScanner above(inQuotes(literal + "x"));
  above.next();
  EXPECT_EQ(above.token.overflowCount, 1);
  EXPECT_EQ(recordedText(above.token), std::string(1023, '"') + "x");
}

TEST(ScannerStrings, NextTokenForgetsTheRecord) {
  TextScanner source(inQuotes(std::string(2000, 's')) + " a");
  source.next();
  EXPECT_EQ(source.next(), "id:a");
  EXPECT_EQ(source.token.overflowCount, 0);
  for (const uint64_t word : source.token.overflow) EXPECT_EQ(word, 0U);
}

TEST(ScannerStrings, RecordOfPlainTextLiesInTheSource) {
  TextScanner source(R"("plain" "esc\\aped")");
  source.next();
  const Source& bytes = *source.reader.position.source;
  EXPECT_EQ(source.token.overflow[0], reinterpret_cast<uintptr_t>(bytes.begin + 1));
  source.next();
  const auto* decoded = reinterpret_cast<const char*>(source.token.overflow[0]);
  EXPECT_TRUE(decoded < bytes.begin || decoded >= bytes.end);
}

TEST(ScannerStrings, RecordsOutliveScannerAndToken) {
  SourcesReader reader;
  const std::string text = inQuotes("plain") + inQuotes(R"(a\"b)");
  reader.openText(text.data(), static_cast<int64_t>(text.size()), nullptr);
  uint64_t records[2][2];
  {
    Scanner scanner(&reader);
    for (auto& record : records) {
      Token token;
      scanner.scan(token);
      std::memcpy(record, token.overflow, sizeof record);
    }
  }
  reader.openText("other", 5, nullptr);
  const auto text0 = reinterpret_cast<const char*>(records[0][0]);
  const auto text1 = reinterpret_cast<const char*>(records[1][0]);
  EXPECT_EQ(std::string(text0, records[0][1]), "plain");
  EXPECT_EQ(std::string(text1, records[1][1]), "a\"b");
}

TEST(ScannerStrings, ScanningPlainTextAllocatesNothingOnceTheSlotIsLargeEnough) {
  const std::string text =
      inQuotes(std::string(300, 's')) + " a " + inQuotes(std::string(200, 't'));
  TextScanner source(text);
  source.next();
  const int64_t before = KelpTest::allocationCount();
  source.scanner.scan(source.token);
  source.scanner.scan(source.token);
  EXPECT_EQ(KelpTest::allocationCount(), before);
  EXPECT_EQ(source.token.text.count, 200);
}

TEST(ScannerStrings, ExhaustedMemoryLeaksNoDecodedCopy) {
  const std::string text = inQuotes(R"(a\"b)");
  bool failed = true;
  for (int64_t n = 1; failed; ++n) {
    const int64_t before = KelpTest::liveAllocations();
    {
      TextScanner source(text);
      const KelpTest::FailingAllocation failure(n);
      try {
        source.scanner.scan(source.token);
      } catch (const std::bad_alloc&) {
      }
      failed = failure.hasFailed();
    }
    EXPECT_EQ(KelpTest::liveAllocations(), before) << n;
  }
}

TEST(ScannerStrings, AdjacentStringsStaySeparate) {
  EXPECT_EQ(tokensOf(R"("a""b" "c")"), "str:a str:b str:c");
}
