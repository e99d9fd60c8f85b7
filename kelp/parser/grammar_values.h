// Value constructors: vectors, colours, matrices, transforms. Their components are expressions.
#pragma once

#include "kelp/parser/grammar.h"

namespace Kelp {

template <class Tokens>
template <VALUE_TYPE kind>
ExpressionAST* Grammar<Tokens>::_parseVectorValue(const char* name) {
  // ( "Vector" | "Color" ) "(" sum "," sum "," sum ")"
  _advance();
  _expect(TOKEN_LPAREN, Message::kValueBegin, name);
  auto_ast<ExpressionAST> first(parseExpression());
  _expect(TOKEN_COMMA, Message::kValueComma, name);
  auto_ast<ExpressionAST> second(parseExpression());
  _expect(TOKEN_COMMA, Message::kValueComma, name);
  auto_ast<ExpressionAST> third(parseExpression());
  _expect(TOKEN_RPAREN, Message::kValueEnd, name);
  ExpressionAST* components[3] = {first.get(), second.get(), third.get()};
  ExpressionAST* node = VectorExpressionAST::newVectorExpressionAST(kind, components);
  first.release();
  second.release();
  third.release();
  return node;
}

template <class Tokens>
ExpressionAST* Grammar<Tokens>::_parseAColor(const char* name) {
  // "AColor" "(" sum "," sum "," sum "," sum ")"
  _advance();
  _expect(TOKEN_LPAREN, Message::kValueBegin, name);
  auto_ast<ExpressionAST> red(parseExpression());
  _expect(TOKEN_COMMA, Message::kValueComma, name);
  auto_ast<ExpressionAST> green(parseExpression());
  _expect(TOKEN_COMMA, Message::kValueComma, name);
  auto_ast<ExpressionAST> blue(parseExpression());
  _expect(TOKEN_COMMA, Message::kValueEnd, name);  // required wording: it speaks of the bracket
  auto_ast<ExpressionAST> alpha(parseExpression());
  _expect(TOKEN_RPAREN, Message::kValueEnd, name);
  AColorExpressionAST* node = AColorExpressionAST::pool.newElement();
  node->components[0] = red.release();
  node->components[1] = green.release();
  node->components[2] = blue.release();
  node->components[3] = alpha.release();
  return node;
}

template <class Tokens>
ExpressionAST* Grammar<Tokens>::_parseMatrix(const char* name) {
  // "Matrix" "(" sum "," sum "," sum ")"
  _advance();
  _expect(TOKEN_LPAREN, Message::kValueBegin, name);
  auto_ast<ExpressionAST> first(parseExpression());
  _expect(TOKEN_COMMA, Message::kValueComma, name);
  auto_ast<ExpressionAST> second(parseExpression());
  _expect(TOKEN_COMMA, Message::kValueComma, name);
  auto_ast<ExpressionAST> third(parseExpression());
  _expect(TOKEN_RPAREN, Message::kValueEnd, name);
  MatrixExpressionAST* node = MatrixExpressionAST::pool.newElement();
  node->rows[0] = first.release();
  node->rows[1] = second.release();
  node->rows[2] = third.release();
  return node;
}

template <class Tokens>
ExpressionAST* Grammar<Tokens>::_parseTransform(const char* name) {
  // "Transform" "(" sum "," sum ")"
  _advance();
  _expect(TOKEN_LPAREN, Message::kTransformBegin, name);
  auto_ast<ExpressionAST> matrix(parseExpression());
  _expect(TOKEN_COMMA, Message::kValueComma, name);
  auto_ast<ExpressionAST> offset(parseExpression());
  _expect(TOKEN_RPAREN, Message::kTransformEnd, name);
  TransformExpressionAST* node = TransformExpressionAST::pool.newElement();
  node->matrix = matrix.release();
  node->offset = offset.release();
  return node;
}

template <class Tokens>
ExpressionAST* Grammar<Tokens>::_parseTransformHex(const char* name) {
  // "TransformHex" "(" token ")"; the token is meant to be a string, but nobody asks
  _advance();
  _expect(TOKEN_LPAREN, Message::kTransformBegin, name);
  const auto argument = this->_rawArgument(false);
  auto_ast<TransformHexExpressionAST> node(TransformHexExpressionAST::pool.newElement());
  node->count = 1;
  for (int i = 0; i < 3; ++i) node->textRef[i] = argument.record[i];
  node->textLength = argument.copied;
  _advance();
  _expect(TOKEN_RPAREN, Message::kValueEnd, name);
  return node.release();
}

}  // namespace Kelp
