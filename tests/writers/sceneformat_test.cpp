#include "kelp/writers/sceneformat.h"

#include <gtest/gtest.h>

#include "kelp/utils/exceptions.h"
#include "tests/support/largescenes.h"
#include "tests/support/parsing.h"
#include "tests/support/richscenes.h"
#include "tests/support/temporaryfiles.h"
#include "tests/support/tokenlist.h"

using Kelp::formatText;
using KelpTest::repeated;

namespace {

struct Row {
  const char* text;
  const char* formatted;
};

template <size_t rows>
void expectFormatted(const Row (&table)[rows]) {
  for (const Row& row : table) {
    EXPECT_EQ(formatText(row.text), row.formatted) << row.text;
    EXPECT_EQ(formatText(row.formatted), row.formatted);
    EXPECT_EQ(KelpTest::tokensOf(row.formatted), KelpTest::tokensOf(row.text));
  }
}

std::string failureOf(std::string_view text) {
  try {
    formatText(text);
  } catch (const Kelp::InvalidSourceFile& failure) {
    return failure.message.chars();
  }
  return "";
}

// The places between the tokens of a text: those where a blank changes no token.
std::vector<size_t> gapsOf(const std::string& text) {
  const std::string tokens = KelpTest::tokensOf(text);
  std::vector<size_t> gaps;
  for (size_t i = 0; i <= text.size(); ++i) {
    std::string spaced = text;
    spaced.insert(i, " ");
    if (KelpTest::tokensOf(spaced) == tokens) gaps.push_back(i);
  }
  return gaps;
}

}  // namespace

TEST(FormatText, PropertiesHaveLinesOfTheirOwn) {
  expectFormatted({
      {"A a{x=1;y  =  2 ;}", "A a {\n  x = 1;\n  y = 2;\n}\n"},
      {"A\na\n{\n}", "A a { }\n"},
      {"A{}B{}", "A { }\nB { }\n"},
      {"", ""},
      {" \t\n\n", ""},
      {"A a { \"s\" = 1; 5. = 2; ( = 3; { = 4; ; = 5; = = 6; -=7; # = 8; }",
       "A a {\n  \"s\" = 1;\n  5. = 2;\n  ( = 3;\n  { = 4;\n  ; = 5;\n  = = 6;\n  - = 7;\n"
       "  # = 8;\n}\n"},
  });
}

TEST(FormatText, BlanksStandBetweenTokensWhereTheyHelpReading) {
  expectFormatted({
      {"A{x=a+b-c*d/e;}", "A {\n  x = a + b - c * d / e;\n}\n"},
      {"A{x= - a- -b*(+ c);}", "A {\n  x = -a - -b * (+c);\n}\n"},
      {"A{x=a . b [ 1 ] . x;}", "A {\n  x = a.b[1].x;\n}\n"},
      {"A{x=a : : b;}", "A {\n  x = a::b;\n}\n"},
      {"A{x=sin ( 1 ) +\"a\"-2;}", "A {\n  x = sin(1) + \"a\" - 2;\n}\n"},
      {"A{x=ListInt( 1 ,- + 2 , );}", "A {\n  x = ListInt(1, -+2,);\n}\n"},
      {"A{x=interpolate ( ( 1,2 ),( 3,4 ) );}", "A {\n  x = interpolate((1, 2), (3, 4));\n}\n"},
      {"A{x=ListIntHex( ; );y=ListIntHex( ( );z=TransformHex( } );}",
       "A {\n  x = ListIntHex(;);\n  y = ListIntHex(();\n  z = TransformHex(});\n}\n"},
      {"A{x=a.b.\"x\";y=ListVector(\"Vector\"(1,2,3));}",
       "A {\n  x = a.b.\"x\";\n  y = ListVector(\"Vector\"(1, 2, 3));\n}\n"},
  });
}

TEST(FormatText, SpellingsStayAsTheyAre) {
  expectFormatted({
      {"A{x=1.50e+-2;y=.5;z=nan;u=1.#INF;}",
       "A {\n  x = 1.50e+-2;\n  y = .5;\n  z = nan;\n  u = 1.#INF;\n}\n"},
      {"A{x=\"two\n   lines \\\" \\\\ // no /* comment\";}",
       "A {\n  x = \"two\n   lines \\\" \\\\ // no /* comment\";\n}\n"},
      {"A{x=\"\n#include \";}", "A {\n  x = \"\n#include \";\n}\n"},
      {"\xEF\xBB\xBF  A{}",
       "\xEF\xBB\xBF"
       "A { }\n"},
      {"\xEF\xBB\xBF", "\xEF\xBB\xBF"},
      {"\n\n\xEF\xBB\xBF {}", "\n\xEF\xBB\xBF { }\n"},
  });
}

