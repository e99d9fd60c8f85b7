#include "kelp/writers/scenetextwriter.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <memory>

#include "kelp/scene.h"
#include "tests/support/allocations.h"
#include "tests/support/filters.h"
#include "tests/support/largescenes.h"
#include "tests/support/programs.h"
#include "tests/support/trees.h"

using namespace Kelp;
using namespace KelpTest;

namespace {

struct TextWriter {
  std::string text;
  SceneTextWriter writer{[this](std::string_view piece) { text += piece; }};
};

std::string writtenValue(ExpressionAST& value) {
  TextWriter out;
  out.writer.write(value);
  out.writer.finish();
  return out.text;
}

std::string writtenScene(const ProgramAST& program, bool leaveOutFiltered = false) {
  TextWriter out;
  out.writer.leaveOutFiltered = leaveOutFiltered;
  out.writer.write(program);
  out.writer.finish();
  return out.text;
}

std::string rewritten(const std::string& value) {
  const ParsedExpression parsed(value);
  return writtenValue(*parsed.tree.get());
}

// What is wrong with a value; "" when it can be written. Takes it over.
std::string problemOf(ExpressionAST* value) {
  const auto_ast<ExpressionAST> owned(value);
  try {
    writtenValue(*value);
  } catch (const NotWritableException& error) {
    const std::string start = "Cannot be written as scene text: ";
    const std::string message = error.message.chars();
    EXPECT_TRUE(message.starts_with(start)) << message;
    return message.substr(start.size());
  }
  return "";
}

std::string problemOf(const ProgramAST& program) {
  try {
    writtenScene(program);
  } catch (const NotWritableException& error) {
    return error.message.chars();
  }
  return "";
}

struct ProgramOfOne {
  explicit ProgramOfOne(const char* type, const char* name) : program(new ProgramAST) {
    object = add(program.get(), type, name);
  }
  void give(const char* name, ExpressionAST* value) const {
    object->addProperty(property(name, value), 0, 0);
  }

  auto_ast<ProgramAST> program;
  ObjectAST* object;
};

ObjectReferenceAST* reference(const char* name) {
  ObjectReferenceAST* node = ObjectReferenceAST::pool.newElement();
  node->name = name;
  return node;
}

StringExpressionAST* recorded(std::string_view text) {
  StringExpressionAST* node = StringExpressionAST::pool.newElement();
  node->text.freeMem();
  node->ownsText = 0;
  node->span[0] = reinterpret_cast<uint64_t>(text.data());
  node->span[1] = text.size();
  return node;
}

BuiltinFunctionAST* call(int function, int arguments) {
  auto* node = new BuiltinFunctionAST;
  node->funcID = function;
  for (; node->numArgs < arguments; ++node->numArgs) node->args[node->numArgs] = number(1);
  return node;
}

template <class Node>
Node* pairOfNames(const char* object, const char* name) {
  auto* node = new Node;
  node->objectName = object;
  if constexpr (std::is_same_v<Node, RuntimeValueAST>) {
    node->valueName = name;
  } else {
    node->propertyName = name;
  }
  return node;
}

ArrayExpressionAST* element(ExpressionAST* base, ExpressionAST* index) {
  auto* node = new ArrayExpressionAST;
  node->base = base;
  if (index != nullptr) node->indices.push_back(index);
  return node;
}

}  // namespace

// ---- what is written ---------------------------------------------------------------------------

TEST(SceneTextWriter, EveryKindOfValue) {
  const struct {
    const char* value;
    const char* text;  // null: the same
  } rows[] = {
      {"1.50", "1.5"},
      {"nan", "0"},
      {"1.#INF", "9.999999843067492e17"},
      {"1e400", "1e309"},
      {"0e400", "0e309"},
      {"\"a \\\"b\\\" \\\\\"", nullptr},
      {"b", nullptr},
      {"b.c", nullptr},
      {"b::c", nullptr},
      {"b.c[1].y[d + 1]", "b.c[1][1][d + 1]"},
      {"-b", nullptr},
      {"+b", "b"},
      {"Vector(1, 2, 3)", nullptr},
      {"Color(1, 2, 3)", nullptr},
      {"AColor(1, 2, 3, 4)", nullptr},
      {"Matrix(1, 2, 3)", nullptr},
      {"Transform(1, 2)", nullptr},
      {"TransformHex(\"0f f0\")", nullptr},
      {"TransformHex(abc)", "TransformHex(xxx)"},
      {"clamp(1, 2, 3)", nullptr},
      {"pi()", nullptr},
      {"List()", nullptr},
      {"List(1, \"a\", List(b))", nullptr},
      {"interpolate((1, 2), (3, -4))", nullptr},
      {"ListInt(1, -2, -2147483648,)", "ListInt(1, -2, -2147483648)"},
      {"ListFloat(1, .1, -+0, -1e400)", "ListFloat(1, 0.1, -0, -1e309)"},
      {"ListFloat()", nullptr},
      {"ListVector(Vector(1, 2, 3), Vector(4, -5, 6))", nullptr},
      {"ListColor(Color(1, 2, 3))", nullptr},
      {"ListString(\"a b\", \"\")", nullptr},
      {"ListIntHex(\"01\")", nullptr},
      {"ListFloatHex(\"02\")", nullptr},
      {"ListVectorHex(\"03\")", nullptr},
      {"ListColorHex(\"04\")", nullptr},
  };
  for (const auto& row : rows) {
    EXPECT_EQ(rewritten(row.value), std::string(row.text != nullptr ? row.text : row.value) + '\n');
  }
}

