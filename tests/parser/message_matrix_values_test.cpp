// Where the messages about value constructors and hexadecimal forms arise.
#include "tests/parser/message_matrix.h"

namespace KelpTest {

using Kelp::Message;
using Kind = MessagePlace::Kind;

namespace {

std::string commaText(const std::string& name) {
  return "Expected \",\" in " + name + " definition";
}

std::string endText(const std::string& name) {
  return "Expected \")\" after " + name + " definition";
}

// Commas behind all components but the last, the bracket behind that.
void addConstructor(MessagePlaces& places, const std::string& name, int components) {
  std::string scene = name + '(';
  for (int i = 1; i < components; ++i) {
    places.push_back(
        {Kind::kBehindOperand, Message::kValueComma, commaText(name), scene, ",", name});
    scene += "1, ";
  }
  places.push_back({Kind::kBehindOperand, Message::kValueEnd, endText(name), scene, ")", name});
}

// The third comma is missed in the words of the bracket.
void addAColor(MessagePlaces& places) {
  const std::string name = "AColor";
  const auto add = [&](Message message, const std::string& text, const char* scene,
                       const char* accepted) {
    places.push_back({Kind::kBehindOperand, message, text, scene, accepted, name});
  };
  add(Message::kValueComma, commaText(name), "AColor(", ",");
  add(Message::kValueComma, commaText(name), "AColor(1, ", ",");
  add(Message::kValueEnd, endText(name), "AColor(1, 2, ", ",");
  add(Message::kValueEnd, endText(name), "AColor(1, 2, 3, ", ")");
}

void addTransform(MessagePlaces& places) {
  places.push_back({Kind::kBehindOperand, Message::kValueComma, commaText("Transform"),
                    "Transform(", ",", "Transform"});
  places.push_back({Kind::kBehindOperand, Message::kTransformEnd,
                    "Expected \")\" in Transform definition", "Transform(1, ", ")", "Transform"});
}

// Whatever token stands for the text, the end of the input as well, the bracket is asked for next.
void addHexForm(MessagePlaces& places, const std::string& name) {
  for (const char* argument : {"\"\"", "\"00ff\"", "5", "id", "(", ")", ",", ";", "}", "@"}) {
    places.push_back(
        {Kind::kValue, Message::kValueEnd, endText(name), name + '(' + argument + ' ', ")", name});
  }
  places.push_back(
      {Kind::kValue, Message::kValueEnd, endText(name), name + '(', "", name, kEndOfInput});
}

}  // namespace

const MessagePlaces& valuePlaces() {
  static const MessagePlaces all = [] {
    MessagePlaces places;
    addConstructor(places, "Vector", 3);
    addConstructor(places, "Color", 3);
    addConstructor(places, "Matrix", 3);
    addAColor(places);
    addTransform(places);
    for (const char* name :
         {"TransformHex", "ListVectorHex", "ListIntHex", "ListFloatHex", "ListColorHex"}) {
      addHexForm(places, name);
    }
    return places;
  }();
  return all;
}

}  // namespace KelpTest