TEST(FormatText, OneEmptyLineIsKeptBetweenThings) {
  expectFormatted({
      {"A{}\n\n\n\nB{}\nC{}", "A { }\n\nB { }\nC { }\n"},
      {"A{\n\n\nx=1;\n\n\ny=2;\nz=3;\n\n\n}", "A {\n  x = 1;\n\n  y = 2;\n  z = 3;\n}\n"},
      {"\n\n\nA{}\n\n\n", "A { }\n"},
      {"A{ // c\n\nx=1; // d\n\ny=2;}", "A {  // c\n  x = 1;  // d\n\n  y = 2;\n}\n"},
      {"A{x=\n\n1;}", "A {\n  x = 1;\n}\n"},
      {"A{\r\n\r\nx=1;\r\n\r\n\r\ny=2;\r\n}\r\n", "A {\n  x = 1;\n\n  y = 2;\n}\n"},
  });
}

TEST(FormatText, CommentsStayWithWhatTheyFollow) {
  expectFormatted({
      {"// a  \t\r\n\n//b\nA{}", "// a\n\n//b\nA { }\n"},
      {"A { // a\nx = 1; // b\n// c\n} // d", "A {  // a\n  x = 1;  // b\n  // c\n}  // d\n"},
      {"A { x = 1; /* a */ y = 2; }", "A {\n  x = 1; /* a */\n  y = 2;\n}\n"},
      {"A { x = 1 /* a */ + /* b */ 2; }", "A {\n  x = 1 /* a */ + /* b */ 2;\n}\n"},
      {"A {\n/* a */ x = 1;\n/* b */\ny = 2; }", "A {\n  /* a */ x = 1;\n  /* b */\n  y = 2;\n}\n"},
      {"A { /* a */ }", "A { /* a */\n}\n"},
      {"A {\n/* a */ }", "A {\n  /* a */ }\n"},
      {"A { x = ListInt(1, // a\n2, 3\n// b\n); }",
       "A {\n  x = ListInt(1,  // a\n    2, 3\n    // b\n    );\n}\n"},
      {"A { x = 1 // a\n; }", "A {\n  x = 1  // a\n    ;\n}\n"},
      {"A { x = a / /**/ b; }", "A {\n  x = a / /**/ b;\n}\n"},
      {"A { x = ( /* a */ b /* c */ ); }", "A {\n  x = ( /* a */ b /* c */);\n}\n"},
      {"A a { /* two\n      lines */ x = 1; }", "A a { /* two\n      lines */\n  x = 1;\n}\n"},
      {"/**/A{}", "/**/ A { }\n"},
      {"/**//**/\nA{}", "/**/ /**/\nA { }\n"},
  });
}

TEST(FormatText, LongValuesGoOnInFurtherLines) {
  const std::string name(40, 'n');
  EXPECT_EQ(formatText("A{x=" + name + "+" + name + "+" + name + ";}"),
            "A {\n  x = " + name + " + " + name + "\n    + " + name + ";\n}\n");
  EXPECT_EQ(formatText("A{x=List(f(" + name + "),List(" + name + "," + name + "," + name + "));}"),
            "A {\n  x = List(f(" + name + "),\n    List(" + name + ", " + name + ",\n      " +
                name + "));\n}\n");
  EXPECT_EQ(formatText("A{x=ListInt(" + repeated("12345,", 20) + ");}"),
            "A {\n  x = ListInt(12345," + repeated(" 12345,", 11) + "\n    12345," +
                repeated(" 12345,", 7) + ");\n}\n");
}

TEST(FormatText, LinesOfATextWithoutLongTokensAreNoLongerThanAHundredColumns) {
  std::string value = "a + b";
  for (int i = 0; i < 12; ++i) {
    value = "Vector(sin(" + value + ") * lamp.power, interpolate((0, 1), (frame(), -2)), " +
            (i % 2 == 0 ? "ListInt(1, 2, 3) / 5" : value) + ")";
  }
  const std::string formatted = formatText("A { x = " + value + "; }");
  size_t longest = 0;
  for (size_t at = 0; at < formatted.size();) {
    const size_t end = formatted.find('\n', at);
    longest = std::max(longest, end - at);
    at = end + 1;
  }
  EXPECT_LE(longest, 100U);
  EXPECT_GT(longest, 90U);
  EXPECT_EQ(formatText(formatted), formatted);
}

// ---- includes ----------------------------------------------------------------------------------

TEST(FormatText, IncludesStayTheFirstThingOnTheirLines) {
  const Row rows[] = {
      {"#include   \"a\"", "#include   \"a\"\n"},
      {" \t#include\"a\"  // c\n\n\nA{}", "#include\"a\"  // c\n\nA { }\n"},
      {"A{\n#include \"a\" /* b */ /* c */\nx=1;}",
       "A {\n  #include \"a\" /* b */ /* c */\n  x = 1;\n}\n"},
      {"A{x=1 +\n#include \"a\"\n;}", "A {\n  x = 1 +\n    #include \"a\"\n    ;\n}\n"},
      {"#include \"a\" /* two\nlines */ A{}", "#include \"a\" /* two\nlines */\nA { }\n"},
      {"A{# = 1; }", "A {\n  # = 1;\n}\n"},
  };
  for (const Row& row : rows) {
    EXPECT_EQ(formatText(row.text), row.formatted);
    EXPECT_EQ(formatText(row.formatted), row.formatted);
  }
}

