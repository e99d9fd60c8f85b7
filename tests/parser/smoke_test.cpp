#include <gtest/gtest.h>

#include "tests/support/parsing.h"

using KelpTest::parsedExpression;
using KelpTest::parsedScene;

TEST(Scene, OneObjectOfEveryKindOfValue) {
  EXPECT_EQ(parsedScene("A a { x = 1 + 2 * 3; y = -b.c[1].x; z = ListVector(Vector(1,2,-3),); }"),
            "(scene (obj \"A\" \"a\" (= \"x\" (+ 1 (* 2 3))) "
            "(= \"y\" (neg (idx (prop \"b\" \"c\") 1 0))) (= \"z\" (lvec (1 2 -3)))))");
}
