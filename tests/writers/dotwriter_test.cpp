#include "kelp/writers/dotwriter.h"

#include <gtest/gtest.h>

#include <string>

#include "tests/support/largescenes.h"
#include "tests/support/trees.h"

using namespace Kelp;
using KelpTest::ParsedScene;

namespace {

constexpr const char* kHead = "digraph scene {\n  rankdir=LR;\n  node [shape=box];\n";

std::string written(const ProgramAST& program,
                    const std::function<bool(const ObjectAST&)>& isWanted = nullptr) {
  std::string text;
  DotWriter writer([&text](std::string_view piece) { text += piece; });
  writer.isWanted = isWanted;
  writer.write(program);
  return text;
}

// The lines of nodes and edges.
std::string graphOf(const std::string& scene,
                    const std::function<bool(const ObjectAST&)>& isWanted = nullptr) {
  const ParsedScene parsed(scene);
  const std::string text = written(*parsed.program.get(), isWanted);
  EXPECT_TRUE(text.starts_with(kHead) && text.ends_with("}\n")) << text;
  const size_t start = std::string_view(kHead).size();
  return text.substr(start, text.size() - start - 2);
}

}  // namespace

TEST(DotWriter, ObjectsAreNodesWithNameAndType) {
  EXPECT_EQ(graphOf(""), "");
  EXPECT_EQ(graphOf("Light lamp {} Mesh {}"),
            "  n1 [label=\"lamp\\nLight\"];\n"
            "  n2 [label=\"Mesh\"];\n");
}

TEST(DotWriter, PropertiesAreEdgesInTheOrderOfTheText) {
  EXPECT_EQ(graphOf("A a { x = b; y = a.z + 2 * b::v; } B b { z = List(b, a); }"),
            "  n1 [label=\"a\\nA\"];\n"
            "  n2 [label=\"b\\nB\"];\n"
            "  n1 -> n2 [label=\"x\"];\n"
            "  n1 -> n1 [label=\"y\"];\n"
            "  n1 -> n2 [label=\"y\"];\n"
            "  n2 -> n2 [label=\"z\"];\n"
            "  n2 -> n1 [label=\"z\"];\n");
}

TEST(DotWriter, SeveralReferencesOfOnePropertyToOneObjectAreOneEdge) {
  EXPECT_EQ(graphOf("A a { x = b + b.c * b::d; x = b; y = b; } B b {}"),
            "  n1 [label=\"a\\nA\"];\n"
            "  n2 [label=\"b\\nB\"];\n"
            "  n1 -> n2 [label=\"x\"];\n"
            "  n1 -> n2 [label=\"y\"];\n");
}

TEST(DotWriter, DanglingNamesAreDashedNodes) {
  EXPECT_EQ(graphOf("A a { x = none; y = none.z + no; } A b { x = none; }"),
            "  n1 [label=\"a\\nA\"];\n"
            "  n2 [label=\"b\\nA\"];\n"
            "  d1 [label=\"none\", style=dashed];\n"
            "  n1 -> d1 [label=\"x\"];\n"
            "  n1 -> d1 [label=\"y\"];\n"
            "  d2 [label=\"no\", style=dashed];\n"
            "  n1 -> d2 [label=\"y\"];\n"
            "  n2 -> d1 [label=\"x\"];\n");
}

TEST(DotWriter, ReferenceToASharedNameGoesToTheFirstOfIt) {
  EXPECT_EQ(graphOf("A a { x = b; } B b {} C b {}"),
            "  n1 [label=\"a\\nA\"];\n"
            "  n2 [label=\"b\\nB\"];\n"
            "  n3 [label=\"b\\nC\"];\n"
            "  n1 -> n2 [label=\"x\"];\n");
}

