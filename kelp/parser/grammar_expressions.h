// Sums, products, terms and their atoms.
#pragma once

#include "kelp/parser/grammar.h"
#include "kelp/utils/stackguard.h"

namespace Kelp {

/// Bounds how deep rules call each other: by a count and by the thread's own stack.
template <class Tokens>
class Grammar<Tokens>::NestingGuard {
 public:
  explicit NestingGuard(Grammar& rules) : depth(rules._state().nestingDepth) {
    const int32_t most = rules._state().maxNestingDepth;
    if ((most > 0 && depth > most) || isStackNearlyUsedUp()) rules._fail(Message::kTooDeep);
    ++depth;
  }
  NestingGuard(const NestingGuard&) = delete;
  NestingGuard& operator=(const NestingGuard&) = delete;
  ~NestingGuard() { --depth; }

 private:
  int32_t& depth;
};

static_assert(static_cast<int>(BinaryExpressionAST::kPlus) == TOKEN_PLUS &&
                  static_cast<int>(BinaryExpressionAST::kMinus) == TOKEN_MINUS &&
                  static_cast<int>(BinaryExpressionAST::kMultiply) == TOKEN_MULTIPLY &&
                  static_cast<int>(BinaryExpressionAST::kDivide) == TOKEN_DIVIDE,
              "a node holds the code of its operator's token");

// Left-associative. Each right operand hangs a new node over all that was read before.
template <class Tokens>
template <ExpressionAST* (Grammar<Tokens>::*operand)(), TOKENTYPE firstOperator,
          TOKENTYPE secondOperator>
ExpressionAST* Grammar<Tokens>::_parseOperatorChain() {
  ExpressionAST* result = (this->*operand)();
  while (_at(firstOperator) || _at(secondOperator)) {
    auto_ast<ExpressionAST> left(result);
    const TOKENTYPE op = _at(firstOperator) ? firstOperator : secondOperator;
    _skip(op);
    auto_ast<ExpressionAST> right((this->*operand)());
    auto* node = new BinaryExpressionAST;
    node->left = left.release();
    node->right = right.release();
    node->op = op;
    result = node;
  }
  return result;
}

template <class Tokens>
ExpressionAST* Grammar<Tokens>::parseExpression() {
  // sum := factor { ( "+" | "-" ) factor }
  const NestingGuard guard(*this);
  return _parseOperatorChain<&Grammar::parseFactor, TOKEN_PLUS, TOKEN_MINUS>();
}

template <class Tokens>
ExpressionAST* Grammar<Tokens>::parseFactor() {
  // factor := term { ( "*" | "/" ) term }
  return _parseOperatorChain<&Grammar::parseTerm, TOKEN_MULTIPLY, TOKEN_DIVIDE>();
}

template <class Tokens>
ExpressionAST* Grammar<Tokens>::parseTerm() {
  // term := [ "+" | "-" ] atom
  const bool negated = _at(TOKEN_MINUS);
  if (negated || _at(TOKEN_PLUS)) _skip(negated ? TOKEN_MINUS : TOKEN_PLUS);
  ExpressionAST* atom = _parseAtom();
  if (!negated) return atom;
  auto_ast<ExpressionAST> operand(atom);
  NegatedExpressionAST* node = NegatedExpressionAST::pool.newElement();
  node->operand = operand.release();
  return node;
}

template <class Tokens>
ExpressionAST* Grammar<Tokens>::_parseAtom() {
  // atom := number | string | "(" sum ")" | call | reference
  switch (this->_type()) {
    case TOKEN_NUMBER:
      return NumberExpressionAST::newNumberExpressionAST(parseSimpleNumber());
    case TOKEN_STRING:
      return _parseString();
    case TOKEN_LPAREN:
      return _parseParenthesis();
    case TOKEN_IDENTIFIER:
      return this->_isCall() ? _parseCall() : _parseReference();
    default:
      _fail(Message::kNotAToken, _spelling().data());
  }
}

template <class Tokens>
ExpressionAST* Grammar<Tokens>::_parseParenthesis() {
  _skip(TOKEN_LPAREN);
  auto_ast<ExpressionAST> inner(parseExpression());
  _expect(TOKEN_RPAREN, Message::kParenthesisEnd);
  return inner.release();
}

template <class Tokens>
ExpressionAST* Grammar<Tokens>::_parseString() {
  // Fixed in the format that consumers of the node know.
  constexpr uint32_t kLengthBeforeOverflow = 1023;
  const auto longText = this->_longText();
  auto_ast<StringExpressionAST> node(StringExpressionAST::pool.newElement());
  node->directory = this->_directory();
  if (longText.overflowCount < 1) {
    node->text.assign(_spelling());
    for (uint64_t& word : node->span) word = 0;
    node->spanLength = 0;
    node->ownsText = 1;
  } else {
    node->text.freeMem();
    for (int i = 0; i < 3; ++i) node->span[i] = longText.record[i];
    node->spanLength =
        static_cast<int32_t>(static_cast<uint32_t>(longText.overflowCount) + kLengthBeforeOverflow);
    node->ownsText = 0;
  }
  _advance();
  return node.release();
}

template <class Tokens>
double Grammar<Tokens>::parseSimpleNumber() {
  // number := [ "-" [ "+" ] | "+" ] literal
  double plain = 0;
  if (this->_takePlainNumber(&plain)) return plain;
  const bool negative = _at(TOKEN_MINUS);
  if (negative) _skip(TOKEN_MINUS);
  if (_at(TOKEN_PLUS)) _skip(TOKEN_PLUS);
  if (!_at(TOKEN_NUMBER)) _fail(Message::kExpectedNumber);
  const double value = this->_takeNumber();
  return negative ? -value : value;
}

}  // namespace Kelp
