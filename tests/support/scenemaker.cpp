#include "tests/support/scenemaker.h"

#include "kelp/ast/builtinfunctions.h"
#include "kelp/source/characterclass.h"

namespace KelpTest {

namespace {

constexpr int kDeepest = 3;

// Whether two tokens that touch would be others.
bool wouldJoin(const std::string& before, const std::string& behind) {
  const char last = before.back();
  const char first = behind.front();
  if (Kelp::isInIdentifier(last) && Kelp::isInIdentifier(first)) return true;
  if (last == '"' && first == '"') return false;
  if (last == '.' || first == '.' || first == '#') return true;
  return last == '/' && (first == '/' || first == '*');
}

}  // namespace

std::string SceneMaker::scene() {
  tokens.clear();
  for (uint32_t objects = below(5); objects > 0; --objects) addObject();
  return joined();
}

void SceneMaker::addObject() {
  add(name());
  if (below(5) > 0) add(name());
  add("{");
  for (uint32_t properties = below(6); properties > 0; --properties) addProperty();
  add("}");
}

void SceneMaker::addProperty() {
  switch (below(12)) {
    case 0:
      add(text());
      break;
    case 1:
      add(number());
      break;
    case 2:
      add(oneOf({"(", ")", "[", "{", "=", ";", "-", "/", "*", ".", ",", "#", "?", "&"}));
      break;
    default:
      add(name());
  }
  add("=");
  addSum(0);
  add(";");
}

void SceneMaker::addSum(int depth) {
  addTerm(depth);
  const uint32_t more = below(3) == 0 ? below(depth == 0 ? 8 : 3) : 0;
  for (uint32_t i = 0; i < more; ++i) {
    add(oneOf({"+", "-", "*", "/"}));
    addTerm(depth);
  }
}

void SceneMaker::addTerm(int depth) {
  const uint32_t sign = below(8);
  if (sign == 0) add("-");
  if (sign == 1) add("+");
  addAtom(depth);
}

void SceneMaker::addAtom(int depth) {
  switch (below(depth < kDeepest ? 12 : 5)) {
    case 0:
    case 1:
      return add(number());
    case 2:
      return add(text());
    case 3:
      return addTypedList();
    case 4:
      return addHexForm();
    case 5:
      add("(");
      addSum(depth + 1);
      return add(")");
    case 6:
    case 7:
      return addReference(depth);
    case 8:
      return addInterpolation(depth);
    default:
      return addCall(depth);
  }
}

void SceneMaker::addReference(int depth) {
  add(name());
  const uint32_t kind = below(4);
  if (kind == 0) return;
  if (kind == 1) {
    for (const char* token : {":", ":"}) add(token);
    return add(name());
  }
  add(".");
  add(name());
  for (uint32_t indices = below(3); indices > 0; --indices) {
    if (below(2) == 0) {
      add(".");
      add(oneOf({"x", "y", "z", "r", "g", "b", "m", "offset", "alpha", "\"x\""}));
    } else {
      add("[");
      addSum(depth + 1);
      add("]");
    }
  }
}

void SceneMaker::addCall(int depth) {
  switch (below(7)) {
    case 0:
      return addArguments("Vector", 3, depth);
    case 1:
      return addArguments("Color", 3, depth);
    case 2:
      return addArguments("AColor", 4, depth);
    case 3:
      return addArguments("Matrix", 3, depth);
    case 4:
      return addArguments("Transform", 2, depth);
    case 5:
      return addArguments("List", static_cast<int>(below(below(20) == 0 ? 12 : 4)), depth);
    default: {
      const Kelp::BuiltinFunction* function = nullptr;
      while (function == nullptr) {
        function = Kelp::BuiltinFunctionAST::findFunction(static_cast<int>(below(33)));
      }
      addArguments(function->name, function->numArgs, depth);
    }
  }
}

void SceneMaker::addArguments(const char* function, int count, int depth) {
  add(function);
  add("(");
  for (int i = 0; i < count; ++i) {
    if (i > 0) add(",");
    addSum(depth + 1);
  }
  add(")");
}

void SceneMaker::addInterpolation(int depth) {
  add("interpolate");
  add("(");
  for (uint32_t pairs = below(3) + 1; pairs > 0; --pairs) {
    add("(");
    addSum(depth + 1);
    add(",");
    addSum(depth + 1);
    add(")");
    if (pairs > 1) add(",");
  }
  add(")");
}

void SceneMaker::addTypedList() {
  const std::string form = oneOf({"ListInt", "ListFloat", "ListVector", "ListColor", "ListString"});
  const bool tuples = form == "ListVector" || form == "ListColor";
  add(form);
  add("(");
  const uint32_t count = below(below(30) == 0 ? 40 : 4);
  for (uint32_t i = 0; i < count; ++i) {
    if (i > 0) add(",");
    if (form == "ListString") {
      add(text());
    } else if (!tuples) {
      addSignedNumber();
    } else {
      add(form == "ListVector" ? oneOf({"Vector", "Vector", "\"Vector\""}) : "Color");
      add("(");
      for (int component = 0; component < 3; ++component) {
        if (component > 0) add(",");
        addSignedNumber();
      }
      add(")");
    }
  }
  if (count > 0 && form != "ListString" && below(4) == 0) add(",");
  add(")");
}

void SceneMaker::addHexForm() {
  add(oneOf({"TransformHex", "ListVectorHex", "ListIntHex", "ListFloatHex", "ListColorHex"}));
  add("(");
  switch (below(6)) {
    case 0:
      add(oneOf({"(", ")", ";", "{", "}", "-", "/", ",", "=", "]", "#", "word", "5.5", "nan"}));
      break;
    case 1:
      add(text());
      break;
    default:
      add("\"" + std::string(below(300), 'f') + "\"");
  }
  add(")");
}

void SceneMaker::addSignedNumber() {
  const uint32_t sign = below(6);
  if (sign == 0 || sign == 1) add("-");
  if (sign == 1 || sign == 2) add("+");
  add(number());
}

std::string SceneMaker::name() {
  return oneOf({"a", "b", "c", "lamp", "Node", "größe_2@left", "x", "Vector", "sin", "ListIntHex",
                "interpolate", "_", "a|b$", "e5", "nano", "a_name_that_is_longer_than_most_others",
                "\xEF\xBB\xBF", "\xFF"});
}

std::string SceneMaker::number() {
  if (below(3) > 0) {
    return oneOf({"0",
                  "1",
                  "2.5",
                  ".5",
                  "5.",
                  "1e3",
                  "2.5E-3",
                  "1e+-2",
                  "nan",
                  "1.#INF",
                  "1.#IND",
                  "2.#QNAN",
                  "1e400",
                  "0e400",
                  "1e-400",
                  "2147483648",
                  "0.1",
                  "0.3",
                  "1e22",
                  "1e23",
                  "4.9e-324",
                  "1.7976931348623157e308",
                  "123456789.123456789"});
  }
  std::string digits = std::to_string(below(100000));
  if (below(2) == 0) digits += '.' + std::to_string(random());
  if (below(4) == 0)
    digits += 'e' + std::string(below(2) == 0 ? "-" : "") + std::to_string(below(310));
  return digits;
}

std::string SceneMaker::text() {
  if (below(20) == 0) return '"' + std::string(1000 + below(100), 'q') + '"';
  return oneOf({R"("")", R"("text")", R"("a \"quoted\" word")", R"("back\\slash")",
                R"("C:\scenes\new")", R"("\\")", R"("\\\\\"")", R"("\n\\n")", "\"two\nlines\"",
                "\"\n#include \\\"x\\\"\n\"", "\"// no comment\"", "\"/* none */\"", "\"\r\n\t \"",
                "\"gr\xC3\xB6\xC3\x9F"
                "e\"",
                "\"\xFF\"", "\"a text that is longer than all of the others but not very long\""});
}

