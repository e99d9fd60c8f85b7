// References that stand in the table of recorded names more than once.
#include <gtest/gtest.h>

#include "tests/support/filters.h"

using namespace Kelp;

TEST(FilterTwice, NameRecordedTwiceIsRenamedOnce) {
  KelpTest::FilteredScene scene("A a { x = b; y = c; } A b { } A c { } A d { }");
  Table<CharString*, 100>& names = scene.source.parser.referenceNames;
  ASSERT_EQ(names.count, 2);
  names += names.data[0];
  names += names.data[1];
  names += names.data[0];
  scene.rename({{"b", "c"}, {"c", "d"}, {"d", "e"}});
  EXPECT_EQ(scene.references(), (std::vector<std::string>{"c", "d", "c", "d", "c"}));
}
