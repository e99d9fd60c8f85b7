// The two roads from a text to a tree, by tokens and straight from the characters: whatever the
// text, both give the same tree or the same error, and leave the same behind.
#include <gtest/gtest.h>

#include <array>
#include <functional>
#include <random>
#include <string>
#include <string_view>

#include "kelp/parser/directparser.h"
#include "kelp/parser/numberreader.h"
#include "tests/support/corpus.h"
#include "tests/support/figures.h"
#include "tests/support/hiddenfields.h"
#include "tests/support/numberreference.h"
#include "tests/support/parsing.h"
#include "tests/support/richscenes.h"

using namespace Kelp;
using namespace KelpTest;

namespace {

using Setting = std::function<void(TextParser&)>;

std::string described(const SourcePosition& position) {
  if (position.source == nullptr) return "nowhere";
  return std::to_string(position.line) + ':' + std::to_string(position.at - position.lineStart);
}

std::string described(Token& token) {
  return std::to_string(token.type) + ' ' + token.getSpelling() + ' ' +
         std::to_string(token.overflowCount);
}

// What can be seen of a parser behind a parse, besides the program.
std::string leftBehind(TextParser& source) {
  TreeParser& parser = source.parser;
  std::string text;
  for (int i = 0; i < parser.referenceNames.count; ++i) {
    text += std::string(parser.referenceNames.data[i]->chars()) + ' ';
  }
  text += "\ntokens " + described(parser.tokens[parser.current]);
  if (parser.lookahead >= 0) text += ", " + described(parser.tokens[parser.lookahead]);
  text += " at " + described(source.scanner.startOf(0)) + ", " +
          described(source.scanner.startOf(1)) + " reader " +
          source.reader.getCurrentFile().chars() + ' ' +
          std::to_string(source.reader.getCurrentLine());
  return text + " seed " + std::to_string(BuiltinFunctionAST::rndGen.state) + " depth " +
         std::to_string(parser.nestingDepth);
}

std::string outcome(const std::string& text, bool readsPlainText, const Setting& set) {
  BuiltinFunctionAST::rndGen.reset();
  TextParser source(text);
  source.parser.readsPlainText = readsPlainText;
  source.parser.collectReferenceNames = 1;
  set(source);
  try {
    const auto_ast<ProgramAST> program(source.parser.parseProgram());
    if (program.get() != nullptr) {
      return objectLines(*program.get()) + hiddenFields(*program.get()) + leftBehind(source);
    }
  } catch (const InvalidSourceFile& failure) {  // of the first two tokens
    return "failure: " + std::string(failure.message.chars()) + '\n' + leftBehind(source);
  }
  const ErrorInfo& error = source.parser.errorInfo;
  return "error: " + std::string(error.getErrorText().chars()) + " in " +
         error.getErrorFile().chars() + ':' + std::to_string(error.getErrorLine()) + '\n' +
         leftBehind(source);
}

const std::array<Setting, 5> kSettings = {
    [](TextParser&) {},
    [](TextParser& source) { source.parser.nameAffix = "pre_"; },
    [](TextParser& source) {
      source.parser.nameAffix = "_post";
      source.parser.affixIsSuffix = true;
      source.parser.collectReferenceNames = 0;
    },
    [](TextParser& source) {
      source.reader.readerParam1 = 1.5;
      source.reader.readerParam2 = 2.5;
      source.parser.maxObjects = 2;
    },
    [](TextParser& source) {
      source.parser.maxNestingDepth = 3;
      source.reader.limits.maxStringLength = 20;
    },
};

// What only the shorter road looks at: lists as exporters write them and nearly so, and lines that
// begin inside a comment.
const std::vector<std::string>& plainScenes() {
  static const std::vector<std::string> scenes = {
      "A a { x = ListInt(1, -2,3 ,+4, - 5, -+6, .5, -.5, 1.5e2,\n7, /* 8 */ 9); y = ListInt(1,); }",
      "A a { x = ListFloat(-1.5,0.25,12345678.5, 123456789.5, -0, -0.0, 1., 1.#INF, -1.#IND); }",
      "A a { x = ListVector(Vector(1, -2,3), Vector(-.5,1.,-1e3),Vector(1,  2, 3)); }",
      "A a { x = ListVector(Vector( 1,2,3),Vector (1,2,3),Vector(1 ,2,3), Vector(1,2,3 )\n,"
      "Vector(1,\n2,3),Vector(1,2,3),); }",
      "A a { x = ListVector(Vector(1,2,3,), Vector(1,2,3)); }",
      "A a { x = ListVector(Vector(1,2,3,)); }",
      "A a { x = ListVector(Vector(1,2,3,); }",
      "A a { x = ListVector(Vector(1,2), Vector(1,2,3)); }",
      "A a { x = ListVector(Vector(1,2,3,4), Vector(1,2,3)); }",
      "A a { x = ListVector(Vector(1)2,3), Vector(1,2,3)); }",
      "A a { x = ListVector(Vector(1)2)3,, Vector(1,2,3)); }",
      "A a { x = ListColor(Color(1, 2, 3), Color(1.25,-2, +3),Vector(1, 2, 3)); }",
      "A a { x = ListInt(2147483647, -2147483648, 2147483648, 4e9, -4e9); y = -5; z = - 5; }",
      "A a { /**/ x = 1; /**/ y = 2; /***/ z = 3; /*/*/ } // */\nA b { } //\nA c { }",
      "A a { x = 1; /*\n*/ y = 2; /* \n\n */ } /*\n */ A b { x = 5 /*\n*/ + /*\n */ 6; } C",
  };
  return scenes;
}

// Scenes that are short enough to be damaged at every character.
std::vector<std::string> shortScenes() {
  std::vector<std::string> scenes = richScenes();
  scenes.insert(scenes.end(), plainScenes().begin(), plainScenes().end());
  scenes.insert(scenes.end(), brokenScenes().begin(), brokenScenes().end());
  for (const char* prefix : {"y_", "n_", "i_"}) {
    for (const std::string& name : corpusNames(prefix)) {
      const std::string text = corpusText(name, ".scene");
      if (text.size() < 2000) scenes.push_back(text);
    }
  }
  return scenes;
}

void expectSameOnBothRoads(const std::string& text, const Setting& setting) {
  ASSERT_EQ(outcome(text, true, setting), outcome(text, false, setting)) << text;
}

TEST(Roads, GiveTheSameForEveryScene) {
  for (const std::string& scene : shortScenes()) {
    for (const Setting& setting : kSettings) {
      ASSERT_NO_FATAL_FAILURE(expectSameOnBothRoads(scene, setting));
    }
  }
}

// Longer than any block that is looked at as one, so that what is behind stands at every place of
// one.
TEST(Roads, GiveTheSameForLongLists) {
  for (size_t number = 1; number < 70; ++number) {
    std::string list = "A a { x = ListInt(";
    for (size_t i = 0; i < number; ++i) list += (i > 0 ? "," : "") + std::string(i % 20, '7') + "1";
    for (const char* end :
         {"); }", ",); }", ", nan); }", " 1); }", ", -nan, x); }", ", 1.#INF); }"}) {
      ASSERT_NO_FATAL_FAILURE(expectSameOnBothRoads(list + end, kSettings[0]));
    }
  }
}

// ---- damage at every place ---------------------------------------------------------------------

const std::vector<std::string>& insertions() {
  static const std::vector<std::string> pieces = {"\"",
                                                  "\\",
                                                  "\\\"",
                                                  "{",
                                                  "}",
                                                  "(",
                                                  ")",
                                                  "[",
                                                  "]",
                                                  ",",
                                                  ";",
                                                  ":",
                                                  ".",
                                                  "=",
                                                  "+",
                                                  "-",
                                                  "*",
                                                  "/",
                                                  "//",
                                                  "/*",
                                                  "*/",
                                                  "#",
                                                  "\n",
                                                  "\r\n",
                                                  " ",
                                                  "\t",
                                                  "1",
                                                  ".5",
                                                  "1.",
                                                  "1e",
                                                  "1e5",
                                                  "1.#INF",
                                                  "nan",
                                                  "a",
                                                  "@",
                                                  "$",
                                                  "|",
                                                  "?",
                                                  "\xC3\xA4",
                                                  std::string(1, '\0'),
                                                  "sin",
                                                  "sin(",
                                                  "Vector(",
                                                  "List(",
                                                  "\n#include \"no such file\"\n",
                                                  "\"a text\"",
                                                  "12345678901234567890.123456789"};
  return pieces;
}

// Every case of damage to the scene that `isWanted` says yes to.
template <class Filter, class Use>
void forEachDamage(const std::string& scene, const Filter& isWanted, const Use& use) {
  for (size_t at = 0; at <= scene.size(); ++at) {
    if (isWanted()) use(scene.substr(0, at));
    if (at < scene.size() && isWanted()) use(scene.substr(0, at) + scene.substr(at + 1));
    for (const std::string& piece : insertions()) {
      if (isWanted()) use(scene.substr(0, at) + piece + scene.substr(at));
    }
  }
}

TEST(Roads, GiveTheSameForEveryDamage) {
  const uint32_t share = hasTimeForAll() ? 1 : 512;  // of all cases, one in so many
  std::minstd_rand random(1);
  const auto isWanted = [&] { return !HasFatalFailure() && random() % share == 0; };
  long long cases = 0;
  for (const std::string& scene : shortScenes()) {
    forEachDamage(scene, isWanted, [&](const std::string& damaged) {
      expectSameOnBothRoads(damaged, kSettings[static_cast<size_t>(cases) % kSettings.size()]);
      ++cases;
    });
  }
  EXPECT_GT(cases, 1000);
  reportFigure("roads, damage",
               grouped(cases) + " damaged scenes give the same by tokens and by text");
}

// ---- what is read from the text -----------------------------------------------------------------

// How many of a scene's objects are read without a token.
int directObjects(const std::string& text) {
  TextParser source(text);
  source.started();
  if (!DirectParser::isPossible(source.parser)) return 0;
  DirectParser direct(source.parser);
  int objects = 0;
  while (ObjectAST* object = direct.nextObject()) {
    object->deleteThis();
    ++objects;
  }
  return objects;
}

TEST(Roads, PlainObjectsAreReadFromTheText) {
  EXPECT_EQ(
      directObjects("A a {} B { x = 1; y = \"s\"; } /* c */ C c { z = List(-1, a.b[2].x); } "
                    "D { p = ListVector(Vector(1, 2, 3)); q = random(1, 2) * a::b; } E {} E {}"),
      6);
  EXPECT_EQ(directObjects("A {} B { x = 1 C {}"), 1);
  EXPECT_EQ(directObjects("A {}\n#include \"x\"\nB {}"), 1);
}

// ---- numbers ------------------------------------------------------------------------------------

std::string randomLiteral(std::minstd_rand& random) {
  const auto digits = [&random](size_t number) {
    std::string text;
    while (number-- > 0) text += static_cast<char>('0' + random() % 10);
    return text;
  };
  std::string text = digits(random() % 12);
  if (random() % 4 != 0) {
    text += '.';
    text += digits((text.size() == 1) + random() % 20);
  } else if (text.empty()) {
    text = "0";
  }
  if (random() % 16 == 0) text += "e" + std::to_string(static_cast<int>(random() % 600) - 300);
  return text;
}

TEST(Roads, NumbersAreEqualToTheLastBit) {
  const int cases = hasTimeForAll() ? 40'000'000 : 100'000;
  std::minstd_rand random(7);
  for (int i = 0; i < cases; ++i) {
    const std::string literal = randomLiteral(random);
    // A source has padding behind its text.
    const std::string text = literal + ((i & 1) != 0 ? ",7" : ")x") + std::string(64, '\0');
    const char* at = text.data();
    const double value = readNumber(&at);
    ASSERT_EQ(valueBitsOf(value), valueBitsOf(TokenRing::parseNum(literal.c_str()))) << literal;
    ASSERT_EQ(at - text.data(), static_cast<ptrdiff_t>(literal.size())) << literal;
  }
  reportFigure("roads, numbers", grouped(cases) + " literals equal to the last bit");
}

}  // namespace
