// Counts and lengths at the end of what an int holds.
#include <gtest/gtest.h>
#include <sys/mman.h>
#include <unistd.h>

#include <algorithm>
#include <climits>
#include <new>

#include "kelp/utils/charstring.h"
#include "kelp/utils/pool.h"
#include "kelp/utils/table.h"
#include "tests/support/figures.h"

using namespace Kelp;
using namespace KelpTest;

namespace {

static_assert(_Sequence<int>::isCountable(0, INT_MAX));
static_assert(_Sequence<int>::isCountable(INT_MAX - 1000, 1000));
static_assert(!_Sequence<int>::isCountable(INT_MAX - 999, 1000));
static_assert(!_Sequence<int>::isCountable(INT_MAX, 1));

constexpr size_t kIntMax = INT_MAX;

// A text of any length in next to no memory: one file of a few MiB, mapped again and again.
class RepeatedText {
 public:
  explicit RepeatedText(size_t textLength) : length(textLength) {
    const size_t chunks = length / kChunk + 1;
    bytes = chunks * kChunk;
    const int file = memfd_create("text", 0);
    if (ftruncate(file, 2 * kChunk) != 0) return;
    text = static_cast<char*>(mmap(nullptr, bytes, PROT_NONE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0));
    for (size_t i = 0; i < chunks; ++i) {
      // The last piece of the text has its end to itself.
      const off_t from = i + 1 < chunks ? 0 : off_t{kChunk};
      mmap(text + i * kChunk, kChunk, PROT_READ | PROT_WRITE, MAP_SHARED | MAP_FIXED, file, from);
    }
    close(file);
    if (chunks > 1) std::fill_n(text, kChunk, 'x');
    std::fill_n(text + (chunks - 1) * kChunk, length % kChunk, 'x');
  }
  RepeatedText(const RepeatedText&) = delete;
  RepeatedText& operator=(const RepeatedText&) = delete;
  ~RepeatedText() { munmap(text, bytes); }

  const char* chars() const { return text; }

 private:
  static constexpr size_t kChunk = size_t{16} << 20U;
  size_t length;
  size_t bytes = 0;
  char* text = nullptr;
};

// A text and its NUL must fit into INT_MAX bytes: one character more is refused before any memory
// is asked for that size.
TEST(Limits, TextsThatAreTooLongAreRefusedAsOutOfMemory) {
  const RepeatedText tooLong(kIntMax);
  EXPECT_THROW(CharString{tooLong.chars()}, std::bad_alloc);
  CharString alone("alone");
  EXPECT_THROW(alone = tooLong.chars(), std::bad_alloc);
  EXPECT_THROW(alone.append(tooLong.chars()), std::bad_alloc);
  EXPECT_THROW(alone.set("x", tooLong.chars()), std::bad_alloc);
  EXPECT_THROW(alone.set(tooLong.chars(), "x"), std::bad_alloc);
  EXPECT_THROW(alone.set(tooLong.chars(), tooLong.chars()), std::bad_alloc);
  EXPECT_STREQ(alone.chars(), "alone");
  CharString shared("shared");
  const CharString other = shared;
  EXPECT_THROW(shared = tooLong.chars(), std::bad_alloc);
  EXPECT_THROW(shared.append(tooLong.chars()), std::bad_alloc);
  EXPECT_EQ(shared.buffer, other.buffer);
  EXPECT_EQ(shared.buffer->referenceCount, 2);
  EXPECT_THROW(makeCharString("a", tooLong.chars(), nullptr), std::bad_alloc);
}

// It takes gigabytes.
TEST(Limits, LongestTextIsTaken) {
  const size_t length = hasTimeForAll() ? kIntMax - 1 : kIntMax >> 10U;
  const RepeatedText longest(length);
  const CharString taken(longest.chars());
  EXPECT_EQ(taken.length(), static_cast<int>(length));
}

TEST(Limits, TablesOfTooManyItemsAreRefusedUnchanged) {
  Table<char> table;
  table += 'a';
  const char items[] = "more";  // nobody reads them
  for (const int64_t number : {int64_t{INT_MAX}, int64_t{INT_MAX} - 1, int64_t{1} << 40}) {
    EXPECT_THROW(table.append(items, number), std::bad_alloc);
    EXPECT_EQ(table.count, 1);
    EXPECT_EQ(table.capacity, 100);
    EXPECT_EQ(table.data[0], 'a');
  }
}

// Hands out addresses without memory behind them, for elements that nobody writes.
struct Nothing {
  Nothing() {}  // NOLINT(modernize-use-equals-default): must not clear the element
};
struct AddressesOnly {
  static Nothing* allocate(int number) noexcept {
    return static_cast<Nothing*>(mmap(nullptr, static_cast<size_t>(number), PROT_NONE,
                                      MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE, -1, 0));
  }
  static void deallocate(Nothing* elements) noexcept { munmap(elements, 1); }
};

// Counting so far takes long without optimisation.
TEST(Limits, SequencesCountNoFurtherThanAnIntDoes) {
  if (!hasTimeForAll()) return;
  constexpr int kHalf = 1 << 30;
  _Sequence<Nothing, kHalf, true, false, AddressesOnly> sequence;
  for (int i = 0; i < kHalf; ++i) sequence.newElement();
  EXPECT_THROW(sequence.newElement(), ExceptionMsg);
  EXPECT_EQ(sequence.liveCount(), kHalf);
  EXPECT_EQ(sequence.blockCount(), 1);
}

}  // namespace
