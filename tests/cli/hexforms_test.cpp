// kelp encode and kelp decode.
#include "tests/cli/program.h"

using KelpTest::Outcome;

namespace {

const char* const kPlain =
    "Mesh pan {\n"
    "  faces = ListInt(0, 1, -1);\n"
    "  weights = ListFloat(0.1, -0, 1e309);\n"
    "  vertices = ListVector(Vector(1, 2, 3));\n"
    "  colors = ListColor(Color(0, 0, 0), Color(1, 1, 1));\n"
    "  names = ListString(\"a\", \"b\");\n"
    "  place = Transform(Matrix(Vector(1, 0, 0), Vector(0, 1, 0), Vector(0, 0, 1)), "
    "Vector(0, 0, 0.5));\n"
    "  moved = Transform(lamp.matrix, Vector(0, 0, 1));\n"
    "}\n"
    "\n"
    "Light lamp {\n"
    "  power = -60 * 1.5;\n"
    "}\n";

const char* const kHex =
    "Mesh pan {\n"
    "  faces = ListIntHex(\"0000000001000000ffffffff\");\n"
    "  weights = ListFloatHex(\"cdcccc3d000000800000807f\");\n"
    "  vertices = ListVectorHex(\"0000803f0000004000004040\");\n"
    "  colors = ListColorHex(\"0000000000000000000000000000803f0000803f0000803f\");\n"
    "  names = ListString(\"a\", \"b\");\n"
    "  place = "
    "TransformHex(\"0000803f0000000000000000000000000000803f0000000000000000000000000000803f"
    "00000000000000000000003f\");\n"
    "  moved = Transform(lamp.matrix, Vector(0, 0, 1));\n"
    "}\n"
    "\n"
    "Light lamp {\n"
    "  power = -60 * 1.5;\n"
    "}\n";

class HexForms : public KelpTest::ProgramTest {
 protected:
  HexForms() {
    write("plain.scene", kPlain);
    write("hex.scene", kHex);
  }
};

}  // namespace

TEST_F(HexForms, EncodeAndDecodeUndoEachOther) {
  EXPECT_EQ(kelp("encode plain.scene"), (Outcome{0, kHex, ""}));
  EXPECT_EQ(kelp("decode hex.scene"), (Outcome{0, kPlain, ""}));
  EXPECT_EQ(kelp("encode hex.scene"), (Outcome{0, kHex, ""}));
  EXPECT_EQ(kelp("decode plain.scene"), (Outcome{0, kPlain, ""}));
}

TEST_F(HexForms, StandardInputAndStreamsGiveTheSame) {
  EXPECT_EQ(kelp("decode - <hex.scene"), (Outcome{0, kPlain, ""}));
  EXPECT_EQ(kelp("decode --stream hex.scene"), (Outcome{0, kPlain, ""}));
  EXPECT_EQ(kelp("encode --stream - <plain.scene"), (Outcome{0, kHex, ""}));
  EXPECT_EQ(shell("$KELP encode plain.scene | $KELP decode -"), (Outcome{0, kPlain, ""}));
}

TEST_F(HexForms, EqualObjectsOfAStreamStayApart) {
  write("twice.scene", "A a { x = ListInt(1); } A a { y = 2; }");
  EXPECT_EQ(kelp("encode --stream twice.scene").out,
            "A a {\n  x = ListIntHex(\"01000000\");\n}\n\nA a {\n  y = 2;\n}\n");
  EXPECT_EQ(kelp("encode twice.scene").out,
            "A a {\n  x = ListIntHex(\"01000000\");\n  y = 2;\n}\n");
}

TEST_F(HexForms, OutputGoesToAFileWhenAllIsWell) {
  EXPECT_EQ(kelp("decode -o hex.scene hex.scene"), (Outcome{0, "", ""}));
  EXPECT_EQ(contents("hex.scene"), kPlain);
  write("bad.scene", "A a { x = ListIntHex(\"0\"); }");
  EXPECT_EQ(kelp("decode -o out bad.scene").exitCode, 1);
  EXPECT_EQ(files(), "bad.scene\nhex.scene\nplain.scene\n");
}

TEST_F(HexForms, TextThatCannotBeDecodedIsToldWithItsPlace) {
  write("bad.scene", "A { }\nMesh pan {\n  x = 1;\n  faces = ListIntHex(\"0000000g\");\n}\n");
  const std::string message =
      "bad.scene:4: error: Cannot be decoded: object \"Mesh pan\", property \"faces\", ListIntHex: "
      "character 8 is no hexadecimal digit: \"g\"\n";
  for (const char* way : {"decode -o out bad.scene", "decode -o out --stream bad.scene"}) {
    EXPECT_EQ(kelp(way), (Outcome{1, "", message}));
  }
  EXPECT_EQ(kelp("decode bad.scene").err, message);
  EXPECT_EQ(kelp("encode bad.scene").exitCode, 0);
  write("including.scene", "#include \"bad.scene\"\n");
  EXPECT_NE(kelp("decode including.scene").err.find("bad.scene:4: error: "), std::string::npos);
}

TEST_F(HexForms, NotANumbersWithoutALiteralAreCounted) {
  write("nan.scene", "A a { x = ListFloatHex(\"0100807f0200807f0000803f\"); }");
  const Outcome outcome = kelp("decode nan.scene");
  EXPECT_EQ(outcome.exitCode, 0);
  EXPECT_EQ(outcome.err,
            "kelp: nan.scene: 2 not-a-numbers were written as another one: no literal reads back "
            "to their bits\n");
  EXPECT_NE(outcome.out.find("0e309, "), std::string::npos);
}

TEST_F(HexForms, ScenesThatCannotBeReadAndWrongUsage) {
  write("bad.scene", "A {");
  for (const std::string name : {"encode", "decode"}) {
    EXPECT_EQ(kelp(name + " bad.scene").exitCode, 1);
    EXPECT_EQ(kelp(name + " none").exitCode, 2);
    EXPECT_EQ(kelp(name + " hex.scene plain.scene"),
              (Outcome{2, "", "kelp: " + name + " takes one FILE only; kelp --help tells more\n"}));
    EXPECT_EQ(kelp(name + " plain.scene >/dev/full"),
              (Outcome{2, "", "kelp: Cannot write to standard output: No space left on device\n"}));
  }
}

TEST_F(HexForms, NameThatAnAffixHasSpoiltIsRefused) {
  const Outcome outcome = kelp("encode --affix '1 ' plain.scene");
  EXPECT_EQ(outcome.exitCode, 1);
  EXPECT_NE(outcome.err.find("plain.scene: error: Cannot be written as scene text"),
            std::string::npos);
}
