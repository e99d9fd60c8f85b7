#include "bench/contentwriter.h"

#include <array>
#include <charconv>

namespace KelpBench {

namespace {

// What a part begins with, what stands between its parts, and what it ends with. % is its name, &
// its second name.
struct Form {
  std::array<const char*, 3> pieces;
};

struct Forms {
  Form scene, json, xml;
};

// JSON is an array of objects with their type, name and properties as members, without blanks, as
// the libraries print it. An expression is an array whose first element says what the others are,
// but numbers, which stand for themselves, and references, which are strings.
//
// XML is an element for each object. Short properties are its attributes, long ones elements within
// it; the numbers of a list stand in one text with blanks between them, an expression is an
// element with its operands within.
Forms formsOf(Part part) {
  switch (part) {
    case Part::kProgram:
      return {{{"", "", ""}}, {{"[\n", ",\n", "\n]\n"}}, {{"<scene>\n", "", "</scene>\n"}}};
    case Part::kObject:
      return {{{"% & {\n", "", "}\n"}},
              {{R"({"type":"%","name":"&")", "", "}"}},
              {{R"(<% name="&")", ">", "</%>\n"}}};
    case Part::kProperty:
      return {{{"\t% = ", "", ";\n"}}, {{R"(,"%":)", "", ""}}, {{R"( %=")", "", "\""}}};
    case Part::kLongProperty:
      return {{{"\t% = ", "", ";\n"}}, {{R"(,"%":)", "", ""}}, {{"<%>", "", "</%>"}}};
    case Part::kText:
      return {{{"\"", "", "\""}}, {{"\"", "", "\""}}, {{"", "", ""}}};
    case Part::kName:
      return {{{"", "", ""}}, {{"\"", "", "\""}}, {{"", "", ""}}};
    case Part::kVector:
      return {{{"Vector(", ", ", ")"}}, {{"[", ",", "]"}}, {{"", " ", ""}}};
    case Part::kColor:
      return {{{"Color(", ", ", ")"}}, {{"[", ",", "]"}}, {{"", " ", ""}}};
    case Part::kVectorList:
      return {{{"ListVector(", ", ", ")"}}, {{"[", ",", "]"}}, {{"", " ", ""}}};
    case Part::kIntList:
      return {{{"ListInt(", ", ", ")"}}, {{"[", ",", "]"}}, {{"", " ", ""}}};
    case Part::kHexVectorList:
      return {{{"ListVectorHex(\"", "", "\")"}}, {{"\"", "", "\""}}, {{"", "", ""}}};
    case Part::kHexIntList:
      return {{{"ListIntHex(\"", "", "\")"}}, {{"\"", "", "\""}}, {{"", "", ""}}};
    case Part::kNumber:
      return {{{"", "", ""}}, {{"", "", ""}}, {{"<number>", "", "</number>"}}};
    case Part::kString:
      return {{{"\"", "", "\""}}, {{R"(["text",")", "", "\"]"}}, {{"<text>", "", "</text>"}}};
    case Part::kReference:
      return {{{"", "", ""}}, {{"\"", "", "\""}}, {{"<ref>", "", "</ref>"}}};
    case Part::kMember:
      return {{{"", "", ".%"}},
              {{R"([".","%",)", "", "]"}},
              {{R"(<member name="%">)", "", "</member>"}}};
    case Part::kIndex:
      return {{{"", "[", "]"}}, {{R"(["[]",)", ",", "]"}}, {{"<index>", "", "</index>"}}};
    case Part::kNegation:
      return {{{"-", "", ""}}, {{R"(["-",)", "", "]"}}, {{"<negate>", "", "</negate>"}}};
    case Part::kGroup:
      return {{{"(", "", ")"}}, {{"", "", ""}}, {{"", "", ""}}};
    case Part::kAddition:
      return {{{"", " + ", ""}}, {{R"(["+",)", ",", "]"}}, {{"<add>", "", "</add>"}}};
    case Part::kSubtraction:
      return {{{"", " - ", ""}}, {{R"(["-",)", ",", "]"}}, {{"<subtract>", "", "</subtract>"}}};
    case Part::kMultiplication:
      return {{{"", " * ", ""}}, {{R"(["*",)", ",", "]"}}, {{"<multiply>", "", "</multiply>"}}};
    case Part::kDivision:
      return {{{"", " / ", ""}}, {{R"(["/",)", ",", "]"}}, {{"<divide>", "", "</divide>"}}};
    case Part::kCall:
      return {{{"%(", ", ", ")"}}, {{R"(["%",)", ",", "]"}}, {{"<%>", "", "</%>"}}};
    case Part::kList:
      return {{{"List(", ", ", ")"}}, {{R"(["List",)", ",", "]"}}, {{"<list>", "", "</list>"}}};
    case Part::kInterpolation:
      return {{{"interpolate(", ", ", ")"}},
              {{R"(["interpolate",)", ",", "]"}},
              {{"<interpolate>", "", "</interpolate>"}}};
    case Part::kPair:
      return {{{"(", ", ", ")"}}, {{"[", ",", "]"}}, {{"<pair>", "", "</pair>"}}};
    case Part::kVectorValue:
      return {
          {{"Vector(", ", ", ")"}}, {{R"(["Vector",)", ",", "]"}}, {{"<vector>", "", "</vector>"}}};
  }
  return {};
}