TEST(SceneTextWriter, OperatorsKeepOnlyTheBracketsThatTheyNeed) {
  const struct {
    const char* value;
    const char* text;
  } rows[] = {
      {"((a + b)) + c", "a + b + c"},
      {"a + (b + c)", "a + (b + c)"},
      {"a - (b - c)", "a - (b - c)"},
      {"(a * b) * c / d", "a * b * c / d"},
      {"a * (b / c)", "a * (b / c)"},
      {"(a + b) * c", "(a + b) * c"},
      {"((a + b) * c + d) * e", "((a + b) * c + d) * e"},
      {"a + (b * c)", "a + b * c"},
      {"-(a + b)", "-(a + b)"},
      {"-(a * b)", "-(a * b)"},
      {"(-a) * b", "-a * b"},
      {"a - (-b)", "a - -b"},
      {"a * (-b)", "a * -b"},
      {"-(-a)", "-(-a)"},
      {"-(1)", "-1"},
      {"sin((a + b))", "sin(a + b)"},
      {"b.c[(1 + 2)]", "b.c[1 + 2]"},
  };
  for (const auto& row : rows) EXPECT_EQ(rewritten(row.value), std::string(row.text) + '\n');
}

TEST(SceneTextWriter, TextsKeepTheirCharacters) {
  const struct {
    const char* value;
    const char* text;  // null: the same
  } rows[] = {
      {R"("C:\scenes\new")", nullptr},
      {R"("\\")", nullptr},
      {R"("a\\")", nullptr},
      {R"("a\\b")", R"("a\b")"},
      {R"("a\\\\b")", nullptr},
      {R"("a\\\b")", R"("a\\\\b")"},
      {R"("\"")", nullptr},
      {R"("\\\"")", nullptr},
      {"\"two\nlines\r\n\"", nullptr},
      {"\"\xFF\xC3\xBC\"", nullptr},
  };
  for (const auto& row : rows) {
    EXPECT_EQ(rewritten(row.value), std::string(row.text != nullptr ? row.text : row.value) + '\n');
  }
}

TEST(SceneTextWriter, ObjectsAndPropertiesHaveLinesOfTheirOwn) {
  const ParsedScene scene(
      "B b { x = 1; \"with spaces\" = 2; nan = 3; 5 = 4; ( = 5; \"\" = 6; } A { } A a { x = b; }"
      "A { y = 1; }");
  EXPECT_EQ(writtenScene(*scene.program.get()),
            "B b {\n"
            "  x = 1;\n"
            "  \"with spaces\" = 2;\n"
            "  \"nan\" = 3;\n"
            "  \"5\" = 4;\n"
            "  \"(\" = 5;\n"
            "  \"\" = 6;\n"
            "}\n"
            "\n"
            "A {\n"
            "  y = 1;\n"
            "}\n"
            "\n"
            "A a {\n"
            "  x = b;\n"
            "}\n");
}

TEST(SceneTextWriter, EmptySceneIsEmpty) {
  const ParsedScene scene("");
  EXPECT_EQ(writtenScene(*scene.program.get()), "");
}

TEST(SceneTextWriter, PropertyAloneIsALine) {
  const ParsedScene scene("A a { x = 1; y = 2; }");
  TextWriter out;
  out.writer.write(*scene.object("a").findProperty("y"));
  out.writer.finish();
  EXPECT_EQ(out.text, "  y = 2;\n");
}

TEST(SceneTextWriter, TypeLikeAByteOrderMarkIsNotAtTheStart) {
  const ParsedScene scene("\n\xEF\xBB\xBF a { }");
  EXPECT_EQ(writtenScene(*scene.program.get()), "\n\xEF\xBB\xBF a { }\n");
}

