// What builds with assertions notice of a host's mistakes, before memory is damaged.
#include <gtest/gtest.h>

#include <thread>

#include "tests/support/parsing.h"
#include "tests/support/programs.h"
#include "tests/support/scanners.h"

using namespace Kelp;
using namespace KelpTest;

namespace {

struct Node {
  int value = 0;
};

// Runs `misuse` in a process of its own: builds with assertions end it with the message. Other
// builds do not look, which `withoutAssertions` pins where it does no damage.
template <class Misuse, class WithoutAssertions>
void expectNoticed(const char* message, Misuse misuse, WithoutAssertions withoutAssertions) {
#ifdef NDEBUG
  (void)message;
  (void)misuse;
  withoutAssertions();
#else
  (void)withoutAssertions;
  testing::FLAGS_gtest_death_test_style = "threadsafe";
  EXPECT_DEATH(misuse(), message);
#endif
}

const char* const kReturnedTwice = "an element is returned to its pool twice";

// Returns number `twice` of ten elements a second time, after all ten of them.
void returnTwice(Pool<Node>& pool, size_t twice) {
  PoolElement<Node>* elements[10];
  for (auto*& element : elements) element = pool.newElement();
  for (auto* element : elements) pool.freeElement(element);
  pool.freeElement(elements[twice]);
}

TEST(MisuseDeathTest, ElementReturnedTwice) {
  for (const size_t place : {0U, 1U, 5U, 9U}) {  // the last, some and the first on the free list
    const auto misuse = [place] {
      Pool<Node> pool;
      returnTwice(pool, place);
      EXPECT_EQ(pool.liveCount(), -1);
    };
    expectNoticed(kReturnedTwice, misuse, misuse);
  }
}

TEST(Misuse, ElementsTakenAndReturnedInAnyOrderAreNone) {
  Pool<Node> pool;
  for (int round = 0; round < 3; ++round) {
    PoolElement<Node>* elements[10];
    for (auto*& element : elements) element = pool.newElement();
    for (size_t i = 0; i < 10; ++i) {
      pool.freeElement(elements[i * 3 % 10]);
      if (i % 2 == 0) pool.freeElement(pool.newElement());
    }
    EXPECT_EQ(pool.liveCount(), 0);
  }
}

TEST(MisuseDeathTest, NodeReleasedTwice) {
  expectNoticed(
      kReturnedTwice,
      [] {
        number(1);
        ExpressionAST* node = number(2);
        node->deleteThis();
        node->deleteThis();
      },
      [] {});
}

TEST(MisuseDeathTest, ObjectAddedTwice) {
  const auto addTwice = [](int between) {
    auto* program = new ProgramAST;
    ObjectAST* object = add(program, "P", "a");
    for (int i = 0; i < between; ++i) add(program, "P", std::to_string(i).c_str());
    program->addObject(object, 0, 0, nullptr);
  };
  expectNoticed(
      "an object is added twice", [&] { addTwice(0); }, [] {});
  expectNoticed(
      "an object is added twice", [&] { addTwice(60); }, [] {});
  // So far back that it is not looked for; it is found when it is merged.
  expectNoticed(
      "an object is merged into itself", [&] { addTwice(1000); }, [] {});
}

TEST(MisuseDeathTest, PropertyAddedTwice) {
  expectNoticed(
      "a property is added twice",
      [] {
        ObjectAST* owner = object("P", "a");
        PropertyAST* added = property("x", number(1));
        owner->addProperty(added, 0, 0);
        owner->addProperty(added, 0, 0);
      },
      [] {});
}

TEST(MisuseDeathTest, TwoThreadsAtOnce) {
  const auto parseInTheMiddleOfAParse = [] {
    SourcesReader reader;
    WatchedScanner scanner(&reader);
    TreeParser parser(&scanner);
    reader.openText("A a {}", 6, nullptr);
    scanner.before = [](int) { std::thread([] { parsedScene("B b {}"); }).join(); };
    parser.parseProgram();
  };
  expectNoticed("two threads parse or filter at once", parseInTheMiddleOfAParse, [] {});
}

TEST(Misuse, OneThreadBehindTheOtherIsNone) {
  ProgramAST* program = nullptr;
  TextParser source("A a { x = 1; }");
  std::thread([&] { program = source.parser.parseProgram(); }).join();
  ASSERT_NE(program, nullptr);
  EXPECT_EQ(parsedScene("B b {}"), "(scene (obj \"B\" \"b\"))");
  std::thread([&] { program->deleteThis(); }).join();
}

TEST(Misuse, ParseInTheMiddleOfAParseOfTheSameThreadIsNone) {
  SourcesReader reader;
  WatchedScanner scanner(&reader);
  TreeParser parser(&scanner);
  reader.openText("A a {}", 6, nullptr);
  int inner = 0;
  scanner.before = [&](int) { inner += parsedScene("B b {}").size() > 2 ? 1 : 0; };
  ProgramAST* program = parser.parseProgram();
  ASSERT_NE(program, nullptr);
  program->deleteThis();
  EXPECT_EQ(inner, 5);
  // The way is free for another thread again.
  std::thread([] { parsedScene("B b {}"); }).join();
}

}  // namespace
