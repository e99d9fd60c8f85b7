#include "kelp/utils/exceptions.h"

#include <gtest/gtest.h>

#include <cstring>
#include <exception>
#include <string>
#include <type_traits>
#include <utility>

#include "tests/support/allocations.h"
#include "tests/support/failures.h"
#include "tests/support/parsing.h"
#include "tests/support/placement.h"

using namespace Kelp;

namespace {

// Two families, unrelated to each other and to the standard's; copies must not throw.
template <class E>
constexpr bool isOfTheFamily =
    std::is_base_of_v<Exception, E>&& std::is_convertible_v<E*, Exception*> &&
    !std::is_base_of_v<std::exception, E> && !std::is_polymorphic_v<E> &&
    sizeof(E) == sizeof(CharString) && std::is_nothrow_copy_constructible_v<E> &&
    std::is_nothrow_destructible_v<E> && std::is_nothrow_constructible_v<E, const CharString&>;
static_assert(isOfTheFamily<InvalidSyntaxException>);
static_assert(isOfTheFamily<NotIndexableException>);
static_assert(isOfTheFamily<InvalidSourceFile>);
static_assert(std::is_empty_v<Exception> && !std::is_polymorphic_v<Exception>);
static_assert(!std::is_base_of_v<Exception, ExceptionMsg>);
static_assert(!std::is_base_of_v<std::exception, ExceptionMsg>);
static_assert(std::has_virtual_destructor_v<ExceptionMsg>);
static_assert(std::is_nothrow_copy_constructible_v<ExceptionMsg>);
static_assert(sizeof(ExceptionMsg) == sizeof(void*) + 1024);

TEST(ExceptionMsg, FormatWithoutConversionsIsTheText) {
  EXPECT_STREQ(ExceptionMsg("[_SequenceBlock] Could not allocate memory").what(),
               "[_SequenceBlock] Could not allocate memory");
}

TEST(ExceptionMsg, ArgumentsAreFormatted) {
  EXPECT_STREQ(ExceptionMsg("%s: %d%%", "load", 75).what(), "load: 75%");
}

TEST(ExceptionMsg, LongTextsAreCutAt1023Characters) {
  for (const size_t length : {0U, 1U, 1022U, 1023U, 1024U, 1025U, 5000U}) {
    const std::string text(length, 'x');
    const ExceptionMsg message("%s", text.c_str());
    EXPECT_EQ(message.what(), text.substr(0, 1023));
  }
}

TEST(ExceptionMsg, ConversionThatFailsLeavesATerminatedText) {
  const wchar_t unrepresentable[] = {wchar_t{0x20AC}, 0};  // in the "C" locale
  const ExceptionMsg message("abc %ls def", unrepresentable);
  EXPECT_LT(std::strlen(message.what()), 1024U);
}

TEST(ExceptionMsg, IsCopiedWithItsTextAndWithoutTheHeap) {
  const int64_t before = KelpTest::allocationCount();
  const ExceptionMsg original("text %d", 1);
  const ExceptionMsg copy(original);
  EXPECT_EQ(KelpTest::allocationCount(), before);
  EXPECT_STREQ(copy.what(), "text 1");
  EXPECT_NE(copy.what(), original.what());
}

TEST(ExceptionMsg, NoHandlerOfTheOtherFamilyTakesIt) {
  try {
    throw ExceptionMsg("text");
  } catch (const Exception&) {
    FAIL();
  } catch (const std::exception&) {
    FAIL();
  } catch (const ExceptionMsg& error) {
    EXPECT_STREQ(error.what(), "text");
  }
}

template <class E>
void expectSharing() {
  const CharString text("Expected a number literal");
  const int64_t before = KelpTest::allocationCount();
  {
    const E error(text);
    EXPECT_EQ(error.message.buffer, text.buffer);
    EXPECT_EQ(text.buffer->referenceCount, 2);
    const E copy(error);
    EXPECT_EQ(text.buffer->referenceCount, 3);
  }
  EXPECT_EQ(text.buffer->referenceCount, 1);
  EXPECT_EQ(KelpTest::allocationCount(), before);
  const E silent((CharString()));
  EXPECT_TRUE(silent.message.isNull());
  const E copyOfSilent(silent);
  EXPECT_TRUE(copyOfSilent.message.isNull());
}

TEST(LightExceptions, ShareTheirMessage) {
  expectSharing<InvalidSyntaxException>();
  expectSharing<NotIndexableException>();
  expectSharing<InvalidSourceFile>();
}

TEST(LightExceptions, LastCopyFreesTheMessageOnce) {
  const int64_t before = KelpTest::liveAllocations();
  {
    const InvalidSyntaxException first{CharString("text")};
    InvalidSyntaxException second(first);
    second = first;
    EXPECT_EQ(first.message.buffer->referenceCount, 2);
  }
  EXPECT_EQ(KelpTest::liveAllocations(), before);
}

TEST(LightExceptions, DestructorLeavesTheMessageNull) {
  KelpTest::Placed<InvalidSyntaxException> error(0x5A, CharString("text"));
  error.destroy();
  EXPECT_EQ(error.fieldAt<void*>(0), nullptr);
}

TEST(LightExceptions, OneHandlerTakesTheWholeFamily) {
  int taken = 0;
  for (int kind = 0; kind < 3; ++kind) {
    try {
      if (kind == 0) throw InvalidSyntaxException(CharString("text"));
      if (kind == 1) throw NotIndexableException(CharString());
      throw InvalidSourceFile(CharString("text"));
    } catch (const Exception&) {
      ++taken;
    }
  }
  EXPECT_EQ(taken, 3);
}

TEST(LightExceptions, HandlerOfASyntaxErrorHoldsTheOnlyReference) {
  KelpTest::TextParser source(")");
  TreeParser& parser = source.started();
  try {
    parser.parseExpression();
    FAIL();
  } catch (const InvalidSyntaxException& error) {
    ASSERT_FALSE(error.message.isNull());
    EXPECT_EQ(error.message.buffer->referenceCount, 1);
  }
}

TEST(LightExceptions, MemoryFailureReplacesTheErrorThatItInterrupts) {
  const char* const texts[] = {"1 +", "Vector(1,2", "-(a.b[1)", "List(1, interpolate((1,2), (3)))"};
  for (const char* text : texts) {
    KelpTest::parsedExpression(text);  // so that no pool needs a block below
    const int live = KelpTest::livePoolElements();
    int64_t failures = 0;
    for (int64_t n = 1;; ++n) {
      KelpTest::TextParser source(text);
      bool syntaxError = false;
      const bool failed = KelpTest::runsOutOfMemory(n, [&] {
        try {
          source.started().parseExpression();
        } catch (const InvalidSyntaxException&) {
          syntaxError = true;
        }
      });
      EXPECT_NE(failed, syntaxError) << text << ' ' << n;
      EXPECT_EQ(KelpTest::livePoolElements(), live) << text << ' ' << n;
      if (!failed) break;
      ++failures;
    }
    EXPECT_GT(failures, 0) << text;
  }
}

}  // namespace