TEST(FormatText, ObjectsThatIncludedFilesBeginOrEndKeepTheirTrees) {
  const KelpTest::TemporaryFiles files;
  files.write("begin.inc", "A a { x = List(1,");
  files.write("end.inc", "3); }");
  const std::string name = files.path("scene.scene");
  for (const std::string text : {"#include \"begin.inc\"\n2,\n#include \"end.inc\"\nB b { y = 1; }",
                                 "#include \"begin.inc\"\n2); z = 1; } C {\n}",
                                 "A { x = List(1, 2,\n#include \"end.inc\"\nB { x = 2; }"}) {
    const auto tree = [&name](const std::string& scene) {
      KelpTest::TextParser source(scene, name.c_str());
      const Kelp::auto_ast<Kelp::ProgramAST> program(source.parser.parseProgram());
      return program.get() != nullptr ? program.get()->numObjects : -1;
    };
    const std::string formatted = formatText(text);
    EXPECT_GT(tree(text), 0) << text;
    EXPECT_EQ(tree(formatted), tree(text)) << formatted;
    EXPECT_EQ(formatText(formatted), formatted);
  }
}

// ---- comments everywhere -----------------------------------------------------------------------

TEST(FormatText, CommentBetweenAnyTwoTokensChangesNoTree) {
  const struct {
    const char* before;
    const char* comment;
    const char* behind;
  } rows[] = {{" ", "/**/", " "},
              {" ", "// c", "\n"},
              {"\n", "// c", "\n"},
              {"\n", "/* c */", "\n"},
              {"\n\n", "/* two\nlines */", " "}};
  int cases = 0;
  for (const std::string& text : KelpTest::richScenes()) {
    const std::string tree = KelpTest::parsedScene(text);
    for (const size_t gap : gapsOf(text)) {
      for (const auto& row : rows) {
        std::string commented = text;
        commented.insert(gap, std::string(row.before) + row.comment + row.behind);
        const std::string formatted = formatText(commented);
        ASSERT_EQ(KelpTest::parsedScene(formatted), tree) << formatted;
        ASSERT_EQ(formatText(formatted), formatted);
        ASSERT_NE(formatted.find(row.comment), std::string::npos) << formatted;
        ++cases;
      }
    }
  }
  EXPECT_GT(cases, 1000);
}

// ---- what is no text of tokens -----------------------------------------------------------------

TEST(FormatText, TextWithoutTokensIsRefusedInTheScannersWords) {
  const std::string_view texts[] = {
      "A a { x = \"never ends; }",
      "A a {\n x = \"\\\"",
      "A a {\n\n /* never ends }",
      "A a { /*/ }",
      std::string_view("A\n\0", 3),
      std::string_view("// a\0\n", 6),
      std::string_view("/* a\0*/", 7),
      std::string_view("\"a\0\"", 4),
      "A { }\n#include a",
      "#include \"a\nb\"",
      "#include",
      "\n#include \"a\"; A { }",
      "#include \"a\" /* b */ A { }",
      "#include \"a\" #include \"b\"",
  };
  for (const std::string_view text : texts) {
    EXPECT_EQ(failureOf(text), KelpTest::scanErrorOf(text)) << text;
    EXPECT_NE(failureOf(text), "") << text;
  }
}

TEST(FormatText, GrammarIsNoBusinessOfTheLayout) {
  for (const char* text :
       {"}", "} } ;", "5 . a", "A a { x = ; }", "( [ {", ") ]", ", , . . 5 .5 . 5", "/ /",
        "* / / *", "a # b", "- - + + 1 2 3", "= = =", "A a { x = 1", "5 a 5. b"}) {
    const std::string formatted = formatText(text);
    EXPECT_EQ(KelpTest::tokensOf(formatted), KelpTest::tokensOf(text)) << formatted;
    EXPECT_EQ(formatText(formatted), formatted);
  }
}

TEST(FormatText, LinesBehindATextOfSeveralLinesAreFilledToTheirEnd) {
  const auto format = [](size_t characters) {
    return formatText("A a { x = List(\"one\n" + std::string(characters, 'y') +
                      "\", 12345, 6789); }");
  };
  EXPECT_EQ(format(84),
            "A a {\n  x = List(\n    \"one\n" + std::string(84, 'y') + "\", 12345, 6789);\n}\n");
  EXPECT_EQ(format(85), "A a {\n  x = List(\n    \"one\n" + std::string(85, 'y') +
                            "\", 12345,\n    6789);\n}\n");
}

TEST(FormatText, PiecesLongerThanAChunkAreHandedOnWhole) {
  for (const int length : {65530, 65536, 65537, 300000}) {
    const auto characters = static_cast<size_t>(length);
    const std::string text = "A a {\n  x = \"" + std::string(characters, 'y') + "\";\n}\n";
    EXPECT_TRUE(formatText(text) == text) << characters;
  }
}