constexpr int kParts = static_cast<int>(Part::kVectorValue) + 1;

const Form& formOf(Part part, Syntax syntax) {
  static const std::array<Forms, kParts> all = [] {
    std::array<Forms, kParts> forms{};
    for (size_t i = 0; i < forms.size(); ++i) forms[i] = formsOf(static_cast<Part>(i));
    return forms;
  }();
  const Forms& forms = all[static_cast<size_t>(part)];
  switch (syntax) {
    case Syntax::kScene:
      return forms.scene;
    case Syntax::kJson:
      return forms.json;
    default:
      return forms.xml;
  }
}

bool isList(Part part) { return part == Part::kVectorList || part == Part::kIntList; }

// The numbers are counted where they are written.
bool isValue(Part part) {
  return part != Part::kProgram && part != Part::kProperty && part != Part::kLongProperty &&
         part != Part::kGroup && part != Part::kNumber;
}

}  // namespace

void ContentWriter::_add(const Open& open, int which) {
  for (const char* c = formOf(open.part, syntax).pieces[static_cast<size_t>(which)]; *c != 0; ++c) {
    if (*c == '%') {
      text += open.name;
    } else if (*c == '&') {
      text += open.secondName;
    } else {
      text += *c;
    }
  }
}

void ContentWriter::begin(Part part, std::string_view name, std::string_view secondName) {
  stack.push_back({part, std::string(name), std::string(secondName)});
  if (isValue(part)) ++values;
  if (isList(part)) ++openLists;
  _add(stack.back(), 0);
}

void ContentWriter::end() {
  _add(stack.back(), 2);
  if (isList(stack.back().part)) --openLists;
  stack.pop_back();
}

void ContentWriter::number(const Decimal& decimal) {
  constexpr int kMostDigits = 10;
  char digits[kMostDigits];
  if (decimal.negative) text += '-';
  const auto toText = [&](uint32_t value) {
    return static_cast<size_t>(std::to_chars(digits, digits + kMostDigits, value).ptr - digits);
  };
  text.append(digits, toText(decimal.whole));
  if (decimal.places > 0) {
    const size_t length = toText(decimal.decimals);
    text += '.';
    text.append(static_cast<size_t>(decimal.places) - length, '0');
    text.append(digits, length);
  }
  ++values;
  if (openLists > 0) listBytes += 4;
}

void ContentWriter::leaf(Part part, std::string_view plain) {
  begin(part);
  characters(plain);
  end();
}

void ContentWriter::numberValue(const Decimal& decimal) {
  begin(Part::kNumber);
  number(decimal);
  end();
}

}  // namespace KelpBench
