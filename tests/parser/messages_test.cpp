#include <gtest/gtest.h>

#include <map>
#include <set>

#include "tests/support/scanners.h"

using namespace Kelp;
using namespace KelpTest;

namespace {

struct MessageRow {
  Message message;
  const char* word;  // put into the message, or null
  const char* scene;
  const char* text;
};

// An opening bracket is seen before the form behind it is entered, so no text can lack it then;
// the rows of this table are read by a scanner that loses every "(" once it is the current token.
const MessageRow kBracketRows[] = {
    {Message::kFunctionBegin, nullptr, "A a { x = sin(1); }", "Expected \"(\" after function name"},
    {Message::kListBegin, nullptr, "A a { x = List(1); }", "Expected \"(\" after List"},
    {Message::kInterpolateBegin, nullptr, "A a { x = interpolate((1,2)); }",
     "Expected \"(\" after function interpolate"},
    {Message::kValueBegin, "Vector", "A a { x = Vector(1,2,3); }",
     "Expected \"(\" before Vector definition"},
    {Message::kValueBegin, "Color", "A a { x = Color(1,2,3); }",
     "Expected \"(\" before Color definition"},
    {Message::kValueBegin, "AColor", "A a { x = AColor(1,2,3,4); }",
     "Expected \"(\" before AColor definition"},
    {Message::kValueBegin, "Matrix", "A a { x = Matrix(1,2,3); }",
     "Expected \"(\" before Matrix definition"},
    {Message::kTransformBegin, "Transform", "A a { x = Transform(1,2); }",
     "Expected \"(\" in Transform definition"},
    {Message::kTransformBegin, "TransformHex", "A a { x = TransformHex(\"\"); }",
     "Expected \"(\" in TransformHex definition"},
    {Message::kValueBegin, "ListVector", "A a { x = ListVector(); }",
     "Expected \"(\" before ListVector definition"},
    {Message::kValueBegin, "ListVectorHex", "A a { x = ListVectorHex(\"\"); }",
     "Expected \"(\" before ListVectorHex definition"},
    {Message::kValueBegin, "ListInt", "A a { x = ListInt(); }",
     "Expected \"(\" before ListInt definition"},
    {Message::kValueBegin, "ListIntHex", "A a { x = ListIntHex(\"\"); }",
     "Expected \"(\" before ListIntHex definition"},
    {Message::kValueBegin, "ListString", "A a { x = ListString(); }",
     "Expected \"(\" before ListString definition"},
    {Message::kValueBegin, "ListFloat", "A a { x = ListFloat(); }",
     "Expected \"(\" before ListFloat definition"},
    {Message::kValueBegin, "ListFloatHex", "A a { x = ListFloatHex(\"\"); }",
     "Expected \"(\" before ListFloatHex definition"},
    {Message::kValueBegin, "ListColor", "A a { x = ListColor(); }",
     "Expected \"(\" before ListColor definition"},
    {Message::kValueBegin, "ListColorHex", "A a { x = ListColorHex(\"\"); }",
     "Expected \"(\" before ListColorHex definition"},
};

const MessageRow kRows[] = {
    {Message::kTooManyObjects, "3", "A a {} A a {} A b {} A c {}",
     "The scene has more than 3 objects"},
    {Message::kExpectedIdentifier, nullptr, "5 {}", "Expected identifier"},
    {Message::kObjectBegin, nullptr, "A a x", "expected a \"{\" at beginning of object definition"},
    {Message::kObjectEnd, nullptr, "A a {", "expected a \"{\" at end of object definition"},
    {Message::kPropertyEquals, nullptr, "A a { x 1; }", "expected a \"=\" after property name"},
    {Message::kPropertyEnd, nullptr, "A a { x = 1 }", "expected a \";\" after property definition"},
    {Message::kTooDeep, nullptr, "A a { x = (((1))); }", "Expression is nested too deeply"},
    {Message::kNotAToken, ";", "A a { x = ; }", "Token \";\" not recognized as valid token"},
    {Message::kParenthesisEnd, nullptr, "A a { x = (1; }", "Expected \")\""},
    {Message::kExpectedNumber, nullptr, "A a { x = ListInt(a); }", "Expected a number literal"},
    {Message::kUnknownFunctor, "foo", "A a { x = foo(1); }", "Functor \"foo\" not recognized"},
    {Message::kFunctionComma, nullptr, "A a { x = pow(1); }",
     "Expected \",\" between function arguments"},
    {Message::kFunctionEnd, nullptr, "A a { x = sin(1, 2); }",
     "Expected \")\" to close function call"},
    {Message::kListEnd, nullptr, "A a { x = List(1 2); }", "Expected \")\""},
    {Message::kPairBegin, nullptr, "A a { x = interpolate(); }",
     "Expected \"(\" to begin interpolate pair"},
    {Message::kPairComma, nullptr, "A a { x = interpolate((1 2)); }",
     "Expected \",\" between interpolate pair elements"},
    {Message::kPairEnd, nullptr, "A a { x = interpolate((1,2,3)); }",
     "Expected \")\" after interpolate pair"},
    {Message::kInterpolateEnd, nullptr, "A a { x = interpolate((1,2) (3,4)); }",
     "Expected \")\" after interpolate"},
    {Message::kRuntimeColon, nullptr, "A a { x = b:c; }",
     "Expected \":\" to form Runtime value reference"},
    {Message::kIdentifierExpected, nullptr, "A a { x = b::1; }", "Identifier expected"},
    {Message::kIdentifierExpected, nullptr, "A a { x = b.(1); }", "Identifier expected"},
    {Message::kIndexEnd, nullptr, "A a { x = b.c[1; }", "Expected \"[\""},
    {Message::kNoSuchMember, nullptr, "A a { x = b.c.w; }",
     "expected valid indexing member (x,y,z,r,g,b,alpha,etc.)"},
    {Message::kValueComma, "Vector", "A a { x = Vector(1; }",
     "Expected \",\" in Vector definition"},
    {Message::kValueComma, "Color", "A a { x = Color(1,2; }", "Expected \",\" in Color definition"},
    {Message::kValueComma, "AColor", "A a { x = AColor(1; }",
     "Expected \",\" in AColor definition"},
    {Message::kValueComma, "Matrix", "A a { x = Matrix(1; }",
     "Expected \",\" in Matrix definition"},
    {Message::kValueComma, "Transform", "A a { x = Transform(1; }",
     "Expected \",\" in Transform definition"},
    {Message::kValueEnd, "Vector", "A a { x = Vector(1,2,3; }",
     "Expected \")\" after Vector definition"},
    {Message::kValueEnd, "Color", "A a { x = Color(1,2,3; }",
     "Expected \")\" after Color definition"},
    {Message::kValueEnd, "AColor", "A a { x = AColor(1,2,3; }",
     "Expected \")\" after AColor definition"},
    {Message::kValueEnd, "AColor", "A a { x = AColor(1,2,3,4; }",
     "Expected \")\" after AColor definition"},
    {Message::kValueEnd, "Matrix", "A a { x = Matrix(1,2,3; }",
     "Expected \")\" after Matrix definition"},
    {Message::kTransformEnd, "Transform", "A a { x = Transform(1,2; }",
     "Expected \")\" in Transform definition"},
    {Message::kValueEnd, "TransformHex", "A a { x = TransformHex(\"\"; }",
     "Expected \")\" after TransformHex definition"},
    {Message::kValueEnd, "ListVectorHex", "A a { x = ListVectorHex(\"\"; }",
     "Expected \")\" after ListVectorHex definition"},
    {Message::kValueEnd, "ListIntHex", "A a { x = ListIntHex(\"\"; }",
     "Expected \")\" after ListIntHex definition"},
    {Message::kValueEnd, "ListFloatHex", "A a { x = ListFloatHex(\"\"; }",
     "Expected \")\" after ListFloatHex definition"},
    {Message::kValueEnd, "ListColorHex", "A a { x = ListColorHex(\"\"; }",
     "Expected \")\" after ListColorHex definition"},
    {Message::kVectorKeyword, nullptr, "A a { x = ListVector(1); }",
     "Expected Vector keyword in ListVector definition"},
    {Message::kColorKeyword, nullptr, "A a { x = ListColor(1); }",
     "Expected Color keyword in ListColor definition"},
    {Message::kElementBegin, "Vector", "A a { x = ListVector(Vector 1); }",
     "\"(\" expected after Vector keyword"},
    {Message::kElementBegin, "Color", "A a { x = ListColor(Color 1); }",
     "\"(\" expected after Color keyword"},
    {Message::kElementComma, nullptr, "A a { x = ListVector(Vector(1 2)); }", "\",\" expected"},
    {Message::kElementEnd, nullptr, "A a { x = ListVector(Vector(1,2,3,4)); }", "\")\" expected"},
    {Message::kListClose, nullptr, "A a { x = ListInt(1 2); }", ") expected"},
    {Message::kListClose, nullptr, "A a { x = ListFloat(1 2); }", ") expected"},
    {Message::kListClose, nullptr, "A a { x = ListString(\"\" \"\"); }", ") expected"},
    {Message::kElementListClose, nullptr, "A a { x = ListVector(Vector(1,2,3); }", ""},
    {Message::kElementListClose, nullptr, "A a { x = ListColor(Color(1,2,3); }", ""},
    {Message::kExpectedString, nullptr, "A a { x = ListString(1); }", "Expected a string"},
};

constexpr int kDepthForTheRows = 2;
constexpr int kObjectsForTheRows = 3;

void expectMessage(const MessageRow& row, bool loseBrackets) {
  SCOPED_TRACE(row.scene);
  SourcesReader reader;
  reader.openText(row.scene, static_cast<int64_t>(std::string(row.scene).size()), "test");
  WatchedScanner scanner(&reader);
  TreeParser parser(&scanner);
  parser.maxNestingDepth = kDepthForTheRows;
  parser.maxObjects = kObjectsForTheRows;
  if (loseBrackets) {
    scanner.before = [&parser](int) {
      Token& token = parser._currentToken();
      if (token.type == TOKEN_LPAREN) token.type = TOKEN_UNKNOWN;
    };
  }
  ASSERT_EQ(parser.parseProgram(), nullptr);
  ASSERT_FALSE(parser.errorInfo.getErrorText().isNull());
  EXPECT_STREQ(parser.errorInfo.getErrorText().chars(), row.text);
  EXPECT_STREQ(messageText(row.message, row.word).chars(), row.text);
}

const std::map<Message, const char*> kAllMessages = {
#define KELP_MESSAGE(identifier, before, after) {Message::identifier, #identifier},
#include "kelp/parser/messages.def"
#undef KELP_MESSAGE
};

}  // namespace

TEST(Messages, EachIsRaisedByItsRow) {
  for (const MessageRow& row : kRows) expectMessage(row, false);
}

TEST(Messages, EachOfAMissingOpeningBracketIsRaisedByItsRow) {
  for (const MessageRow& row : kBracketRows) expectMessage(row, true);
}

TEST(Messages, NoneIsWithoutARow) {
  std::set<Message> raised;
  for (const MessageRow& row : kRows) raised.insert(row.message);
  for (const MessageRow& row : kBracketRows) raised.insert(row.message);
  for (const auto& [message, name] : kAllMessages) {
    EXPECT_EQ(raised.count(message), 1U) << name << " is raised by no row of these tests";
  }
}
