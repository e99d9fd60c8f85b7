// Number literals against a second writing of the rules, and against bits computed elsewhere.
#include <gtest/gtest.h>
#include <sys/mman.h>
#include <unistd.h>

#include <bit>
#include <cstring>
#include <fstream>
#include <random>
#include <sstream>
#include <string>

#include "kelp/parser/treeparser.h"
#include "tests/support/numberreference.h"

using namespace Kelp;
using KelpTest::referenceNumber;
using KelpTest::valueBitsOf;

namespace {

// Puts texts at the very end of a page that is followed by one nobody may read.
class GuardedText {
 public:
  GuardedText() {
    void* pages =
        ::mmap(nullptr, 2 * page, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    if (pages == MAP_FAILED) throw std::bad_alloc();
    begin = static_cast<char*>(pages);
    ::mprotect(begin + page, page, PROT_NONE);
  }
  GuardedText(const GuardedText&) = delete;
  GuardedText& operator=(const GuardedText&) = delete;
  ~GuardedText() { ::munmap(begin, 2 * page); }

  const char* put(const std::string& text) {
    char* at = begin + page - text.size() - 1;
    std::memcpy(at, text.c_str(), text.size() + 1);
    return at;
  }

 private:
  const size_t page = static_cast<size_t>(::sysconf(_SC_PAGESIZE));
  char* begin = nullptr;
};

// Takes the digits of a literal from a generator whose numbers are the same everywhere.
class LiteralMaker {
 public:
  std::string literal() {
    std::string text = digits(below(40));
    if (below(4) > 0) text += '.' + digits(below(40));
    if (below(3) == 0) return text + exponent();
    if (below(8) == 0)
      return text + "#" + oneOf({"INF", "IND", "QNAN", "inf", "I", "IxD", "x", ""});
    return text + oneOf({"", "", "", "", ".", "e", "x"});
  }

 private:
  uint32_t below(uint32_t limit) { return static_cast<uint32_t>(random() % limit); }

  std::string digits(uint32_t number) {
    std::string text;
    while (number-- > 0) text += static_cast<char>('0' + below(10));
    return text;
  }

  std::string exponent() {
    return oneOf({"e", "E"}) + oneOf({"", "+", "-", "+-", "-+"}) + std::to_string(below(340));
  }

  std::string oneOf(std::initializer_list<const char*> texts) {
    return texts.begin()[below(static_cast<uint32_t>(texts.size()))];
  }

  std::mt19937 random{20240117};
};

}  // namespace

TEST(NumberReference, EveryShortTextEndingAtAGuardPage) {
  const std::string alphabet = "09.eE+-#infqa";
  GuardedText guarded;
  std::vector<std::string> texts = {""};
  for (size_t first = 0, length = 0; length <= 4; ++length) {
    const size_t behind = texts.size();
    for (size_t i = first; i < behind; ++i) {
      ASSERT_EQ(valueBitsOf(TreeParser::parseNum(guarded.put(texts[i]))),
                valueBitsOf(referenceNumber(texts[i])))
          << texts[i];
      for (const char c : alphabet) texts.push_back(texts[i] + c);
    }
    first = behind;
  }
}

TEST(NumberReference, SpecialTextsCutAnywhere) {
  GuardedText guarded;
  for (const std::string whole : {"1.#INF", "1.#IND", "1.#QNAN", "1.5e+-12", "nan", "12.5E-3"}) {
    for (size_t length = 0; length <= whole.size(); ++length) {
      const std::string text = whole.substr(0, length);
      EXPECT_EQ(valueBitsOf(TreeParser::parseNum(guarded.put(text))),
                valueBitsOf(referenceNumber(text)))
          << text;
    }
  }
}

TEST(NumberReference, RandomLongLiterals) {
  LiteralMaker maker;
  for (int i = 0; i < 100000; ++i) {
    const std::string text = maker.literal();
    ASSERT_EQ(valueBitsOf(TreeParser::parseNum(text.c_str())), valueBitsOf(referenceNumber(text)))
        << text;
  }
}

TEST(NumberGolden, LiteralsHaveTheBitsOfTheFile) {
  std::ifstream file(KELP_SOURCE_DIR "/tests/parser/number_golden.txt");
  int literals = 0;
  for (std::string line; std::getline(file, line);) {
    if (line[0] == '#') continue;
    std::istringstream row(line);
    std::string text;
    std::string bits;
    ASSERT_TRUE(row >> text >> bits) << line;
    const uint64_t expected = bits == "nan" ? ~uint64_t{0} : std::stoull(bits, nullptr, 16);
    EXPECT_EQ(valueBitsOf(TreeParser::parseNum(text.c_str())), expected) << text;
    ++literals;
  }
  EXPECT_EQ(literals, 1200);
}
