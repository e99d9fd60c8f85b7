// Where the messages about objects and properties arise.
#include "tests/parser/message_matrix.h"

namespace KelpTest {

using Kelp::Message;
using Kind = MessagePlace::Kind;

namespace {

void addObjects(MessagePlaces& places) {
  const std::string identifier = "Expected identifier";
  for (const char* before : {"B b { } ", "B { x = 1; } ", "B b { }\nC c { } "}) {
    places.push_back({Kind::kScene, Message::kExpectedIdentifier, identifier, before, "id <end>"});
  }
  places.push_back({Kind::kFirst, Message::kExpectedIdentifier, identifier, "", "id <end>"});
  MessagePlace third{Kind::kScene, Message::kTooManyObjects, "The scene has more than 2 objects",
                     "B b { } ", kEndOfInput};
  third.word = "2";
  third.maxObjects = 2;
  places.push_back(third);
  const std::string begin = "expected a \"{\" at beginning of object definition";
  for (const Kind kind : {Kind::kFirst, Kind::kScene}) {
    places.push_back({kind, Message::kObjectBegin, begin, "A ", "id {"});
    places.push_back({kind, Message::kObjectBegin, begin, "A a ", "{"});
    const std::string end = "expected a \"{\" at end of object definition";
    for (const char* before : {"A { ", "A a { ", "A a { x = 1; ", "A a { x = q; y = q.r; "}) {
      places.push_back({kind, Message::kObjectEnd, end, before, "", "", kEndOfInput});
    }
  }
}

void addProperties(MessagePlaces& places) {
  for (const char* name : {"5", "\"s\"", "(", ")", ".", "id", "{", ";",   "=",    "+",        "-",
                           "*", "/",     ",", "[", "]", ":",  "@", "nan", "List", "id = q; y"}) {
    places.push_back({Kind::kScene, Message::kPropertyEquals,
                      "expected a \"=\" after property name", std::string("A a { ") + name + ' ',
                      "="});
  }
  for (const Operand& operand : operands()) {
    places.push_back({Kind::kScene, Message::kPropertyEnd,
                      "expected a \";\" after property definition",
                      "A a { x = " + operand.text + ' ',
                      std::string("; ") + kOperators + ' ' + operand.accepted});
  }
}

}  // namespace

const MessagePlaces& programPlaces() {
  static const MessagePlaces all = [] {
    MessagePlaces places;
    addObjects(places);
    addProperties(places);
    return places;
  }();
  return all;
}

}  // namespace KelpTest
