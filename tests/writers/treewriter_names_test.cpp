// How names of all kinds are listed.
#include <gtest/gtest.h>

#include <sstream>
#include <string>

#include "kelp/ast/auto_ast.h"
#include "kelp/writers/treewriter.h"
#include "tests/support/programs.h"
#include "tests/support/written.h"

using namespace Kelp;

namespace {

std::string listing(const ProgramAST& program) { return KelpTest::treeListing(program); }

// What an object of that type is listed as.
std::string listedType(const char* type) {
  const auto_ast<ProgramAST> program(new ProgramAST);
  KelpTest::add(program.get(), type, "");
  return listing(*program.get());
}

// What a value is listed as that stands in a property without a file.
std::string listedValue(ExpressionAST* value) {
  const auto_ast<ProgramAST> program(new ProgramAST);
  KelpTest::add(program.get(), "A", "")->addProperty(KelpTest::property("x", value), 0, 0);
  return listing(*program.get());
}

}  // namespace

TEST(TreeListingNames, WordsStandAsTheyAreOthersInQuotes) {
  const struct {
    const char* name;
    const char* listed;
  } rows[] = {
      {"azAZ", "azAZ\n"},
      {"a0_9", "a0_9\n"},
      {"a@b|c$", "a@b|c$\n"},
      {"a/b", "\"a/b\"\n"},
      {"a:b", "\"a:b\"\n"},
      {"a{b", "\"a{b\"\n"},
      {"a[b", "\"a[b\"\n"},
      {"a`b", "\"a`b\"\n"},
      {"a b", "\"a b\"\n"},
      {"@A", "@A\n"},
      {"", "\"\"\n"},
      {nullptr, "null\n"},
      {"\xC3\xA9", "\"\xC3\xA9\"\n"},
      {"\xC2\x9F\xC2\xA0", "\"\\xc2\\x9f\xC2\xA0\"\n"},
      {"\xE2\x82\xAC", "\"\xE2\x82\xAC\"\n"},
      {"\x1F", "\"\\x1f\"\n"},
      {"\x7F", "\"\\x7f\"\n"},
  };
  for (const auto& row : rows) EXPECT_EQ(listedType(row.name), row.listed);
}

TEST(TreeListingNames, PropertyWithoutAFileShowsItsLineOnly) {
  EXPECT_EQ(listedValue(KelpTest::number(1)), "A\n  x = 1  // :0\n");
}

TEST(TreeListingNames, LineOfOneElementOfOneCharacterEnds) {
  auto* list = new ListTypeExpressionAST<int>;
  list->elements.allocArray(1);
  list->elements[0] = 7;
  EXPECT_EQ(listedValue(list), "A\n  x = integers, 1  // :0\n    7\n");
}

TEST(TreeListingNames, ElementsFarToTheRightHaveFortyColumns) {
  for (const int lastDigits : {7, 8}) {
    auto* list = new ListTypeExpressionAST<int>;
    list->elements.allocArray(4);
    for (int i = 0; i < 3; ++i) list->elements[i] = 1111111111;
    list->elements[3] = lastDigits == 7 ? 2222222 : 22222222;
    ExpressionAST* value = list;
    for (int i = 0; i < 40; ++i) value = KelpTest::negated(value);
    const std::string indent = '\n' + std::string(80, ' ') + "(depth 42) ";
    const std::string wrapped = lastDigits == 7 ? " 2222222\n" : indent + "22222222\n";
    const std::string expected = indent + "1111111111 1111111111 1111111111" + wrapped;
    EXPECT_NE(listedValue(value).find(expected), std::string::npos);
  }
}

TEST(TreeListingNames, LinesOfElementsHaveAHundredColumnsInAll) {
  for (const int lastDigits : {8, 9}) {
    auto* list = new ListTypeExpressionAST<int>;
    list->elements.allocArray(9);
    std::string expected = "A\n  x = integers, 9  // :0\n    1111111111";
    for (int i = 0; i < 8; ++i) {
      list->elements[i] = 1111111111;
      if (i > 0) expected += " 1111111111";
    }
    list->elements[8] = lastDigits == 8 ? 22222222 : 222222222;
    expected += lastDigits == 8 ? " 22222222\n" : "\n    222222222\n";
    EXPECT_EQ(listedValue(list), expected);
  }
}

TEST(TreeListingNames, UnknownFunctionIsShownByItsNumber) {
  auto* call = new BuiltinFunctionAST;
  call->funcID = 1000;
  EXPECT_EQ(listedValue(call), "A\n  x = call function 1000  // :0\n");
}
