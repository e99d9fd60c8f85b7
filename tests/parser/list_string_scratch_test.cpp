// Lists of strings that one parser reads one after the other.
#include <gtest/gtest.h>

#include "tests/support/rows.h"

using namespace KelpTest;

TEST(ListStringScratch, EveryListHasItsOwnStringsOnly) {
  expectExpressions({
      {"List(ListString(\"a\", \"b\"), ListString(\"c\"))", R"((list (lstr "a" "b") (lstr "c")))"},
      {"List(ListString(\"a\"), ListString(), ListString(\"b\", \"c\"))",
       R"((list (lstr "a") (lstr) (lstr "b" "c")))"},
  });
}
