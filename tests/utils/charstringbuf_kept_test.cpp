// What a buffer keeps of its contents when it is given another room.
#include <gtest/gtest.h>

#include "kelp/utils/charstring.h"

using Kelp::CharStringBuf;

TEST(CharStringBufKept, OneCharacterOfMany) {
  CharStringBuf buffer;
  buffer.resize(100);
  buffer.data[0] = 'x';
  buffer.data[1] = 'y';
  buffer.resize(1);
  EXPECT_STREQ(buffer.data, "x");
}
