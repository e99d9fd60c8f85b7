// The token ring, accepting tokens and recording errors, over scanners that write down their calls.
#include <gtest/gtest.h>

#include <new>
#include <string>
#include <utility>
#include <vector>

#include "kelp/parser/treeparser.h"
#include "tests/support/tokenlist.h"

using namespace Kelp;
using KelpTest::shown;

namespace {

// Hands out prepared tokens, the end token behind them, and writes down what was called.
class RecordingScanner : public Scanner {
 public:
  RecordingScanner(SourcesReader* source, std::vector<std::pair<TOKENTYPE, std::string>> list)
      : Scanner(source), prepared(std::move(list)) {}

  void scan(Token& token) override { _give("scan", token); }
  void skipScan(Token& token) override { _give("skip", token); }

  std::string calls;
  size_t failAt = SIZE_MAX;  // number of the token that is not to be had
  bool slotsWereEmpty = true;

 private:
  void _give(const char* call, Token& token) {
    calls += (calls.empty() ? "" : " ") + std::string(call);
    slotsWereEmpty = slotsWereEmpty && token.type == TOKEN_END && token.overflowCount == 0 &&
                     token.text.count == 0 && token.overflow[0] == 0 && token.overflow[1] == 0 &&
                     token.overflow[2] == 0;
    if (given == failAt) throw InvalidSourceFile(CharString("no more"));
    if (given >= prepared.size()) return;  // an empty slot is the end token
    const auto& [type, text] = prepared[given++];
    token.type = type;
    token.overflowCount = 3;
    token.overflow[0] = token.overflow[1] = token.overflow[2] = given;
    token.text.append(text.data(), static_cast<int64_t>(text.size()));
  }

  std::vector<std::pair<TOKENTYPE, std::string>> prepared;
  size_t given = 0;
};

class Frame : public testing::Test {
 protected:
  SourcesReader reader;
  RecordingScanner scanner{&reader,
                           {{TOKEN_IDENTIFIER, "a"},
                            {TOKEN_STRING, "text"},
                            {TOKEN_SEMICOLON, ";"},
                            {TOKEN_NUMBER, "5"}}};
  TreeParser parser{&scanner};
};

class EmptyFrame : public testing::Test {
 protected:
  SourcesReader reader;
  RecordingScanner scanner{&reader, {}};
  TreeParser parser{&scanner};
};

}  // namespace

TEST_F(Frame, FreshParserHasNoTokens) {
  EXPECT_EQ(parser.scanner, &scanner);
  EXPECT_EQ(parser.current, 0);
  EXPECT_EQ(parser.lookahead, -1);
  EXPECT_EQ(parser.collectReferenceNames, 0);
  EXPECT_TRUE(parser.nameAffix.isNull());
  EXPECT_FALSE(parser.affixIsSuffix);
  EXPECT_EQ(parser.referenceNames.count, 0);
  EXPECT_TRUE(parser.errorInfo.getErrorText().isNull());
  EXPECT_EQ(parser.errorInfo.getErrorLine(), 0);
  EXPECT_TRUE(parser.errorInfo.getErrorFile().isNull());
  for (const Token& token : parser.tokens) {
    EXPECT_EQ(token.text.count, 0);
    for (const uint64_t word : token.overflow) EXPECT_EQ(word, 0U);
  }
  EXPECT_EQ(scanner.calls, "");
}

TEST_F(EmptyFrame, InputWithoutTokensIsScannedOnce) {
  parser.scanAheadToken(false);
  EXPECT_EQ(scanner.calls, "scan");
  EXPECT_EQ(parser._currentToken().type, TOKEN_END);
  EXPECT_EQ(parser.current, 0);
  EXPECT_EQ(parser.lookahead, -1);
}

TEST_F(EmptyFrame, AdvancingAtTheEndScansAgain) {
  parser.scanAheadToken(false);
  parser.scanAheadToken(true);
  EXPECT_EQ(scanner.calls, "scan scan");
  EXPECT_EQ(parser._currentToken().type, TOKEN_END);
  EXPECT_EQ(parser.lookahead, -1);
}

