// Visitor: one operation for every class of expression node.
#pragma once

#include "kelp/ast/expressions.h"

namespace Kelp {

/// Called back by ExpressionAST::visit; walking into children is up to the visitor.
class Visitor {
 public:
  virtual void visit(NumberExpressionAST& node) = 0;
  virtual void visit(StringExpressionAST& node) = 0;
  virtual void visit(VectorExpressionAST& node) = 0;
  virtual void visit(AColorExpressionAST& node) = 0;
  virtual void visit(MatrixExpressionAST& node) = 0;
  virtual void visit(TransformExpressionAST& node) = 0;
  virtual void visit(TransformHexExpressionAST& node) = 0;
  virtual void visit(ObjectReferenceAST& node) = 0;
  virtual void visit(NegatedExpressionAST& node) = 0;
  virtual void visit(InterpolateExpressionAST& node) = 0;
  virtual void visit(ListTypeExpressionAST<Vector>& node) = 0;
  virtual void visit(ListTypeExpressionAST<int>& node) = 0;
  virtual void visit(ListTypeExpressionAST<Color>& node) = 0;
  virtual void visit(ListTypeExpressionAST<float>& node) = 0;
  virtual void visit(ListTypeExpressionAST<CharString>& node) = 0;
  virtual void visit(ArrayExpressionAST& node) = 0;
  virtual void visit(BinaryExpressionAST& node) = 0;
  virtual void visit(BuiltinFunctionAST& node) = 0;
  virtual void visit(ListExpressionAST& node) = 0;
  virtual void visit(PropertyReferenceAST& node) = 0;
  virtual void visit(RuntimeValueAST& node) = 0;
  virtual ~Visitor() = default;
};

/// Does nothing for any class: derive from it, say `using DefaultVisitor::visit;` and override what
/// you need.
class DefaultVisitor : public Visitor {
 public:
  void visit(NumberExpressionAST&) override {}
  void visit(StringExpressionAST&) override {}
  void visit(VectorExpressionAST&) override {}
  void visit(AColorExpressionAST&) override {}
  void visit(MatrixExpressionAST&) override {}
  void visit(TransformExpressionAST&) override {}
  void visit(TransformHexExpressionAST&) override {}
  void visit(ObjectReferenceAST&) override {}
  void visit(NegatedExpressionAST&) override {}
  void visit(InterpolateExpressionAST&) override {}
  void visit(ListTypeExpressionAST<Vector>&) override {}
  void visit(ListTypeExpressionAST<int>&) override {}
  void visit(ListTypeExpressionAST<Color>&) override {}
  void visit(ListTypeExpressionAST<float>&) override {}
  void visit(ListTypeExpressionAST<CharString>&) override {}
  void visit(ArrayExpressionAST&) override {}
  void visit(BinaryExpressionAST&) override {}
  void visit(BuiltinFunctionAST&) override {}
  void visit(ListExpressionAST&) override {}
  void visit(PropertyReferenceAST&) override {}
  void visit(RuntimeValueAST&) override {}
};

}  // namespace Kelp
