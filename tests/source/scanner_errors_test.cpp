// Texts that no token can be made of, and the places that the scanner reports.
#include <gtest/gtest.h>

#include <string>

#include "kelp/utils/exceptions.h"
#include "tests/support/tokenlist.h"

using namespace Kelp;
using namespace std::string_literals;
using KelpTest::scanErrorOf;
using KelpTest::TextScanner;
using KelpTest::tokensOf;

namespace {

struct Row {
  std::string text;
  const char* message;
};

template <size_t n>
void expectErrors(const Row (&rows)[n]) {
  for (const Row& row : rows) EXPECT_EQ(scanErrorOf(row.text), row.message) << row.text;
}

std::string place(const Scanner& scanner, int back) {
  const SourceLocation location = scanner.locate(back);
  const std::string file = location.file.isNull() ? "<null>" : location.file.chars();
  return file + ':' + std::to_string(location.line) + ':' + std::to_string(location.column) + '|' +
         location.sourceLine;
}

}  // namespace

TEST(ScannerErrors, StringThatNeverEndsNamesTheLineItBeganOn) {
  expectErrors({
      {"\"", "The string that begins on line 1 never ends"},
      {"\"abc", "The string that begins on line 1 never ends"},
      {"a\n\"b\nc\nd", "The string that begins on line 2 never ends"},
      {"\"abc\\\"", "The string that begins on line 1 never ends"},
      {"\"abc\\", "The string that begins on line 1 never ends"},
      {"\"a\" \"", "The string that begins on line 1 never ends"},
      {"\"" + std::string(4096, 'x'), "The string that begins on line 1 never ends"},
  });
}

TEST(ScannerErrors, CommentThatNeverEndsNamesTheLineItBeganOn) {
  expectErrors({
      {"/*", "The comment that begins on line 1 never ends"},
      {"/*/", "The comment that begins on line 1 never ends"},
      {"a\n\n/* b\nc *", "The comment that begins on line 3 never ends"},
      {"/* /* */ /*", "The comment that begins on line 1 never ends"},
  });
}

TEST(ScannerErrors, NulByteAnywhereNamesItsLine) {
  expectErrors({
      {"\0"s, "NUL byte on line 1"},
      {"a\0b"s, "NUL byte on line 1"},
      {"5\0"s, "NUL byte on line 1"},
      {"5.\0#INF"s, "NUL byte on line 1"},
      {"\n \0"s, "NUL byte on line 2"},
      {"\"a\n\0\""s, "NUL byte on line 2"},
      {"\"\\\0\""s, "NUL byte on line 1"},
      {"// a\0b"s, "NUL byte on line 1"},
      {"// a\0b\nc"s, "NUL byte on line 1"},
      {"a\n/* b\n\0 */"s, "NUL byte on line 3"},
      {"a { } \0"s, "NUL byte on line 1"},
      {"#include \"a\0b\""s, "NUL byte on line 1"},
      {"\n#include \0\"b\""s, "NUL byte on line 2"},
      {"#include\0"s, "NUL byte on line 1"},
  });
}

TEST(ScannerErrors, TokensBeforeTheFailureAreGiven) {
  EXPECT_EQ(tokensOf("a 5 \"s\" \"t"),
            "id:a num:5 str:s error: The string that begins on line 1 never ends");
  EXPECT_EQ(tokensOf("a\0b"s), "id:a error: NUL byte on line 1");
}

TEST(ScannerErrors, FailureIsMetAgainWhenScannedAgain) {
  TextScanner source("a\n \"b\nc", "scene");
  EXPECT_EQ(source.next(), "id:a");
  for (int i = 0; i < 2; ++i) {
    EXPECT_THROW(source.next(), InvalidSourceFile);
    EXPECT_TRUE(source.scanner.failed());
    EXPECT_EQ(source.reader.getCurrentLine(), 2);
  }
}

