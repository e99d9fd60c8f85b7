// What happens to exceptions: two kinds become a record, the others pass through.
#include <gtest/gtest.h>

#include "tests/support/balance.h"
#include "tests/support/richscenes.h"
#include "tests/support/scanners.h"

using namespace Kelp;
using namespace KelpTest;

namespace {

// A parser whose scanner does something before the token of a given number.
struct InterruptedParser {
  template <class Act>
  InterruptedParser(const std::string& text, int atToken, const Act& act) {
    reader.openText(text.data(), static_cast<int64_t>(text.size()), "test");
    scanner.before = [atToken, act](int token) {
      if (token == atToken) act();
    };
    parser.collectReferenceNames = 1;
  }

  SourcesReader reader;
  WatchedScanner scanner{&reader};
  TreeParser parser{&scanner};
};

int tokensOf(const std::string& text) {
  InterruptedParser counting(text, 0, [] {});
  const auto_ast<ProgramAST> program(counting.parser.parseProgram());
  return counting.scanner.tokens;
}

// Lets `act`, which throws a Thrown, interrupt every scene before every token.
template <class Thrown, class Act>
void expectPassesThrough(const Act& act) {
  for (const std::string& scene : richScenes()) {
    const int tokens = tokensOf(scene);
    for (int k = 1; k <= tokens; ++k) {
      expectBalanced([&] {
        InterruptedParser interrupted(scene, k, act);
        EXPECT_THROW(interrupted.parser.parseProgram(), Thrown);
        EXPECT_TRUE(interrupted.parser.errorInfo.getErrorText().isNull());
        EXPECT_EQ(interrupted.parser.referenceNames.count, 0);
      });
    }
  }
}

}  // namespace

TEST(Exceptions, OfOtherKindsPassThrough) {
  expectPassesThrough<int>([] { throw 5; });
  expectPassesThrough<ExceptionMsg>([] { throw ExceptionMsg("exhausted"); });
  expectPassesThrough<NotIndexableException>([] { throw NotIndexableException(CharString()); });
  expectPassesThrough<std::bad_alloc>([] { throw std::bad_alloc(); });
}

TEST(Exceptions, ASourceErrorBehindTheFirstTwoTokensIsRecorded) {
  for (const std::string& scene : richScenes()) {
    const int tokens = tokensOf(scene);
    for (int k = 3; k <= tokens; ++k) {
      expectBalanced([&] {
        InterruptedParser interrupted(scene, k, [] { throw InvalidSourceFile("unreadable"); });
        EXPECT_EQ(interrupted.parser.parseProgram(), nullptr);
        EXPECT_STREQ(interrupted.parser.errorInfo.getErrorText().chars(), "unreadable");
        EXPECT_EQ(interrupted.parser.referenceNames.count, 0);
      });
    }
  }
}

TEST(Exceptions, ASourceErrorOfTheFirstTwoTokensPassesThrough) {
  for (const int k : {1, 2}) {
    InterruptedParser interrupted("A a {}", k, [] { throw InvalidSourceFile("unreadable"); });
    EXPECT_THROW(interrupted.parser.parseProgram(), InvalidSourceFile);
    EXPECT_TRUE(interrupted.parser.errorInfo.getErrorText().isNull());
  }
}

TEST(Exceptions, ASourceErrorWithoutATextStillRecordsThePlace) {
  InterruptedParser interrupted("A a {\n}\n", 4, [] { throw InvalidSourceFile(CharString()); });
  EXPECT_EQ(interrupted.parser.parseProgram(), nullptr);
  EXPECT_TRUE(interrupted.parser.errorInfo.getErrorText().isNull());
  EXPECT_EQ(interrupted.parser.errorInfo.getErrorLine(), 1);
  EXPECT_STREQ(interrupted.parser.errorInfo.getErrorFile().chars(), "test");
}

TEST(Exceptions, ASyntaxErrorOwnsItsMessageAlone) {
  for (const char* text : {"(1", "foo(1)", ";", "Vector(1)", "ListVector(Vector(1,2,3)"}) {
    TextParser source(text);
    try {
      source.started().parseExpression();
      FAIL() << text;
    } catch (const InvalidSyntaxException& error) {
      EXPECT_EQ(error.message.buffer->referenceCount, 1) << text;
    }
  }
}

TEST(Exceptions, TheRecordedTextIsTheRecordsAlone) {
  TextParser source("A a { x = (1; }");
  EXPECT_EQ(source.parser.parseProgram(), nullptr);
  EXPECT_EQ(source.parser.errorInfo.getErrorText().buffer->referenceCount, 1);
}
