// Where the messages about functions, lists and interpolation arise.
#include "tests/parser/message_matrix.h"

namespace KelpTest {

using Kelp::Message;
using Kind = MessagePlace::Kind;

namespace {

// What is nearly a function or a form: wrong case, plural, a form that there is not.
constexpr const char* kUnknownFunctors[] = {
    "foo",           "_",           "a1@|$",         "\xC3\xBC",
    "Sin",           "SIN",         "sinh",          "randomint",
    "atan3",         "arcsin",      "list",          "LIST",
    "Lists",         "Interpolate", "interp",        "vector",
    "VECTOR",        "color",       "Colour",        "acolor",
    "Acolor",        "ColorA",      "matrix",        "transform",
    "Transformhex",  "VectorHex",   "MatrixHex",     "Listvector",
    "listVector",    "ListVectors", "ListVectorhex", "ListInteger",
    "listInt",       "Listint",     "ListIntHEX",    "ListStrings",
    "ListStringHex", "ListDouble",  "Listfloat",     "ListColour",
    "ListAColor",    "ListMatrix",  "ListTransform", "ListTransformHex",
    "ListList"};

void addUnknown(MessagePlaces& places, const std::string& scene, const std::string& name) {
  places.push_back({Kind::kValue, Message::kUnknownFunctor,
                    "Functor \"" + name + "\" not recognized", scene, "", name, name, "("});
}

void addBuiltin(MessagePlaces& places, const BuiltinCall& call) {
  std::string scene = std::string(call.name) + '(';
  const std::string end = "Expected \")\" to close function call";
  if (call.numArgs == 0) {
    places.push_back({Kind::kValue, Message::kFunctionEnd, end, scene, ")"});
  }
  for (int i = 1; i <= call.numArgs; ++i) {
    if (i < call.numArgs) {
      places.push_back({Kind::kBehindOperand, Message::kFunctionComma,
                        "Expected \",\" between function arguments", scene, ","});
    } else {
      places.push_back({Kind::kBehindOperand, Message::kFunctionEnd, end, scene, ")"});
    }
    scene += "1, ";
  }
}

void addLists(MessagePlaces& places) {
  for (const char* before : {"List(", "List(1, ", "List(List(), "}) {
    places.push_back({Kind::kBehindOperand, Message::kListEnd, "Expected \")\"", before, ", )"});
  }
}

void addInterpolate(MessagePlaces& places) {
  for (const std::string before : {"interpolate(", "interpolate((0, 1), "}) {
    places.push_back({Kind::kValue, Message::kPairBegin, "Expected \"(\" to begin interpolate pair",
                      before, "("});
    places.push_back({Kind::kBehindOperand, Message::kPairComma,
                      "Expected \",\" between interpolate pair elements", before + "(", ","});
    places.push_back({Kind::kBehindOperand, Message::kPairEnd,
                      "Expected \")\" after interpolate pair", before + "(2, ", ")"});
    places.push_back({Kind::kValue, Message::kInterpolateEnd, "Expected \")\" after interpolate",
                      before + "(2, 3) ", ", )"});
  }
}

}  // namespace

const std::vector<BuiltinCall>& builtinCalls() {
  static const std::vector<BuiltinCall> all = {
      {"abs", 1},     {"random", 2},     {"sin", 1},  {"cos", 1},    {"tan", 1},
      {"asin", 1},    {"acos", 1},       {"atan", 1}, {"atan2", 2},  {"sqrt", 1},
      {"pow", 2},     {"randomInt", 2},  {"exp", 1},  {"log", 1},    {"floor", 1},
      {"ceil", 1},    {"round", 1},      {"min", 2},  {"max", 2},    {"clamp", 3},
      {"lerp", 3},    {"smoothstep", 3}, {"mod", 2},  {"select", 4}, {"frame", 0},
      {"pi", 0},      {"length", 1},     {"dot", 2},  {"cross", 2},  {"normalize", 1},
      {"degrees", 1}, {"radians", 1}};
  return all;
}

const MessagePlaces& callPlaces() {
  static const MessagePlaces all = [] {
    MessagePlaces places;
    for (const char* name : kUnknownFunctors) addUnknown(places, "", name);
    for (const ExpressionStart& start : expressionStarts()) {
      addUnknown(places, start.scene, "foo");
      addUnknown(places, start.scene + "- ", "foo");
    }
    for (const BuiltinCall& call : builtinCalls()) addBuiltin(places, call);
    addLists(places);
    addInterpolate(places);
    return places;
  }();
  return all;
}

// No scene can lack these brackets: a form is entered because its bracket has been seen. The tokens
// are changed on their way to the parser.
const std::vector<BracketPlace>& bracketPlaces() {
  static const std::vector<BracketPlace> all = [] {
    std::vector<BracketPlace> places;
    for (const BuiltinCall& call : builtinCalls()) {
      places.push_back({Message::kFunctionBegin, "Expected \"(\" after function name", call.name});
    }
    places.push_back({Message::kListBegin, "Expected \"(\" after List", "List"});
    places.push_back(
        {Message::kInterpolateBegin, "Expected \"(\" after function interpolate", "interpolate"});
    for (const std::string name :
         {"Vector", "Color", "AColor", "Matrix", "ListVector", "ListVectorHex", "ListInt",
          "ListIntHex", "ListString", "ListFloat", "ListFloatHex", "ListColor", "ListColorHex"}) {
      places.push_back(
          {Message::kValueBegin, "Expected \"(\" before " + name + " definition", name, name});
    }
    for (const std::string name : {"Transform", "TransformHex"}) {
      places.push_back(
          {Message::kTransformBegin, "Expected \"(\" in " + name + " definition", name, name});
    }
    return places;
  }();
  return all;
}

}  // namespace KelpTest
