// White space, comments, identifiers, punctuation, the end of the text.
#include "kelp/source/scanner.h"

#include <gtest/gtest.h>

#include <string>

#include "kelp/source/characterclass.h"
#include "kelp/utils/exceptions.h"
#include "tests/support/tokenlist.h"

using namespace Kelp;
using KelpTest::TextScanner;
using KelpTest::tokensOf;

namespace {

struct Row {
  std::string text;
  const char* tokens;
};

template <size_t n>
void expectTokens(const Row (&rows)[n]) {
  for (const Row& row : rows) EXPECT_EQ(tokensOf(row.text), row.tokens) << row.text;
}

}  // namespace

TEST(Scanner, EveryKindOfWhiteSpaceSeparates) {
  expectTokens({
      {"a b", "id:a id:b"},
      {"a\tb", "id:a id:b"},
      {"a\rb", "id:a id:b"},
      {"a\nb", "id:a id:b"},
      {"a\r\nb", "id:a id:b"},
      {"a\vb", "id:a id:b"},
      {"a\fb", "id:a id:b"},
      {" \t\r\n\v\fa \t\r\n\v\f", "id:a"},
  });
}

TEST(Scanner, TextWithoutTokensIsOnlyTheEnd) {
  expectTokens({{"", ""}, {" \n\t", ""}, {"// x", ""}, {"/* x */", ""}, {"\xEF\xBB\xBF", ""}});
}

TEST(Scanner, LineComments) {
  expectTokens({
      {"a // b\nc", "id:a id:c"},
      {"a // b", "id:a"},
      {"a //", "id:a"},
      {"a//b/*\nc", "id:a id:c"},
      {"a // b \\\nc", "id:a id:c"},
      {"a // b\rc\nd", "id:a id:d"},
      {"/ /a", "/ / id:a"},
  });
}

TEST(Scanner, BlockComments) {
  expectTokens({
      {"a/* b */c", "id:a id:c"},
      {"a /**/ b", "id:a id:b"},
      {"a /***/ b", "id:a id:b"},
      {"a /* b\n// c */ d", "id:a id:d"},
      {"a /* \" */ d", "id:a id:d"},
      {"a /* b /* c */ d", "id:a id:d"},
      {"/* /* */ */", "* /"},
      {"/*/ a */ b", "id:b"},
      {"a/b", "id:a / id:b"},
      {"a/ *b", "id:a / * id:b"},
  });
}

TEST(Scanner, CommentsInsideStringsAreText) {
  EXPECT_EQ(tokensOf("\"a // b /* c */\" d"), "str:a // b /* c */ id:d");
}

TEST(Scanner, Identifiers) {
  expectTokens({
      {"a", "id:a"},
      {"_", "id:_"},
      {"Zz_09", "id:Zz_09"},
      {"a@b|c$d", "id:a@b|c$d"},
      {"a@", "id:a@"},
      {"\xC3\xA9t\xC3\xA9", "id:\xC3\xA9t\xC3\xA9"},
      {"a\x80\xFF", "id:a\x80\xFF"},
      {"\xFF", "id:\xFF"},
      {"a.b", "id:a . id:b"},
      {"a-b", "id:a - id:b"},
      {"a#b", "id:a ?:# id:b"},
      {"a'b", "id:a ?:' id:b"},
  });
}

TEST(Scanner, CharactersInsideIdentifiersStartNone) {
  expectTokens({{"@a", "?:@ id:a"}, {"|a", "?:| id:a"}, {"$a", "?:$ id:a"}, {"9a", "num:9 id:a"}});
}

TEST(Scanner, ExactlyNanIsANumber) {
  expectTokens({
      {"nan", "num:nan"},
      {"nano", "id:nano"},
      {"na", "id:na"},
      {"nan0", "id:nan0"},
      {"nan$", "id:nan$"},
      {"_nan", "id:_nan"},
      {"NaN", "id:NaN"},
      {"NAN", "id:NAN"},
      {"nan.", "num:nan ."},
      {"nan nan;", "num:nan num:nan ;"},
  });
}

TEST(Scanner, EveryByteStartsTheTokenOfItsKind) {
  const std::string letters = "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ_";
  const std::string punctuation = "().{};=+-*/,[]:";
  for (int byte = 1; byte < 256; ++byte) {
    const std::string character(1, static_cast<char>(byte));
    std::string expected = "?:" + character;
    if (byte > 127 || letters.find(character) != std::string::npos) expected = "id:" + character;
    if (byte >= '0' && byte <= '9') expected = "num:" + character;
    if (punctuation.find(character) != std::string::npos) expected = character;
    if (std::string(" \t\n\v\f\r").find(character) != std::string::npos) expected = "";
    if (byte == '"') expected = "error: The string that begins on line 1 never ends";
    EXPECT_EQ(tokensOf(character), expected) << byte;
  }
}