TEST(DotWriter, NamesAreQuoted) {
  const struct {
    std::string property;  // as the scene text spells it
    std::string label;
  } rows[] = {
      {"\"say \\\"x\\\"\"", "say \\\"x\\\""},
      {R"("a\b\\")", R"(a\\b\\)"},
      {R"("\\")", R"(\\)"},
      {R"("\N\n")", R"(\\N\\n)"},
      {"\"two\nlines\"", "two\\nlines"},
      {"\"tab\tbell\a\"",
       "tab\xEF\xBF\xBD"
       "bell\xEF\xBF\xBD"},
      {"\"\"", ""},
      {"\"a &lt; b\"", "a &amp;lt; b"},
      {"gr\xC3\xB6\xC3\x9F"
       "e",
       "gr\xC3\xB6\xC3\x9F"
       "e"},
      {"\"\xE2\x82\xAC and \xF0\x9F\x92\xA1\"", "\xE2\x82\xAC and \xF0\x9F\x92\xA1"},
      {"bad\xFF"
       "byte",
       "bad\xEF\xBF\xBD"
       "byte"},
      {"cut\xC3", "cut\xEF\xBF\xBD"},
      {"\"{<a>|b}\"", "{<a>|b}"},
  };
  for (const auto& row : rows) {
    EXPECT_EQ(graphOf("A a { " + row.property + " = a; }"),
              "  n1 [label=\"a\\nA\"];\n  n1 -> n1 [label=\"" + row.label + "\"];\n");
  }
  EXPECT_EQ(graphOf("T\xFFy n\xC3\xA4@m|e$ { x = d\xFE; }"),
            "  n1 [label=\"n\xC3\xA4@m|e$\\nT\xEF\xBF\xBDy\"];\n"
            "  d1 [label=\"d\xEF\xBF\xBD\", style=dashed];\n"
            "  n1 -> d1 [label=\"x\"];\n");
}

TEST(DotWriter, OnlyWantedObjectsAndReferencesBetweenThem) {
  const auto isA = [](const ObjectAST& object) { return *object.type.chars() == 'A'; };
  EXPECT_EQ(graphOf("A a { x = b; y = c; z = no; } B b { x = c; y = neither; } A c {}", isA),
            "  n1 [label=\"a\\nA\"];\n"
            "  n2 [label=\"c\\nA\"];\n"
            "  n1 -> n2 [label=\"y\"];\n"
            "  d1 [label=\"no\", style=dashed];\n"
            "  n1 -> d1 [label=\"z\"];\n");
  // A name that the first of its objects has, which is not shown, is not another's.
  EXPECT_EQ(graphOf("A a { x = b; } B b {} A b {}", isA),
            "  n1 [label=\"a\\nA\"];\n"
            "  n2 [label=\"b\\nA\"];\n");
}

TEST(DotWriter, AbsentNamesAndTypesAreEmpty) {
  const ParsedScene scene("A a { x = b; }");
  ObjectAST& object = scene.object("a");
  object.type.freeMem();
  object.firstProperty->name.freeMem();
  KelpTest::as<ObjectReferenceAST>(object.firstProperty->value).name.freeMem();
  EXPECT_EQ(written(*scene.program.get()), std::string(kHead) +
                                               "  n1 [label=\"a\\n\"];\n"
                                               "  d1 [label=\"\", style=dashed];\n"
                                               "  n1 -> d1 [label=\"\"];\n}\n");
}

TEST(DotWriter, LongGraphComesInPieces) {
  std::string scene;
  for (int i = 0; i < 20000; ++i) {
    scene += "A n" + std::to_string(i) + " { x = n" + std::to_string((i * 7) % 20000) + "; }\n";
  }
  const ParsedScene parsed(scene);
  std::string text;
  size_t longest = 0;
  DotWriter writer([&](std::string_view piece) {
    text += piece;
    longest = std::max(longest, piece.size());
  });
  writer.write(*parsed.program.get());
  EXPECT_LT(longest, 70000U);
  EXPECT_TRUE(text.ends_with("  n20000 -> n19994 [label=\"x\"];\n}\n"))
      << text.substr(text.size() - 99);
}

TEST(DotWriter, NeitherLengthNorDepthNeedsStack) {
  for (const KelpTest::LargeValue& value : KelpTest::largeValues()) {
    SCOPED_TRACE(value.name);
    KelpTest::withSceneOnSmallStack(value.text, [](Scene& scene) {
      ASSERT_TRUE(scene) << scene.error();
      EXPECT_TRUE(written(*scene.program()).starts_with(kHead));
    });
  }
}