TEST_F(Frame, FirstAdvanceReadsTheTokenAndTheOneBehindIt) {
  parser.scanAheadToken(false);
  EXPECT_EQ(scanner.calls, "scan scan");
  EXPECT_EQ(parser.current, 0);
  EXPECT_EQ(parser.lookahead, 1);
  EXPECT_EQ(shown(parser.tokens[0]), "id:a");
  EXPECT_EQ(shown(parser.tokens[1]), "str:text");
}

TEST_F(Frame, FirstAdvanceFillsTheSlotThatIsCurrent) {
  parser.current = 1;
  parser.scanAheadToken(false);
  EXPECT_EQ(parser.current, 1);
  EXPECT_EQ(parser.lookahead, 0);
  EXPECT_EQ(shown(parser.tokens[1]), "id:a");
  EXPECT_EQ(shown(parser.tokens[0]), "str:text");
}

TEST_F(Frame, LaterAdvancesReadOneTokenEach) {
  parser.scanAheadToken(false);
  parser.scanAheadToken(false);
  EXPECT_EQ(scanner.calls, "scan scan scan");
  EXPECT_EQ(parser.current, 1);
  EXPECT_EQ(parser.lookahead, 0);
  EXPECT_EQ(shown(parser.tokens[1]), "str:text");
  EXPECT_EQ(shown(parser.tokens[0]), ";");
}

TEST_F(Frame, SkippingWithNothingBufferedSkipsTheLookAheadOnly) {
  parser.scanAheadToken(true);
  EXPECT_EQ(scanner.calls, "scan skip");
  parser.scanAheadToken(true);
  EXPECT_EQ(scanner.calls, "scan skip skip");
}

TEST_F(Frame, TokenBeforeTheEndHasTheEndBehindIt) {
  for (int i = 0; i < 4; ++i) parser.scanAheadToken(false);
  EXPECT_EQ(shown(parser._currentToken()), "num:5");
  ASSERT_GE(parser.lookahead, 0);
  EXPECT_EQ(parser.tokens[parser.lookahead].type, TOKEN_END);
  EXPECT_EQ(scanner.calls, "scan scan scan scan scan");
  parser.scanAheadToken(false);
  EXPECT_EQ(parser._currentToken().type, TOKEN_END);
  EXPECT_EQ(parser.lookahead, -1);
  EXPECT_EQ(scanner.calls, "scan scan scan scan scan");
}

TEST_F(Frame, SlotsAreEmptiedBeforeEveryScanAndKeepTheirArrays) {
  parser.scanAheadToken(false);
  const char* arrays[] = {parser.tokens[0].text.data, parser.tokens[1].text.data};
  for (int i = 0; i < 4; ++i) parser.scanAheadToken(false);
  EXPECT_TRUE(scanner.slotsWereEmpty);
  EXPECT_EQ(parser.tokens[0].text.data, arrays[0]);
  EXPECT_EQ(parser.tokens[1].text.data, arrays[1]);
}

TEST_F(Frame, AcceptedTokenIsPassed) {
  parser.scanAheadToken(false);
  EXPECT_EQ(parser._accept(TOKEN_IDENTIFIER), 1);
  EXPECT_EQ(shown(parser._currentToken()), "str:text");
  EXPECT_EQ(scanner.calls, "scan scan scan");
  EXPECT_EQ(parser._currentToken().text.count, 4);
}

TEST_F(Frame, RefusedTokenStaysAndIsTerminated) {
  parser.scanAheadToken(false);
  EXPECT_EQ(parser._accept(TOKEN_STRING), 0);
  EXPECT_EQ(parser.current, 0);
  EXPECT_EQ(parser.lookahead, 1);
  EXPECT_EQ(scanner.calls, "scan scan");
  EXPECT_EQ(parser.tokens[0].text.count, 2);
  EXPECT_EQ(parser.tokens[0].text.data[1], '\0');
  EXPECT_STREQ(parser.tokens[0].getSpelling(), "a");
  EXPECT_EQ(parser.tokens[0].text.count, 3);
  EXPECT_TRUE(parser.errorInfo.getErrorText().isNull());
}

TEST_F(Frame, SpellingAskedForTwiceIsTheSame) {
  parser.scanAheadToken(false);
  parser.scanAheadToken(false);
  EXPECT_STREQ(parser._currentToken().getSpelling(), "text");
  EXPECT_STREQ(parser._currentToken().getSpelling(), "text");
  EXPECT_EQ(parser._currentToken().text.count, 6);
}