TEST(ScannerErrors, FailedHoldsForTheLastScanOnly) {
  TextScanner source("a \"");
  EXPECT_FALSE(source.scanner.failed());
  source.next();
  EXPECT_FALSE(source.scanner.failed());
  EXPECT_THROW(source.next(), InvalidSourceFile);
  EXPECT_TRUE(source.scanner.failed());
  source.reader.openText("b", 1, nullptr);
  source.next();
  EXPECT_FALSE(source.scanner.failed());
}

TEST(ScannerErrors, SkipScanFailsAsScanDoes) {
  for (const std::string& text : {"\"a"s, "/*"s, "\0"s}) {
    TextScanner source(text);
    EXPECT_THROW(source.scanner.skipScan(source.token), InvalidSourceFile) << text;
  }
}

TEST(ScannerPlaces, UnknownBeforeTheFirstToken) {
  const TextScanner source("a");
  EXPECT_EQ(place(source.scanner, 0), "<null>:0:0|");
  EXPECT_EQ(place(source.scanner, 1), "<null>:0:0|");
}

TEST(ScannerPlaces, LastTwoTokensAreRemembered) {
  TextScanner source("one two\n  three \"four\nfive\" six", "scene");
  source.next();
  EXPECT_EQ(place(source.scanner, 0), "scene:1:1|one two");
  EXPECT_EQ(place(source.scanner, 1), "<null>:0:0|");
  source.next();
  EXPECT_EQ(place(source.scanner, 0), "scene:1:5|one two");
  EXPECT_EQ(place(source.scanner, 1), "scene:1:1|one two");
  source.next();
  EXPECT_EQ(place(source.scanner, 0), "scene:2:3|  three \"four");
  source.next();
  EXPECT_EQ(place(source.scanner, 0), "scene:2:9|  three \"four");
  source.next();
  EXPECT_EQ(place(source.scanner, 0), "scene:3:7|five\" six");
  EXPECT_EQ(place(source.scanner, 1), "scene:2:9|  three \"four");
  source.next();
  EXPECT_EQ(place(source.scanner, 0), "scene:3:10|five\" six");
}

TEST(ScannerPlaces, ColumnsCountCharacters) {
  TextScanner source("\xC3\xA9 \xE2\x82\xAC \xF0\x9F\x98\x80 a\tb", "s");
  const int columns[] = {1, 3, 5, 7, 9};
  for (const int column : columns) {
    source.next();
    EXPECT_EQ(source.scanner.locate(0).column, column);
  }
}

TEST(ScannerPlaces, LineHasNoEndAndNoByteOrderMark) {
  TextScanner source(
      "\xEF\xBB\xBF"
      "a b\r\nc\r",
      "s");
  source.next();
  EXPECT_EQ(place(source.scanner, 0), "s:1:1|a b");
  source.next();
  EXPECT_EQ(place(source.scanner, 0), "s:1:3|a b");
  source.next();
  EXPECT_EQ(place(source.scanner, 0), "s:2:1|c");
}

TEST(ScannerPlaces, TokenBehindACommentOverLines) {
  TextScanner source("/* a\n b */ c", "s");
  source.next();
  EXPECT_EQ(place(source.scanner, 0), "s:2:7| b */ c");
}

TEST(ScannerPlaces, FailureIsWhereItsTokenBegan) {
  const std::pair<std::string, const char*> rows[] = {
      {"a b\n c \"d\ne", "s:2:4| c \"d"},          {"a b\n c /*d\ne", "s:2:4| c /*d"},
      {"a b\n c // d\0e"s, "s:2:4| c // d\0e"},    {"a b\n c \0"s, "s:2:4| c "},
      {"a b c\n #include x", "s:2:2| #include x"},
  };
  for (const auto& [text, expected] : rows) {
    TextScanner source(text, "s");
    for (int i = 0; i < 3; ++i) source.next();
    const std::string last = place(source.scanner, 0);
    EXPECT_THROW(source.next(), InvalidSourceFile) << text;
    EXPECT_EQ(place(source.scanner, 0).substr(0, std::string(expected).size()), expected) << text;
    EXPECT_EQ(place(source.scanner, 1), last) << text;
  }
}
