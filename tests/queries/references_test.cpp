#include "kelp/queries/references.h"

#include <gtest/gtest.h>

#include <string>

#include "kelp/scene.h"
#include "tests/support/largescenes.h"
#include "tests/support/trees.h"

using namespace Kelp;
using KelpTest::as;
using KelpTest::ParsedScene;

namespace {

// "property:target", "property:target.member" or "property:target::member", each with a blank.
std::string listed(const std::vector<Reference>& references) {
  std::string text;
  for (const Reference& reference : references) {
    text += std::string(reference.property->name.chars()) + ':' + reference.target->chars();
    if (reference.kind == Reference::Kind::kProperty) text += '.';
    if (reference.kind == Reference::Kind::kRuntimeValue) text += "::";
    if (reference.member != nullptr) text += reference.member->chars();
    text += ' ';
  }
  return text;
}

std::string referencesIn(const std::string& properties) {
  const ParsedScene scene("A a { " + properties + " }");
  std::vector<Reference> references;
  findReferences(scene.object("a"), references);
  return listed(references);
}

}  // namespace

TEST(References, EveryFormIsFoundInTheOrderOfTheText) {
  const struct {
    const char* properties;
    const char* expected;
  } rows[] = {
      {"", ""},
      {"x = 1; y = \"b\"; z = ListString(\"b\"); w = TransformHex(\"00\");", ""},
      {"x = b;", "x:b "},
      {"x = b.c;", "x:b.c "},
      {"x = b::c;", "x:b::c "},
      {"x = b.c[d].x;", "x:b.c x:d "},
      {"x = b.c[d.e[f]] + g;", "x:b.c x:d.e x:f x:g "},
      {"x = a + b * c - d;", "x:a x:b x:c x:d "},
      {"x = -(a) * -b;", "x:a x:b "},
      {"x = Vector(a, b, c); y = Color(d, e, f);", "x:a x:b x:c y:d y:e y:f "},
      {"x = AColor(a, b, c, d);", "x:a x:b x:c x:d "},
      {"x = Transform(Matrix(a, b, c), d);", "x:a x:b x:c x:d "},
      {"x = List(a, List(b, c), d);", "x:a x:b x:c x:d "},
      {"x = select(a, b, c, d);", "x:a x:b x:c x:d "},
      {"x = interpolate((a, b), (c, d));", "x:a x:b x:c x:d "},
      {"x = b; x = b; y = b + b;", "x:b x:b y:b y:b "},
  };
  for (const auto& row : rows) EXPECT_EQ(referencesIn(row.properties), row.expected);
}

TEST(References, PropertyAloneGivesItsOwn) {
  const ParsedScene scene("A a { x = b; y = c; }");
  std::vector<Reference> references(3);
  findReferences(*scene.object("a").firstProperty->next, references);
  EXPECT_EQ(listed(references), "y:c ");
}

TEST(References, NeitherLengthNorDepthNeedsStack) {
  for (const KelpTest::LargeValue& value : KelpTest::largeValues()) {
    SCOPED_TRACE(value.name);
    const std::string reference = "a.b";
    int64_t expected = 0;
    for (size_t at = 0; (at = value.text.find(reference, at)) != std::string::npos; ++at) {
      ++expected;
    }
    KelpTest::withSceneOnSmallStack(value.text, [expected](Scene& scene) {
      ASSERT_TRUE(scene) << scene.error();
      EXPECT_EQ(resolveReferences(*scene.program()).resolved, expected);
    });
  }
}

TEST(ResolveReferences, FirstObjectOfTheNameIsSet) {
  const ParsedScene scene("A a { x = b; y = c; } B b { x = a; } C b {} A c { z = b; }");
  const Resolution resolution = resolveReferences(*scene.program.get());
  EXPECT_EQ(resolution.resolved, 4);
  EXPECT_TRUE(resolution.dangling.empty());
  const auto referenceOf = [&scene](const char* object, const char* property) {
    return as<ObjectReferenceAST>(scene.object(object).findProperty(property)->value).object;
  };
  EXPECT_EQ(referenceOf("a", "x"), &scene.object("b"));
  EXPECT_STREQ(referenceOf("a", "x")->type.chars(), "B");
  EXPECT_EQ(referenceOf("a", "y"), &scene.object("c"));
  EXPECT_EQ(referenceOf("b", "x"), &scene.object("a"));
  EXPECT_EQ(referenceOf("c", "z"), &scene.object("b"));
}

TEST(ResolveReferences, DanglingOnesAreListedInTheOrderOfTheText) {
  const ParsedScene scene("A a { x = no; y = a.z + no::v; } B b { x = a::v; y = A.z[none]; }");
  const Resolution resolution = resolveReferences(*scene.program.get());
  EXPECT_EQ(resolution.resolved, 2);
  std::string found;
  for (const auto& [object, reference] : resolution.dangling) {
    found += std::string(object->name.chars()) + '.' + listed({reference});
  }
  EXPECT_EQ(found, "a.x:no a.y:no::v b.y:A.z b.y:none ");
}

TEST(ResolveReferences, RenamedObjectIsNoLongerReferredTo) {
  const ParsedScene scene("A a { x = b; } B b {}");
  resolveReferences(*scene.program.get());
  auto& reference = as<ObjectReferenceAST>(scene.object("a").findProperty("x")->value);
  ASSERT_NE(reference.object, nullptr);
  CharString renamed("c");
  scene.program.get()->updateName("b", renamed);
  EXPECT_EQ(resolveReferences(*scene.program.get()).dangling.size(), 1U);
  EXPECT_EQ(reference.object, nullptr);
}

TEST(ResolveReferences, AffixedNamesFindEachOther) {
  SceneOptions options;
  options.nameAffix = "left_";
  const Scene scene = Scene::fromText("A a { x = b; y = none; } B b {}", options);
  const Resolution resolution = resolveReferences(*scene.program());
  EXPECT_EQ(resolution.resolved, 1);
  ASSERT_EQ(resolution.dangling.size(), 1U);
  EXPECT_STREQ(resolution.dangling[0].reference.target->chars(), "left_none");
}
