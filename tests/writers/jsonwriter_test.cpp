#include "kelp/writers/jsonwriter.h"

#include <gtest/gtest.h>

#include <sstream>

#include "kelp/ast/expressions.h"
#include "kelp/parser/scenepluginfilter.h"
#include "kelp/scene.h"
#include "kelp/writers/numbertext.h"
#include "tests/support/written.h"

namespace {

std::string treeJson(const Kelp::Scene& scene) {
  if (!scene) return "error: " + scene.error().message;
  return KelpTest::treeJson(*scene.program());
}

std::string treeJson(const std::string& text, const Kelp::SceneOptions& options = {}) {
  return treeJson(Kelp::Scene::fromText(text, "d/a.scene", options));
}

std::string scene(const std::string& objects) {
  return R"({"format":"kelp-tree 1","scene":"a.scene","objects":[)" + objects + "]}\n";
}

std::string object(const std::string& properties, const std::string& filteredOut = "0") {
  return R"({"type":"A","name":"a","filteredOut":)" + filteredOut + R"(,"properties":[)" +
         properties + "]}";
}

std::string property(const std::string& value, const std::string& frames = "") {
  return R"({"name":"x","file":"d/a.scene","line":1,"frames":[)" + frames + R"(],"value":)" +
         value + "}";
}

std::string number(const std::string& digits) {
  return R"({"kind":"number","value":)" + digits + "}";
}

// The JSON of a value of the language, without the object around it.
std::string valueJson(const std::string& value) {
  const std::string text = treeJson("A a { x = " + value + "; }");
  const std::string whole = scene(object(property("?")));
  const size_t before = whole.find('?');
  const size_t behind = whole.size() - before - 1;
  if (text.size() < whole.size() || text.substr(0, before) != whole.substr(0, before)) return text;
  return text.substr(before, text.size() - before - behind);
}

// With the node of the number 1 for #1 and so on.
std::string numbered(std::string text) {
  for (size_t at = text.find('#'); at != std::string::npos; at = text.find('#')) {
    text.replace(at, 2, number(text.substr(at + 1, 1)));
  }
  return text;
}

}  // namespace

TEST(TreeJson, EveryKindOfValue) {
  const struct {
    const char* value;
    const char* json;
  } rows[] = {
      {"1", "#1"},
      {"\"t\"", R"({"kind":"string","text":"t","directory":"d","ownsText":true})"},
      {"Vector(1,2,3)", R"({"kind":"vector","valueType":3,"components":[#1,#2,#3]})"},
      {"Color(1,2,3)", R"({"kind":"color","valueType":5,"components":[#1,#2,#3]})"},
      {"AColor(1,2,3,4)", R"({"kind":"acolor","components":[#1,#2,#3,#4]})"},
      {"Matrix(1,2,3)", R"({"kind":"matrix","rows":[#1,#2,#3]})"},
      {"Transform(1,2)", R"({"kind":"transform","matrix":#1,"offset":#2})"},
      {"TransformHex(\"0F f0\")", R"({"kind":"transformHex","hex":"0F f0"})"},
      {"TransformHex(b)", R"({"kind":"transformHex","hex":null})"},
      {"b", R"({"kind":"reference","object":"b"})"},
      {"b.c", R"({"kind":"propertyReference","object":"b","property":"c"})"},
      {"b::c", R"({"kind":"runtimeValue","object":"b","value":"c"})"},
      {"b.c[4].z",
       R"({"kind":"element","base":{"kind":"propertyReference","object":"b","property":"c"},)"
       R"("indices":[#4,#2]})"},
      {"-1", R"({"kind":"negated","operand":#1})"},
      {"1+2-3", R"({"kind":"operators","operators":[13,14],"operands":[#1,#2,#3]})"},
      {"1*2/3+4", R"({"kind":"operators","operators":[15,16,13],"operands":[#1,#2,#3,#4]})"},
      {"1-(2+3)", R"({"kind":"operators","operators":[14],"operands":[#1,)"
                  R"({"kind":"operators","operators":[13],"operands":[#2,#3]}]})"},
      {"select(1,2,3,4)",
       R"({"kind":"call","id":24,"name":"select","seed":0,"arguments":[#1,#2,#3,#4]})"},
      {"pi()", R"({"kind":"call","id":26,"name":"pi","seed":0,"arguments":[]})"},
      {"List(1,2)", R"({"kind":"list","elements":[#1,#2]})"},
      {"List()", R"({"kind":"list","elements":[]})"},
      {"interpolate((1,2),(3,4))",
       R"({"kind":"interpolation","pairs":[{"key":#1,"value":#2},{"key":#3,"value":#4}]})"},
      {"ListVector(Vector(1,2,.5),Vector(4,5,6))",
       R"({"kind":"vectorList","elements":[[1,2,0.5],[4,5,6]]})"},
      {"ListColor(Color(1,2,3))", R"({"kind":"colorList","elements":[[1,2,3]]})"},
      {"ListFloat(.1,-0)", R"({"kind":"floatList","elements":[0.1,-0.0]})"},
      {"ListInt(1,-2)", R"({"kind":"intList","elements":[1,-2]})"},
      {"ListString(\"a\",\"\")", R"({"kind":"stringList","elements":["a",""],"directory":"d"})"},
      {"ListVectorHex(\"0A\")", R"({"kind":"vectorList","hex":"0A"})"},
      {"ListColorHex(\"0B\")", R"({"kind":"colorList","hex":"0B"})"},
      {"ListFloatHex(\"0C\")", R"({"kind":"floatList","hex":"0C"})"},
      {"ListIntHex(\"0D\")", R"({"kind":"intList","hex":"0D"})"},
  };
  for (const auto& row : rows) EXPECT_EQ(valueJson(row.value), numbered(row.json)) << row.value;
}