// What stands between two tokens; comments with all that may confuse.
std::string SceneMaker::gap() {
  if (below(3) > 0)
    return oneOf({"", " ", " ", " ", "\n", "\n", "\n  ", "\t", "\r\n", "\n\n", "\n \n\n"});
  return oneOf({"/**/", " /* a */ ", "/* two\nlines */", "\n/* own */\n", "\n\n/* own */ ",
                " // c\n", "// c  \r\n", "\n// own\n", "\n\n\n// own\n\n\n", "//\n", "/* \" */",
                "// \"\n", "/* // */", "// /*\n", "/***/ /* b */", "\n/* a */ /* b */\n", "\v\f",
                "// c\n// d\n",
                "/* a comment that is longer than all of the others and fills nearly a line */"});
}

std::string SceneMaker::joined() {
  std::string scene;
  // Few of the scenes have comments everywhere.
  const bool messy = below(2) == 0;
  for (size_t i = 0; i < tokens.size(); ++i) {
    std::string between = messy ? gap() : oneOf({" ", " ", "\n", ""});
    const bool touches = between.empty() && i > 0 && wouldJoin(tokens[i - 1], tokens[i]);
    // A slash and a comment would be another comment.
    const bool slash = i > 0 && tokens[i - 1] == "/" && between[0] == '/';
    if (touches || slash) scene += ' ';
    scene += between + tokens[i];
  }
  // At the very start that name would be a byte order mark.
  if (scene.starts_with("\xEF\xBB\xBF")) scene.insert(0, "\n");
  return scene + (messy ? gap() : "\n");
}

}  // namespace KelpTest
