// Numbers: a text, converted alone and as the value of a property.
#include <memory>

#include "tests/fuzz/checks.h"
#include "tests/fuzz/targets.h"
#include "tests/models/mismatch.h"
#include "tests/support/numberreference.h"
#include "tests/support/trees.h"

namespace KelpTest {

using namespace Kelp;

namespace {

// In a buffer that ends with the text, so that the address sanitizer sees any further reading.
double convertedAlone(const std::string& text) {
  const std::unique_ptr<char[]> exact(new char[text.size() + 1]);
  std::copy_n(text.c_str(), text.size() + 1, exact.get());
  return TreeParser::parseNum(exact.get());
}

// The scanner takes as much of a text as the conversion does, except that it takes all letters of
// such as 1.#INF.
bool startsWithPlainNumber(const std::string& text) {
  const auto digitAt = [&](size_t i) {
    return i < text.size() && text[i] >= '0' && text[i] <= '9';
  };
  const bool number = digitAt(0) || (!text.empty() && text[0] == '.' && digitAt(1));
  return number && text.find('#') == std::string::npos;
}

void checkAsProperty(const std::string& text, double expected, Shortage& shortage) {
  TextParser source("N n { x = " + text + "; }");
  auto_ast<ProgramAST> program(nullptr);
  const bool whole = shortage.run([&] {
    try {
      program.reset(source.parser.parseProgram());
    } catch (const InvalidSourceFile&) {
    }
  });
  if (!whole || program.get() == nullptr) return;
  // By its name: the text may end the object and begin others.
  const PropertyAST* property = program->getObject("n")->firstProperty;
  const auto* number =
      property != nullptr ? dynamic_cast<NumberExpressionAST*>(property->value) : nullptr;
  if (number == nullptr || !startsWithPlainNumber(text)) return;
  expectSame("the property's value", valueBitsOf(expected), valueBitsOf(number->value));
}

void checkFirstToken(const std::string& text, double expected) {
  if (!startsWithPlainNumber(text)) return;
  TextParser source(text);
  Token token;
  source.scanner.scan(token);
  expectSame("the token's type", TOKEN_NUMBER, token.type);
  expectSame("the token's value", valueBitsOf(expected),
             valueBitsOf(TreeParser::parseNum(token.getSpelling())));
}

}  // namespace

int fuzzNumbers(const uint8_t* data, size_t size) {
  ByteChoices input(data, size);
  Shortage shortage(input);
  const std::string text = input.rest().c_str();
  const NodeBalance balance;
  const double expected = referenceNumber(text);
  expectSame("the value", valueBitsOf(expected), valueBitsOf(convertedAlone(text)));
  checkFirstToken(text, expected);
  checkAsProperty(text, expected, shortage);
  balance.expectRestored(shortage);
  return 0;
}

}  // namespace KelpTest
