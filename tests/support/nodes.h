// Shorthands that build trees without a parser, and look into the pools.
#pragma once

#include <vector>

#include "kelp/ast/expressions.h"
#include "kelp/ast/objects.h"

namespace KelpTest {

/// The elements of a class as its pool hands them out next, taken and put back in the same order.
template <class Node>
std::vector<Node*> nextElements(int number) {
  std::vector<Node*> elements;
  for (int i = 0; i < number; ++i) elements.push_back(Node::pool.newElement());
  for (size_t i = elements.size(); i-- > 0;) Node::pool.freeElement(elements[i]);
  return elements;
}

inline Kelp::ExpressionAST* number(double value) {
  return Kelp::NumberExpressionAST::newNumberExpressionAST(value);
}

inline double valueOf(Kelp::ExpressionAST* node) {
  return static_cast<Kelp::NumberExpressionAST*>(node)->value;
}

inline Kelp::VectorExpressionAST* vector(Kelp::ExpressionAST* x, Kelp::ExpressionAST* y,
                                         Kelp::ExpressionAST* z) {
  Kelp::ExpressionAST* components[3] = {x, y, z};
  return Kelp::VectorExpressionAST::newVectorExpressionAST(Kelp::VALUE_VECTOR, components);
}

inline Kelp::NegatedExpressionAST* negated(Kelp::ExpressionAST* operand) {
  Kelp::NegatedExpressionAST* node = Kelp::NegatedExpressionAST::pool.newElement();
  node->operand = operand;
  return node;
}

inline Kelp::BinaryExpressionAST* binary(Kelp::ExpressionAST* left, Kelp::ExpressionAST* right) {
  auto* node = new Kelp::BinaryExpressionAST;
  node->left = left;
  node->right = right;
  node->op = 13;
  return node;
}

/// A table of pairs (0, 10), (1, 11), ...
inline Kelp::InterpolateExpressionAST* interpolation(int pairs) {
  Kelp::InterpolateExpressionAST* node = Kelp::InterpolateExpressionAST::pool.newElement();
  node->first = node->last = nullptr;
  node->count = 0;
  for (int i = 0; i < pairs; ++i) {
    Kelp::KeyList* pair = Kelp::KeyList::pool.newElement();
    pair->key = number(i);
    pair->value = number(10 + i);
    pair->next = nullptr;
    (node->last != nullptr ? node->last->next : node->first) = pair;
    node->last = pair;
    ++node->count;
  }
  return node;
}

inline Kelp::PropertyAST* property(const char* name, Kelp::ExpressionAST* value) {
  Kelp::PropertyAST* node = Kelp::PropertyAST::pool.newElement();
  node->name = name;
  node->value = value;
  node->file.freeMem();
  node->line = 0;
  node->next = nullptr;
  node->extra = nullptr;
  node->records = nullptr;
  return node;
}

/// Null for type or name leaves it absent.
inline Kelp::ObjectAST* object(const char* type, const char* name) {
  Kelp::ObjectAST* node = Kelp::ObjectAST::pool.newElement();
  node->firstProperty = node->lastProperty = nullptr;
  node->type = type;
  node->name = name;
  node->next = nullptr;
  node->extra = nullptr;
  node->filteredOut = 0;
  return node;
}

}  // namespace KelpTest
