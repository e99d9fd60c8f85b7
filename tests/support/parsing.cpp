#include "tests/support/parsing.h"

#include "tests/support/sexpression.h"

namespace KelpTest {

using namespace Kelp;

namespace {

std::string errorText(const CharString& text) {
  return std::string("error: ") + (text.isNull() ? "<null>" : text.chars());
}

template <class... Nodes>
int liveElementsOf() {
  return (Nodes::pool.liveCount() + ...);
}

}  // namespace

TextParser::TextParser(std::string_view text, const char* name) {
  reader.openText(text.data(), static_cast<int64_t>(text.size()), name);
}

TreeParser& TextParser::started() {
  parser.scanAheadToken(false);
  return parser;
}

std::string parsedScene(std::string_view text) {
  TextParser source(text);
  const auto_ast<ProgramAST> program(source.parser.parseProgram());
  if (program.get() == nullptr) return errorText(source.parser.errorInfo.getErrorText());
  return sexpression(*program.get());
}

std::string parsedExpression(std::string_view text) {
  TextParser source(text);
  try {
    const auto_ast<ExpressionAST> expression(source.started().parseExpression());
    Token& rest = source.parser._currentToken();
    if (rest.type != TOKEN_END) return std::string("rest: ") + rest.getSpelling();
    return sexpression(expression.get());
  } catch (const InvalidSyntaxException& error) {
    return errorText(error.message);
  } catch (const InvalidSourceFile& error) {
    return errorText(error.message);
  }
}

int livePoolElements() {
  return liveElementsOf<NumberExpressionAST, StringExpressionAST, VectorExpressionAST,
                        AColorExpressionAST, MatrixExpressionAST, TransformExpressionAST,
                        TransformHexExpressionAST, ObjectReferenceAST, NegatedExpressionAST,
                        InterpolateExpressionAST, KeyList, ObjectAST, PropertyAST,
                        ArrayExpressionAST, BinaryExpressionAST, BuiltinFunctionAST,
                        ListExpressionAST, ListCell, PropertyReferenceAST, RuntimeValueAST>();
}

}  // namespace KelpTest
