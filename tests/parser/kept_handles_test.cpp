// Texts that a host keeps of a tree, and a tree that outlives its sources.
#include <gtest/gtest.h>

#include <memory>
#include <vector>

#include "tests/support/balance.h"
#include "tests/support/filters.h"
#include "tests/support/richscenes.h"

using namespace Kelp;
using namespace KelpTest;

namespace {

constexpr const char* kScene = R"(
  Type name { property = "text" + reference + other.member + third::value;
              strings = ListString("first", "second"); })";

// A copy of every text of the scene above, in the order of its tree.
std::vector<CharString> textsOf(const ParsedScene& scene) {
  const ObjectAST& object = scene.object("name");
  auto& third = as<BinaryExpressionAST>(object.findProperty("property")->value);
  auto& second = as<BinaryExpressionAST>(third.left);
  auto& first = as<BinaryExpressionAST>(second.left);
  auto& text = as<StringExpressionAST>(first.left);
  auto& reference = as<ObjectReferenceAST>(first.right);
  auto& member = as<PropertyReferenceAST>(second.right);
  auto& value = as<RuntimeValueAST>(third.right);
  auto& list = as<ListTypeExpressionAST<CharString>>(object.findProperty("strings")->value);
  return {object.type,         object.name,      object.firstProperty->name,
          text.text,           reference.name,   member.objectName,
          member.propertyName, value.objectName, value.valueName,
          list.elements[0],    list.elements[1]};
}

const std::vector<std::string> kTexts = {"Type",      "name",  "property", "text",
                                         "reference", "other", "member",   "third",
                                         "value",     "first", "second"};

std::vector<std::string> charactersOf(const std::vector<CharString>& texts) {
  std::vector<std::string> characters;
  for (const CharString& text : texts) characters.emplace_back(text.chars());
  return characters;
}

TEST(KeptHandles, TreeHoldsEveryTextAlone) {
  const ParsedScene scene(kScene);
  for (const CharString& text : textsOf(scene)) {
    EXPECT_EQ(text.buffer->referenceCount, 2) << text.chars() << ": the tree's and this copy";
  }
}

TEST(KeptHandles, NamesThatComeAgainShareOneBuffer) {
  // Whether a name will come again is known when it does.
  const ParsedScene scene("A c { y = d; } A a { y = d; x = b; } A b { y = 1; x = b.x; z = b::v; }");
  const ObjectAST& a = scene.object("a");
  const ObjectAST& b = scene.object("b");
  EXPECT_EQ(a.type.buffer, b.type.buffer);
  EXPECT_EQ(a.type.buffer->referenceCount, 2) << "whoever reads the scene holds nothing behind it";
  EXPECT_NE(scene.object("c").type.buffer, a.type.buffer);
  EXPECT_EQ(a.findProperty("y")->name.buffer, b.findProperty("y")->name.buffer);
  const CharString& name = as<PropertyReferenceAST>(b.findProperty("x")->value).objectName;
  EXPECT_EQ(name.buffer, as<RuntimeValueAST>(b.findProperty("z")->value).objectName.buffer);
  EXPECT_EQ(name.buffer->referenceCount, 2);
  EXPECT_NE(name.buffer, as<ObjectReferenceAST>(a.findProperty("x")->value).name.buffer);
  CharString written = a.type;
  written.append("more");
  EXPECT_STREQ(b.type.chars(), "A");
}

TEST(KeptHandles, NamesThatComeOnceDoNotDriveOutTheOthers) {
  std::string text = "A a { often = 1; } A b { often = 2; }";
  for (int i = 0; i < 20000; ++i) {
    text += " B once" + std::to_string(i) + " { x = other" + std::to_string(i) + "; }";
  }
  const ParsedScene scene(text + " A c { often = 3; }");
  EXPECT_EQ(scene.object("b").firstProperty->name.buffer,
            scene.object("c").firstProperty->name.buffer);
}

TEST(KeptHandles, OutliveTheSceneAndTheReuseOfItsNodes) {
  std::vector<CharString> kept;
  {
    const ParsedScene scene(kScene);
    kept = textsOf(scene);
  }
  EXPECT_EQ(charactersOf(kept), kTexts);
  for (const std::string& text : richScenes()) parsedScene(text);
  EXPECT_EQ(parsedScene("Other o { q = \"changed\" + changed; }").find("error"), std::string::npos);
  EXPECT_EQ(charactersOf(kept), kTexts);
}

TEST(KeptHandles, OfANewNameChangeNothingWhenTheHostWritesThem) {
  FilteredScene scene("A n { x = n; }");
  CharString host("m");
  FunctionFilter filter([&](const CharString&, CharString& name, void*) {
    name = host;
    return 1;
  });
  scene.filter(filter);
  host = "a text of the host's own that needs the heap of its own";
  EXPECT_STREQ(scene.object("m").name.chars(), "m");
  EXPECT_EQ(scene.references(), (std::vector<std::string>{"m"}));
  host = scene.object("m").type;
  host = "B";
  EXPECT_STREQ(scene.object("m").type.chars(), "A");
}

// Long strings and hexadecimal texts are borrowed; releasing them must not touch what is gone.
TEST(KeptHandles, ReleaseTouchesNoSourceText) {
  std::vector<std::string> texts = richScenes();
  texts.push_back("A a { x = \"" + std::string(5000, 'x') + "\"; y = ListIntHex(\"00ff\"); " +
                  "z = TransformHex(\"3f\\\"80\"); }");
  for (const std::string& text : texts) {
    expectBalanced([&text] {
      auto source = std::make_unique<TextParser>(text);
      ProgramAST* program = source->parser.parseProgram();
      source.reset();
      if (program != nullptr) program->deleteThis();
    });
  }
}

}  // namespace