TEST_F(EmptyFrame, EndTokenIsAcceptedOrRefusedLikeAnyOther) {
  parser.scanAheadToken(false);
  EXPECT_EQ(parser._accept(TOKEN_SEMICOLON), 0);
  EXPECT_EQ(parser._currentToken().text.count, 1);
  EXPECT_EQ(parser._accept(TOKEN_END), 1);
  EXPECT_EQ(scanner.calls, "scan scan");
}

TEST_F(Frame, OtherCodesFailEveryTest) {
  RecordingScanner odd(&reader, {{static_cast<TOKENTYPE>(99), "odd"}});
  TreeParser oddParser(&odd);
  oddParser.scanAheadToken(false);
  for (int code = 0; code <= 22; ++code) {
    EXPECT_EQ(oddParser._accept(static_cast<TOKENTYPE>(code)), 0) << code;
  }
  EXPECT_STREQ(oddParser._currentToken().getSpelling(), "odd");
}

TEST_F(Frame, ExceptionOfTheFirstScanPasses) {
  scanner.failAt = 0;
  try {
    parser.scanAheadToken(false);
    FAIL() << "nothing was thrown";
  } catch (const InvalidSourceFile& failure) {
    EXPECT_STREQ(failure.message.chars(), "no more");
  }
  EXPECT_TRUE(parser.errorInfo.getErrorText().isNull());
}

TEST_F(Frame, ExceptionOfTheLookAheadPassesThroughAdvanceAndAccept) {
  scanner.failAt = 1;
  EXPECT_THROW(parser.scanAheadToken(false), InvalidSourceFile);
  EXPECT_EQ(shown(parser.tokens[0]), "id:a");

  RecordingScanner second(&reader, {{TOKEN_IDENTIFIER, "a"}, {TOKEN_PLUS, "+"}});
  second.failAt = 2;
  TreeParser secondParser(&second);
  secondParser.scanAheadToken(false);
  EXPECT_THROW(secondParser._accept(TOKEN_IDENTIFIER), InvalidSourceFile);
  EXPECT_EQ(shown(secondParser._currentToken()), "+");
}

TEST(FrameErrors, SetErrorRecordsTextLineAndFile) {
  KelpTest::TextScanner source("a\nb\nc", "dir/name.scene");
  TreeParser parser(&source.scanner);
  parser.scanAheadToken(false);
  parser.setError(CharString("what"));
  EXPECT_STREQ(parser.errorInfo.getErrorText().chars(), "what");
  EXPECT_EQ(parser.errorInfo.getErrorLine(), 2) << "the reader is one token ahead";
  EXPECT_STREQ(parser.errorInfo.getErrorFile().chars(), "dir/name.scene");
}

TEST(FrameErrors, SetErrorWithoutATextStillSetsLineAndFile) {
  KelpTest::TextScanner source("a\nb", "name.scene");
  TreeParser parser(&source.scanner);
  parser.scanAheadToken(false);
  parser.setError(CharString("before"));
  parser.scanAheadToken(false);
  source.reader.openText("", 0, "other.scene");
  parser.setError(CharString());
  EXPECT_TRUE(parser.errorInfo.getErrorText().isNull());
  EXPECT_EQ(parser.errorInfo.getErrorLine(), 1);
  EXPECT_STREQ(parser.errorInfo.getErrorFile().chars(), "other.scene");
}

TEST(FrameErrors, FileOfARecordedErrorIsSharedWithTheReader) {
  KelpTest::TextScanner source("a", "name.scene");
  TreeParser parser(&source.scanner);
  const CharString file = source.reader.getCurrentFile();
  const int before = file.buffer->referenceCount;
  parser.setError(CharString("what"));
  EXPECT_EQ(file.buffer->referenceCount, before + 1);
}

TEST(FrameErrors, SuccessfulParseDoesNotClearTheRecord) {
  KelpTest::TextScanner source("A {}", "name.scene");
  TreeParser parser(&source.scanner);
  parser.setError(CharString("before"));
  ProgramAST* program = parser.parseProgram();
  ASSERT_NE(program, nullptr);
  program->deleteThis();
  EXPECT_STREQ(parser.errorInfo.getErrorText().chars(), "before");
}
