#include "tests/support/richscenes.h"

namespace KelpTest {

const std::vector<std::string>& richScenes() {
  static const std::vector<std::string> scenes = {
      "",
      "A a {} B {} A b { x = 1; } A a { y = 2; } ",
      "A a { x = 1 + 2 * -Vector(a.b[1], c, 2); y = -(3 - 4) / +5; }",
      "A a { s = \"text\"; t = \"" + std::string(1500, 'x') + "\"; u = -\"\"; \"v w\" = 1; }",
      "A a { r = b; s = -b.c; t = b::c; u = b.c[1].x[d.e.alpha + 1]; } B b { c = a; }",
      "A a { f = sin(1); g = pow(b, 2); h = select(1, 2, List(3), c.d); i = frame() + pi(); "
      "j = random(0, randomInt(1, 2)); }",
      "A a { l = List(); m = List(1, \"a\", b, List(c.d)); n = interpolate((0, 1), (b, -c.d[2])); "
      "}",
      "A a { v = Vector(1, 2, b); c = Color(1, b.c, 3); d = AColor(1, 2, -3, b::c); "
      "m = Matrix(Vector(1, 0, 0), b, c); t = Transform(m, Vector(1, 2, 3)); }",
      "A a { h = TransformHex(\"0011\"); i = ListVectorHex(\"00\"); j = ListIntHex(\"11\"); "
      "k = ListFloatHex(\"22\"); l = ListColorHex(\"33\"); }",
      "A a { i = ListInt(1, -2, 3,); f = ListFloat(1.5, +2e3); n = ListInt(); }",
      "A a { v = ListVector(Vector(1, 2, 3), Vector(-4, 5, 6),); "
      "c = ListColor(Color(0.1, 0.2, 0.3)); e = ListVector(); }",
      "A a { s = ListString(\"one\", \"two\", \"a string that is too long to be kept inside\"); "
      "e = ListString(); }",
  };
  return scenes;
}

const std::vector<std::string>& brokenScenes() {
  static const std::vector<std::string> scenes = {
      "A a { x = b.c[1 + 2; }",
      "A a { x = foo(1); }",
      "A a { x = Vector(b, c.d, List(1, 2)]; }",
      "A a { x = ListString(\"one\", \"two\", 3); }",
      "A a { x = ListVector(Vector(1, 2, 3); }",
      "A a { x = interpolate((b, c), (d, e); }",
      "A a { x = 1; } B b { y = 2; z = 3 } C c {}",
      "A a { x = \"never ends; }",
  };
  return scenes;
}

}  // namespace KelpTest