TEST(Scanner, EveryByteMayOrMayNotContinueAnIdentifier) {
  const std::string inside = "@|$_0123456789";
  for (int byte = 1; byte < 256; ++byte) {
    const char c = static_cast<char>(byte);
    const bool letter = (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
    const bool expected = byte > 127 || letter || inside.find(c) != std::string::npos;
    EXPECT_EQ(isInIdentifier(c), expected) << byte;
    TextScanner source(std::string("k") + c);
    source.next();
    EXPECT_EQ(source.token.text.count, expected ? 2 : 1) << byte;
  }
}

TEST(Scanner, PunctuationNeedsNoBlanks) {
  EXPECT_EQ(tokensOf("a{b=(c+d)*[e]-f/g,h::i.j;}"),
            "id:a { id:b = ( id:c + id:d ) * [ id:e ] - id:f / id:g , id:h : : id:i . id:j ; }");
}

TEST(Scanner, UnknownCharactersAreOneTokenEach) {
  EXPECT_EQ(tokensOf("!%&'<>?\\^`~\x01\x7F"),
            "?:! ?:% ?:& ?:' ?:< ?:> ?:? ?:\\ ?:^ ?:` ?:~ ?:\x01 ?:\x7F");
}

TEST(Scanner, SpellingIsNotTerminatedAndReplacesTheOneBefore) {
  TextScanner source("longer ab");
  source.next();
  EXPECT_EQ(source.token.text.count, 6);
  source.token.getSpelling();
  EXPECT_EQ(source.next(), "id:ab");
  EXPECT_EQ(source.token.text.count, 2);
}

TEST(Scanner, LongIdentifierIsTakenWhole) {
  const std::string name(100000, 'n');
  EXPECT_EQ(tokensOf(name + " " + name), "id:" + name + " id:" + name);
}

TEST(Scanner, EndTokenMayBeReadAgainAndHasNoText) {
  TextScanner source("a ");
  EXPECT_EQ(source.next(), "id:a");
  for (int i = 0; i < 3; ++i) {
    source.token.overflowCount = 1;
    EXPECT_EQ(source.next(), "end");
    EXPECT_EQ(source.token.type, TOKEN_END);
    EXPECT_EQ(source.token.overflowCount, 0);
    EXPECT_EQ(source.reader.getCurrentLine(), 1);
  }
  source.scanner.skipScan(source.token);
  EXPECT_EQ(KelpTest::shown(source.token), "end");
}

TEST(Scanner, ReaderThatNothingWasOpenedInGivesTheEnd) {
  SourcesReader reader;
  Scanner scanner(&reader);
  EXPECT_EQ(KelpTest::remainingTokens(scanner), "");
  EXPECT_EQ(KelpTest::remainingTokens(scanner), "");
}

TEST(Scanner, TextIsReadNoFurtherThanItsLength) {
  const std::string text = "ab cd ef";
  EXPECT_EQ(tokensOf(std::string_view(text).substr(0, 4)), "id:ab id:c");
  EXPECT_EQ(tokensOf(std::string_view(text).substr(0, 5)), "id:ab id:cd");
}

TEST(Scanner, LinesEndAtLineFeeds) {
  TextScanner source("a\nb\r\nc\rd\n\n\"x\ny\" e /*\n*/ f // g\n h");
  const std::pair<const char*, int> rows[] = {{"id:a", 1}, {"id:b", 2},     {"id:c", 3},
                                              {"id:d", 3}, {"str:x\ny", 6}, {"id:e", 6},
                                              {"id:f", 7}, {"id:h", 8}};
  for (const auto& [token, line] : rows) {
    EXPECT_EQ(source.next(), token);
    EXPECT_EQ(source.reader.getCurrentLine(), line) << token;
  }
}

TEST(Scanner, EndIsOnTheLastLine) {
  TextScanner source("a\n\n");
  source.next();
  source.next();
  EXPECT_EQ(source.reader.getCurrentLine(), 3);
}

TEST(Scanner, MarksBehindAWideIndentDoNotCostItEach) {
  // The indent is looked at for an #include only: for every mark this would take hours.
  const std::string text = std::string(1 << 20, ' ') + std::string(1 << 18, '#');
  TextScanner source(text);
  int marks = 0;
  while (source.next() != "end") ++marks;
  EXPECT_EQ(marks, 1 << 18);
}

TEST(Scanner, FirstMemberLeadsToTheReader) {
  TextScanner source("a");
  EXPECT_EQ(source.scanner.reader, &source.reader);
}
