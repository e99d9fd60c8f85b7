// Where the messages about typed lists arise.
#include "tests/parser/message_matrix.h"

namespace KelpTest {

using Kelp::Message;
using Kind = MessagePlace::Kind;

namespace {

// At a number and behind each sign that may stand before one.
void addNumber(MessagePlaces& places, const std::string& scene, const std::string& instead = "") {
  const auto add = [&](const std::string& signs, const std::string& accepted) {
    places.push_back({Kind::kValue, Message::kExpectedNumber, "Expected a number literal",
                      scene + signs, accepted});
  };
  add("", "5 + - " + instead);
  add("- ", "5 +");
  add("+ ", "5");
  add("- + ", "5");
}

void addNumberList(MessagePlaces& places, const std::string& name) {
  addNumber(places, name + '(', ")");
  addNumber(places, name + "(1, ", ")");
  for (const std::string before : {"(1 ", "(-1 ", "(-+1 ", "(+1 ", "(1, 2 ", "(nan "}) {
    places.push_back({Kind::kValue, Message::kListClose, ") expected", name + before, ", )"});
  }
}

void addElement(MessagePlaces& places, const std::string& scene, const std::string& keyword) {
  places.push_back({Kind::kValue, Message::kElementBegin,
                    "\"(\" expected after " + keyword + " keyword", scene + keyword + ' ', "(",
                    keyword});
  std::string components = scene + keyword + '(';
  for (int i = 0; i < 3; ++i) {
    addNumber(places, components);
    const bool last = i == 2;
    for (const char* number : {"1 ", "-1 "}) {
      places.push_back({Kind::kValue, last ? Message::kElementEnd : Message::kElementComma,
                        last ? "\")\" expected" : "\",\" expected", components + number,
                        last ? ")" : ","});
    }
    components += "1, ";
  }
}

void addElementList(MessagePlaces& places, const std::string& name, const std::string& keyword,
                    Message keywordMissing) {
  const std::string element = keyword + "(1, 2, 3)";
  for (const std::string& before : {name + '(', name + '(' + element + ", "}) {
    places.push_back({Kind::kValue, keywordMissing,
                      "Expected " + keyword + " keyword in " + name + " definition", before, ")"});
    addElement(places, before, keyword);
    places.push_back({Kind::kValue, Message::kElementListClose, "", before + element + ' ', ", )"});
  }
}

// The other list's keyword, and words that are nearly the right one.
void addWrongKeywords(MessagePlaces& places) {
  for (const char* word :
       {"Color", "vector", "VECTOR", "Vectors", "AColor", "List", "sin", "nan"}) {
    places.push_back({Kind::kValue, Message::kVectorKeyword,
                      "Expected Vector keyword in ListVector definition", "ListVector(", "", "",
                      word, "("});
  }
  for (const char* word : {"Vector", "color", "COLOR", "Colors", "AColor", "List", "sin", "nan"}) {
    places.push_back({Kind::kValue, Message::kColorKeyword,
                      "Expected Color keyword in ListColor definition", "ListColor(", "", "", word,
                      "("});
  }
}

void addStringList(MessagePlaces& places) {
  const std::string expected = "Expected a string";
  places.push_back({Kind::kValue, Message::kExpectedString, expected, "ListString(", "\"s\" )"});
  for (const char* before : {"ListString(\"s\", ", "ListString(\"s\", \"t\", "}) {
    places.push_back({Kind::kValue, Message::kExpectedString, expected, before, "\"s\""});
  }
  for (const char* before : {"ListString(\"s\" ", "ListString(\"s\", \"t\" "}) {
    places.push_back({Kind::kValue, Message::kListClose, ") expected", before, ", )"});
  }
}

}  // namespace

const MessagePlaces& listPlaces() {
  static const MessagePlaces all = [] {
    MessagePlaces places;
    addNumberList(places, "ListInt");
    addNumberList(places, "ListFloat");
    addElementList(places, "ListVector", "Vector", Message::kVectorKeyword);
    addElementList(places, "ListColor", "Color", Message::kColorKeyword);
    addWrongKeywords(places);
    addStringList(places);
    return places;
  }();
  return all;
}

}  // namespace KelpTest
