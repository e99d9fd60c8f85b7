// What a buffer keeps of its contents when it is given another room.
#include <gtest/gtest.h>

#include "kelp/utils/charstring.h"

using Kelp::CharStringBuf;

TEST(CharStringBufKept, RoomThatFitsWell) {
  CharStringBuf buffer;
  buffer.resize(400);
  const char* data = buffer.data;
  for (const int bytes : {399, 400, 200, 100}) {
    buffer.resize(bytes);
    EXPECT_EQ(buffer.data, data) << bytes;
  }
  buffer.resize(99);
  EXPECT_NE(buffer.data, data);
}

TEST(CharStringBufKept, OneCharacterOfMany) {
  CharStringBuf buffer;
  buffer.resize(100);
  buffer.data[0] = 'x';
  buffer.data[1] = 'y';
  buffer.resize(1);
  EXPECT_STREQ(buffer.data, "x");
}
