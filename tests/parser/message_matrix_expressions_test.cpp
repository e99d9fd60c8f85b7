// Where the messages about terms, references and nesting arise.
#include "tests/parser/message_matrix.h"

namespace KelpTest {

using Kelp::Message;
using Kind = MessagePlace::Kind;

namespace {

const std::string kNotAToken = "Token \"%\" not recognized as valid token";

void addStartsOfCall(std::vector<ExpressionStart>& starts, const std::string& name, int numArgs) {
  std::string scene = name + '(';
  for (int i = 0; i < numArgs; ++i) {
    starts.push_back({scene, i == 0});
    scene += "1, ";
  }
}

void addTerms(MessagePlaces& places, const std::string& scene, const std::string& instead) {
  places.push_back(
      {Kind::kValue, Message::kNotAToken, kNotAToken, scene, kTermBegins + (' ' + instead)});
  for (const char* sign : {"+ ", "- "}) {
    places.push_back({Kind::kValue, Message::kNotAToken, kNotAToken, scene + sign, kAtomBegins});
  }
}

void addReferences(MessagePlaces& places) {
  places.push_back({Kind::kValue, Message::kRuntimeColon,
                    "Expected \":\" to form Runtime value reference", "b : ", ":"});
  for (const char* before : {"b . ", "b :: "}) {
    places.push_back(
        {Kind::kValue, Message::kIdentifierExpected, "Identifier expected", before, "id"});
  }
  for (const char* before : {"b.c[", "b.c[0][", "b.c.x[", "b.c[d.e[0]]["}) {
    places.push_back({Kind::kBehindOperand, Message::kIndexEnd, "Expected \"[\"", before, "]"});
  }
  for (const char* before : {"b.c . ", "b.c[0] . ", "b.c.x . "}) {
    places.push_back({Kind::kValue, Message::kNoSuchMember,
                      "expected valid indexing member (x,y,z,r,g,b,alpha,etc.)", before});
  }
}

}  // namespace

const std::vector<ExpressionStart>& expressionStarts() {
  static const std::vector<ExpressionStart> all = [] {
    std::vector<ExpressionStart> starts = {{"("},
                                           {"b.c["},
                                           {"b.c[0][", false},
                                           {"b.c.x["},
                                           {"List(", true, ")"},
                                           {"List(1, ", false},
                                           {"interpolate(("},
                                           {"interpolate((0, ", false},
                                           {"interpolate((0, 1), ("},
                                           {"interpolate((0, 1), (2, ", false}};
    for (const BuiltinCall& call : builtinCalls()) addStartsOfCall(starts, call.name, call.numArgs);
    addStartsOfCall(starts, "Vector", 3);
    addStartsOfCall(starts, "Color", 3);
    addStartsOfCall(starts, "AColor", 4);
    addStartsOfCall(starts, "Matrix", 3);
    addStartsOfCall(starts, "Transform", 2);
    return starts;
  }();
  return all;
}

const MessagePlaces& expressionPlaces() {
  static const MessagePlaces all = [] {
    MessagePlaces places;
    for (const char* before : {"", "1 + ", "1 - ", "1 * ", "1 / ", "1 + 2 * "}) {
      addTerms(places, before, "");
    }
    for (const ExpressionStart& start : expressionStarts()) {
      addTerms(places, start.scene, start.accepted);
    }
    for (const char* before : {"(", "((1) + ", "-("}) {
      places.push_back(
          {Kind::kBehindOperand, Message::kParenthesisEnd, "Expected \")\"", before, ")"});
    }
    addReferences(places);
    return places;
  }();
  return all;
}

// One bracket may nest here; the second is refused whatever it holds.
const MessagePlaces& nestingPlaces() {
  static const MessagePlaces all = [] {
    MessagePlaces places;
    for (const ExpressionStart& outer : expressionStarts()) {
      for (const ExpressionStart& inner : expressionStarts()) {
        const bool few = outer.scene == "(" || inner.scene == "(";
        const bool pairs = inner.scene.starts_with("interpolate((0");
        if (!few || !inner.firstInBracket || pairs) continue;
        places.push_back({Kind::kValue, Message::kTooDeep, "Expression is nested too deeply",
                          outer.scene + inner.scene, inner.accepted, "", "", ";", 1});
      }
    }
    return places;
  }();
  return all;
}

}  // namespace KelpTest