TEST(TreeJson, SeedHasTheDigitsOfAFloat) {
  Kelp::BuiltinFunctionAST::rndGen.reset();
  Kelp::RandomGenerator generator;
  generator.drawSeed();
  const std::string seed(Kelp::NumberText(generator.drawSeed()).view());
  EXPECT_EQ(valueJson("List(random(1,2),randomInt(1,2))"),
            numbered(R"({"kind":"list","elements":[)"
                     R"({"kind":"call","id":2,"name":"random","seed":0,"arguments":[#1,#2]},)"
                     R"({"kind":"call","id":12,"name":"randomInt","seed":)" +
                     seed + R"(,"arguments":[#1,#2]}]})"));
}

TEST(TreeJson, LongTextIsBorrowedAndWhole) {
  const std::string text(5000, 'q');
  EXPECT_EQ(valueJson('"' + text + '"'),
            R"({"kind":"string","text":")" + text + R"(","directory":"d","ownsText":false})");
}

TEST(TreeJson, TextsAreEscapedAsJsonAsksFor) {
  EXPECT_EQ(valueJson("\"\\\" \\\\ \n \x1b \xC3\xA9\""),
            "{\"kind\":\"string\",\"text\":\"\\\" \\\\ \\n \\u001B \xC3\xA9\","
            "\"directory\":\"d\",\"ownsText\":true}");
}

TEST(TreeJson, TextThatIsNotUtf8IsWrittenAsBytes) {
  EXPECT_EQ(valueJson("\"a\xFF\""),
            R"({"kind":"string","text":{"bytes":"61ff"},"directory":"d","ownsText":true})");
  EXPECT_EQ(valueJson("b\xC3.c"),
            R"({"kind":"propertyReference","object":{"bytes":"62c3"},"property":"c"})");
  EXPECT_EQ(valueJson("ListIntHex(\"\x80\")"), R"({"kind":"intList","hex":{"bytes":"80"}})");
}

TEST(TreeJson, NumbersWithoutDigitsAreStrings) {
  EXPECT_EQ(valueJson("1e400"), number("\"Infinity\""));
  EXPECT_EQ(valueJson("0e400"), number("\"NaN\""));
  EXPECT_EQ(valueJson("ListFloat(1e400,-1e400)"),
            R"({"kind":"floatList","elements":["Infinity","-Infinity"]})");
}

TEST(TreeJson, ObjectsStandInTextOrderEvenWithoutProperties) {
  EXPECT_EQ(treeJson("B { } A a { }"),
            scene(R"({"type":"B","name":"","filteredOut":0,"properties":[]},)" + object("")));
  EXPECT_EQ(treeJson(""), scene(""));
}

TEST(TreeJson, NullNamesAndValuesDifferFromEmptyOnes) {
  Kelp::Scene read = Kelp::Scene::fromText("A a { x = 1; }", "d/a.scene");
  Kelp::ObjectAST* first = read.program()->firstObject;
  const Kelp::CharString name = first->name;
  first->name = Kelp::CharString();
  first->type = Kelp::CharString();
  first->firstProperty->value->deleteThis();
  first->firstProperty->value = nullptr;
  EXPECT_EQ(treeJson(read), scene(R"({"type":null,"name":null,"filteredOut":0,"properties":[)" +
                                  property("null") + "]}"));
  first->name = name;
}

TEST(TreeJson, EveryRecordOfFramesIsWritten) {
  Kelp::SceneOptions options;
  options.firstFrame = 1;
  options.lastFrame = 2.5;
  EXPECT_EQ(treeJson("A a { x = 1; }", options), scene(object(property(number("1"), "[1,2.5]"))));
  Kelp::Scene read = Kelp::Scene::fromText("A a { x = 1; }", "d/a.scene", options);
  Kelp::PropertyAST* first = read.program()->firstObject->firstProperty;
  first->records = new Kelp::PropertyRecord{7, 8, first->records};
  EXPECT_EQ(treeJson(read), scene(object(property(number("1"), "[7,8],[1,2.5]"))));
}

TEST(TreeJson, FilteredObjectIsMarked) {
  struct Nothing final : Kelp::ScenePluginFilter {
    int acceptObject(const Kelp::CharString&, Kelp::CharString&, void*) override { return 0; }
  } nothing;
  Kelp::Scene read = Kelp::Scene::fromText("A a { }", "d/a.scene");
  read.filter(nothing);
  EXPECT_EQ(treeJson(read), scene(object("", "1")));
}

TEST(TreeJson, ObjectsAndPropertiesAreWrittenAloneToo) {
  const Kelp::Scene scene = Kelp::Scene::fromText("A a { x = 1; }", "d/a.scene");
  ASSERT_TRUE(scene) << scene.error();
  const Kelp::ObjectAST& only = scene.objects()[0];
  EXPECT_EQ(KelpTest::writtenBy<Kelp::JsonWriter>(only), object(property(number("1"))) + '\n');
  EXPECT_EQ(KelpTest::writtenBy<Kelp::JsonWriter>(*only.firstProperty),
            property(number("1")) + '\n');
}
