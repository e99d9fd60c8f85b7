// Sums, products, terms and their atoms.
#include "kelp/parser/treeparser.h"
#include "kelp/utils/stackguard.h"

namespace Kelp {

/// Bounds how deep rules call each other: by a count and by the thread's own stack.
class TreeParser::NestingGuard {
 public:
  explicit NestingGuard(TreeParser& nestingParser) : parser(nestingParser) {
    const bool counted = parser.maxNestingDepth > 0;
    if ((counted && parser.nestingDepth > parser.maxNestingDepth) || isStackNearlyUsedUp()) {
      parser._fail(Message::kTooDeep);
    }
    ++parser.nestingDepth;
  }
  NestingGuard(const NestingGuard&) = delete;
  NestingGuard& operator=(const NestingGuard&) = delete;
  ~NestingGuard() { --parser.nestingDepth; }

 private:
  TreeParser& parser;
};

static_assert(static_cast<int>(BinaryExpressionAST::kPlus) == TOKEN_PLUS &&
                  static_cast<int>(BinaryExpressionAST::kMinus) == TOKEN_MINUS &&
                  static_cast<int>(BinaryExpressionAST::kMultiply) == TOKEN_MULTIPLY &&
                  static_cast<int>(BinaryExpressionAST::kDivide) == TOKEN_DIVIDE,
              "a node holds the code of its operator's token");

// Left-associative. Each right operand hangs a new node over all that was read before.
template <ExpressionAST* (TreeParser::*operand)(), TOKENTYPE firstOperator,
          TOKENTYPE secondOperator>
ExpressionAST* TreeParser::_parseOperatorChain() {
  ExpressionAST* result = (this->*operand)();
  while (_at(firstOperator) || _at(secondOperator)) {
    auto_ast<ExpressionAST> left(result);
    const TOKENTYPE op = _currentToken().type;
    scanAheadToken(false);
    auto_ast<ExpressionAST> right((this->*operand)());
    auto* node = new BinaryExpressionAST;
    node->left = left.release();
    node->right = right.release();
    node->op = op;
    result = node;
  }
  return result;
}

ExpressionAST* TreeParser::parseExpression() {
  // sum := factor { ( "+" | "-" ) factor }
  const NestingGuard guard(*this);
  return _parseOperatorChain<&TreeParser::parseFactor, TOKEN_PLUS, TOKEN_MINUS>();
}

ExpressionAST* TreeParser::parseFactor() {
  // factor := term { ( "*" | "/" ) term }
  return _parseOperatorChain<&TreeParser::parseTerm, TOKEN_MULTIPLY, TOKEN_DIVIDE>();
}

ExpressionAST* TreeParser::parseTerm() {
  // term := [ "+" | "-" ] atom
  const bool negated = _at(TOKEN_MINUS);
  if (negated || _at(TOKEN_PLUS)) scanAheadToken(false);
  ExpressionAST* atom = _parseAtom();
  if (!negated) return atom;
  auto_ast<ExpressionAST> operand(atom);
  NegatedExpressionAST* node = NegatedExpressionAST::pool.newElement();
  node->operand = operand.release();
  return node;
}

ExpressionAST* TreeParser::_parseAtom() {
  // atom := number | string | "(" sum ")" | call | reference
  switch (_currentToken().type) {
    case TOKEN_NUMBER:
      return NumberExpressionAST::newNumberExpressionAST(parseSimpleNumber());
    case TOKEN_STRING:
      return _parseString();
    case TOKEN_LPAREN:
      return _parseParenthesis();
    case TOKEN_IDENTIFIER:
      if (lookahead >= 0 && tokens[lookahead].type == TOKEN_LPAREN) return _parseCall();
      return _parseReference();
    default:
      _fail(Message::kNotAToken, _currentToken().getSpelling());
  }
}

ExpressionAST* TreeParser::_parseParenthesis() {
  scanAheadToken(false);
  auto_ast<ExpressionAST> inner(parseExpression());
  _expect(TOKEN_RPAREN, Message::kParenthesisEnd);
  return inner.release();
}

ExpressionAST* TreeParser::_parseString() {
  // Fixed in the format that consumers of the node know.
  constexpr uint32_t kLengthBeforeOverflow = 1023;
  Token& token = _currentToken();
  auto_ast<StringExpressionAST> node(StringExpressionAST::pool.newElement());
  node->directory = scanner->reader->getCurrentFileDir();
  if (token.overflowCount < 1) {
    node->text = token.getSpelling();
    for (uint64_t& word : node->span) word = 0;
    node->spanLength = 0;
    node->ownsText = 1;
  } else {
    node->text.freeMem();
    for (int i = 0; i < 3; ++i) node->span[i] = token.overflow[i];
    node->spanLength =
        static_cast<int32_t>(static_cast<uint32_t>(token.overflowCount) + kLengthBeforeOverflow);
    node->ownsText = 0;
  }
  scanAheadToken(false);
  return node.release();
}

}  // namespace Kelp
