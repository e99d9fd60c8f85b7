#include "bench/contentwriter.h"

#include <charconv>
#include <iterator>

namespace KelpBench {

namespace {

// What a part begins with, what stands between its parts, and what it ends with. % is its name, &
// its second name.
struct Form {
  const char* first;
  const char* between;
  const char* last;
};

struct Forms {
  Part part;
  Form scene, json, xml;
};

// In the order of Part. JSON is an array of objects with their type, name and properties as
// members, without blanks, as the libraries print it. An expression is an array whose first element
// says what the others are, but numbers, which stand for themselves, and references, which are
// strings.
//
// XML is an element for each object. Short properties are its attributes, long ones elements within
// it; the numbers of a list stand in one text with blanks between them, an expression is an
// element with its operands within.
constexpr Forms kForms[] = {
    {Part::kProgram, {"", "", ""}, {"[\n", ",\n", "\n]\n"}, {"<scene>\n", "", "</scene>\n"}},
    {Part::kObject,
     {"% & {\n", "", "}\n"},
     {R"({"type":"%","name":"&")", "", "}"},
     {R"(<% name="&")", ">", "</%>\n"}},
    {Part::kProperty, {"\t% = ", "", ";\n"}, {R"(,"%":)", "", ""}, {R"( %=")", "", "\""}},
    {Part::kLongProperty, {"\t% = ", "", ";\n"}, {R"(,"%":)", "", ""}, {"<%>", "", "</%>"}},
    {Part::kText, {"\"", "", "\""}, {"\"", "", "\""}, {"", "", ""}},
    {Part::kName, {"", "", ""}, {"\"", "", "\""}, {"", "", ""}},
    {Part::kVector, {"Vector(", ", ", ")"}, {"[", ",", "]"}, {"", " ", ""}},
    {Part::kColor, {"Color(", ", ", ")"}, {"[", ",", "]"}, {"", " ", ""}},
    {Part::kVectorList, {"ListVector(", ", ", ")"}, {"[", ",", "]"}, {"", " ", ""}},
    {Part::kIntList, {"ListInt(", ", ", ")"}, {"[", ",", "]"}, {"", " ", ""}},
    {Part::kHexVectorList, {"ListVectorHex(\"", "", "\")"}, {"\"", "", "\""}, {"", "", ""}},
    {Part::kHexIntList, {"ListIntHex(\"", "", "\")"}, {"\"", "", "\""}, {"", "", ""}},
    {Part::kNumber, {"", "", ""}, {"", "", ""}, {"<number>", "", "</number>"}},
    {Part::kString, {"\"", "", "\""}, {R"(["text",")", "", "\"]"}, {"<text>", "", "</text>"}},
    {Part::kReference, {"", "", ""}, {"\"", "", "\""}, {"<ref>", "", "</ref>"}},
    {Part::kMember,
     {"", "", ".%"},
     {R"([".","%",)", "", "]"},
     {R"(<member name="%">)", "", "</member>"}},
    {Part::kIndex, {"", "[", "]"}, {R"(["[]",)", ",", "]"}, {"<index>", "", "</index>"}},
    {Part::kNegation, {"-", "", ""}, {R"(["-",)", "", "]"}, {"<negate>", "", "</negate>"}},
    {Part::kGroup, {"(", "", ")"}, {"", "", ""}, {"", "", ""}},
    {Part::kAddition, {"", " + ", ""}, {R"(["+",)", ",", "]"}, {"<add>", "", "</add>"}},
    {Part::kSubtraction,
     {"", " - ", ""},
     {R"(["-",)", ",", "]"},
     {"<subtract>", "", "</subtract>"}},
    {Part::kMultiplication,
     {"", " * ", ""},
     {R"(["*",)", ",", "]"},
     {"<multiply>", "", "</multiply>"}},
    {Part::kDivision, {"", " / ", ""}, {R"(["/",)", ",", "]"}, {"<divide>", "", "</divide>"}},
    {Part::kCall, {"%(", ", ", ")"}, {R"(["%",)", ",", "]"}, {"<%>", "", "</%>"}},
    {Part::kList, {"List(", ", ", ")"}, {R"(["List",)", ",", "]"}, {"<list>", "", "</list>"}},
    {Part::kInterpolation,
     {"interpolate(", ", ", ")"},
     {R"(["interpolate",)", ",", "]"},
     {"<interpolate>", "", "</interpolate>"}},
    {Part::kPair, {"(", ", ", ")"}, {"[", ",", "]"}, {"<pair>", "", "</pair>"}},
    {Part::kVectorValue,
     {"Vector(", ", ", ")"},
     {R"(["Vector",)", ",", "]"},
     {"<vector>", "", "</vector>"}},
};

constexpr bool isInOrder() {
  for (size_t i = 0; i < std::size(kForms); ++i) {
    if (kForms[i].part != static_cast<Part>(i)) return false;
  }
  return std::size(kForms) == static_cast<size_t>(Part::kVectorValue) + 1;
}
static_assert(isInOrder());

const Form& formOf(Part part, Syntax syntax) {
  const Forms& forms = kForms[static_cast<size_t>(part)];
  if (syntax == Syntax::kScene) return forms.scene;
  return syntax == Syntax::kJson ? forms.json : forms.xml;
}

bool isList(Part part) { return part == Part::kVectorList || part == Part::kIntList; }

// The numbers are counted where they are written.
bool isValue(Part part) {
  return part != Part::kProgram && part != Part::kProperty && part != Part::kLongProperty &&
         part != Part::kGroup && part != Part::kNumber;
}

}  // namespace

void ContentWriter::_add(const char* piece, const Open& open) {
  for (const char* c = piece; *c != 0; ++c) {
    if (*c == '%') {
      text += open.name;
    } else if (*c == '&') {
      text += open.secondName;
    } else {
      text += *c;
    }
  }
}

void ContentWriter::next() { _add(formOf(stack.back().part, syntax).between, stack.back()); }

void ContentWriter::begin(Part part, std::string_view name, std::string_view secondName) {
  stack.push_back({part, std::string(name), std::string(secondName)});
  if (isValue(part)) ++values;
  if (isList(part)) ++openLists;
  _add(formOf(part, syntax).first, stack.back());
}

void ContentWriter::end() {
  const Part part = stack.back().part;
  _add(formOf(part, syntax).last, stack.back());
  if (isList(part)) --openLists;
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