TEST(SceneTextWriter, FilteredObjectsAreLeftOutOnRequest) {
  struct NoLights final : ScenePluginFilter {
    int acceptObject(const CharString& type, CharString&, void*) override {
      return type == CharString("Light") ? 0 : 1;
    }
  } filter;
  Scene scene = Scene::fromText("Light l { } Node n { }");
  scene.filter(filter);
  EXPECT_EQ(writtenScene(*scene.program()), "Light l { }\n\nNode n { }\n");
  EXPECT_EQ(writtenScene(*scene.program(), true), "Node n { }\n");
}

TEST(SceneTextWriter, LongListsAreFilledIntoLines) {
  EXPECT_EQ(rewritten("ListInt(" + repeated("12345,", 30) + "1)"),
            "ListInt(12345," + repeated(" 12345,", 12) + "\n    12345," + repeated(" 12345,", 12) +
                "\n    12345," + repeated(" 12345,", 3) + " 1)\n");
  EXPECT_EQ(rewritten("ListVector(" + repeated("Vector(10, 20, 30),", 6) + ")"),
            "ListVector(Vector(10, 20, 30)," + repeated(" Vector(10, 20, 30),", 3) +
                "\n    Vector(10, 20, 30), Vector(10, 20, 30))\n");
}

TEST(SceneTextWriter, TextComesInPiecesAndNoneIsHeldBack) {
  const ParsedExpression list("ListInt(" + repeated("1,", 200000) + ")");
  size_t longest = 0;
  size_t total = 0;
  SceneTextWriter writer([&](std::string_view piece) {
    longest = std::max(longest, piece.size());
    total += piece.size();
  });
  const int64_t before = allocationCount();
  writer.write(*list.tree.get());
  EXPECT_LT(allocationCount() - before, 60);
  writer.finish();
  EXPECT_LE(longest, 65536U);
  EXPECT_GT(total, 600000U);
}

TEST(SceneTextWriter, NumberThatNoLiteralReachesIsCounted) {
  TextWriter out;
  const auto_ast<ExpressionAST> value(number(std::numeric_limits<double>::signaling_NaN()));
  out.writer.write(*value.get());
  out.writer.finish();
  EXPECT_EQ(out.text, "0e309\n");
  EXPECT_EQ(out.writer.approximatedNumbers(), 1);
}

TEST(SceneTextWriter, NoNumberHasNoSignInAnExpression) {
  TextWriter out;
  constexpr double kNoNumber = std::numeric_limits<double>::quiet_NaN();
  for (const double value : {kNoNumber, -kNoNumber}) {
    const auto_ast<ExpressionAST> node(number(value));
    out.writer.write(*node.get());
  }
  out.writer.finish();
  EXPECT_EQ(out.text, "0e309\n0e309\n");
  EXPECT_EQ(out.writer.approximatedNumbers(), 1);
}

TEST(SceneTextWriter, WhatTheSinkThrowsPassesThrough) {
  const ParsedExpression list("ListInt(" + repeated("1,", 200000) + ")");
  SceneTextWriter writer([](std::string_view) { throw 5; });
  EXPECT_THROW(writer.write(*list.tree.get()), int);
}

// ---- what cannot be written --------------------------------------------------------------------

TEST(SceneTextWriter, ValuesThatNoTextGivesAreRefused) {
  const std::string nul("a\0b", 3);
  auto* listOfNull = new ListExpressionAST;
  listOfNull->head = listOfNull->tail = new ListCell;
  auto* nullString = new ListTypeExpressionAST<CharString>;
  nullString->elements.allocArray(1);
  auto* hexOfNothing = new ListTypeExpressionAST<int>;
  hexOfNothing->parsedForm = 0;
  BinaryExpressionAST* unknownOperator = binary(number(1), number(2));
  unknownOperator->op = 99;
  StringExpressionAST* nullText = StringExpressionAST::pool.newElement();
  nullText->text.freeMem();
  nullText->ownsText = 1;
  VectorExpressionAST* strange = vector(number(1), number(2), number(3));
  strange->kind = VALUE_TYPE{};
  const struct {
    ExpressionAST* value;
    const char* problem;
  } rows[] = {
      {negated(nullptr), "a value is null"},
      {binary(nullptr, number(1)), "a value is null"},
      {binary(number(1), nullptr), "a value is null"},
      {vector(number(1), nullptr, number(3)), "a value is null"},
      {listOfNull, "a value is null"},
      {nullText, "a text is null"},
      {nullString, "a text is null"},
      {recorded(nul), "a text holds a NUL"},
      {hexOfNothing, "a hexadecimal form has no text"},
      {number(-1), "a number is negative without a negation over it"},
      {number(-0.0), "a number is negative without a negation over it"},
      {unknownOperator, "an operator is unknown"},
      {strange, "a vector is of no known kind"},
      {call(99, 1), "a function is unknown"},
      {call(BuiltinFunctionAST::kRandom, 1), "a call of random has 1 arguments"},
      {interpolation(0), "an interpolation has no pairs"},
      {reference(nullptr), "the name in a reference is no identifier"},
      {reference(""), "the name in a reference is no identifier"},
      {reference("nan"), "the name in a reference is no identifier"},
      {reference("5a"), "the name in a reference is no identifier"},
      {reference("a-b"), "the name in a reference is no identifier"},
      {pairOfNames<PropertyReferenceAST>("a b", "c"), "the object in a reference is no identifier"},
      {pairOfNames<PropertyReferenceAST>("a", "nan"),
       "the name behind the object in a reference is no identifier"},
      {pairOfNames<RuntimeValueAST>("a", ""),
       "the name behind the object in a reference is no identifier"},
      {element(number(1), number(2)), "something else than a property is indexed"},
      {element(nullptr, number(2)), "something else than a property is indexed"},
      {element(pairOfNames<PropertyReferenceAST>("a", "b"), nullptr),
       "a property is indexed by nothing"},
  };
  for (const auto& row : rows) EXPECT_EQ(problemOf(row.value), row.problem);
}

TEST(SceneTextWriter, ObjectsThatNoTextGivesAreRefused) {
  const struct {
    const char* type;
    const char* name;
    const char* problem;
  } rows[] = {
      {nullptr, "a", "object \" a\", its type is no identifier"},
      {"", "a", "object \" a\", its type is no identifier"},
      {"nan", "a", "object \"nan a\", its type is no identifier"},
      {"A", "a b", "object \"A a b\", its name is no identifier"},
      {"A", "nan", "object \"A nan\", its name is no identifier"},
  };
  for (const auto& row : rows) {
    const ProgramOfOne one(row.type, row.name);
    EXPECT_EQ(problemOf(*one.program.get()),
              std::string("Cannot be written as scene text: ") + row.problem);
  }
}

TEST(SceneTextWriter, RefusalNamesObjectAndProperty) {
  const ProgramOfOne one("A", "a");
  one.give("x", number(1));
  one.give("y", number(-1));
  EXPECT_EQ(problemOf(*one.program.get()),
            "Cannot be written as scene text: object \"A a\", property \"y\", a number is negative "
            "without a negation over it");
}

TEST(SceneTextWriter, NullForAPropertysNameOrValueIsRefused) {
  const ProgramOfOne unnamed("A", "a");
  unnamed.give(nullptr, number(1));
  EXPECT_NE(problemOf(*unnamed.program.get()).find("a text is null"), std::string::npos);
  const ProgramOfOne empty("A", "a");
  empty.give("x", nullptr);
  EXPECT_NE(problemOf(*empty.program.get()).find("a value is null"), std::string::npos);
}

TEST(SceneTextWriter, NullForAnObjectsNameIsNoName) {
  const ProgramOfOne one("A", nullptr);
  EXPECT_EQ(writtenScene(*one.program.get()), "A { }\n");
}

TEST(SceneTextWriter, ObjectsThatWouldBecomeOneAreRefused) {
  struct RenameAll final : ScenePluginFilter {
    int acceptObject(const CharString&, CharString& name, void*) override {
      name = "same";
      return 1;
    }
  } filter;
  Scene scene = Scene::fromText("A a { } A b { } B c { }");
  scene.filter(filter);
  EXPECT_EQ(problemOf(*scene.program()),
            "Cannot be written as scene text: object \"A same\", there is another one of that type "
            "and name");
}

TEST(SceneTextWriter, OverriddenAssignmentsAreLeftOutWhenWished) {
  const ParsedScene scene("A a { x = 1; y = 2; x = 3; x = 4; } A b { x = 5; }");
  EXPECT_EQ(writtenScene(*scene.program.get()),
            "A a {\n  x = 1;\n  y = 2;\n  x = 3;\n  x = 4;\n}\n\nA b {\n  x = 5;\n}\n");
  TextWriter out;
  out.writer.leaveOutOverridden = true;
  out.writer.write(*scene.program.get());
  out.writer.finish();
  EXPECT_EQ(out.text, "A a {\n  y = 2;\n  x = 4;\n}\n\nA b {\n  x = 5;\n}\n");
}

TEST(SceneTextWriter, FinishingTwiceWritesNothingTwice) {
  const ParsedScene scene("A a { }");
  TextWriter out;
  out.writer.write(*scene.program.get());
  out.writer.finish();
  out.writer.finish();
  EXPECT_EQ(out.text, "A a { }\n");
}
