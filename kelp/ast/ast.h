// The roots of the scene tree: AST for everything that is released with deleteThis, ExpressionAST
// for the values of properties.
//
// A tree is released by deleteThis() on its root, never with the delete operator. Nodes of pooled
// classes go back to their class's static `pool` without being destroyed; whoever takes one sets
// every field. The static pools are there before any static object of a host (unless that has an
// initialisation priority of its own) and are never torn down. They do not lock: a tree is built
// and released on one thread at a time.
#pragma once

#include "kelp/utils/pool.h"

namespace Kelp {

class Visitor;

class AST {
 public:
  AST() = default;
  AST(const AST&) = delete;
  AST& operator=(const AST&) = delete;

  /// Releases this node and everything below it. The node must not be used afterwards.
  virtual void deleteThis() = 0;

 protected:
  ~AST() = default;
};

/// The value of a property, or a part of it. Every node owns its children.
class ExpressionAST : public AST {
 public:
  /// Calls the visitor's operation for this node's class.
  virtual void visit(Visitor& visitor) = 0;

  /// The i-th component, still owned by this node. Nodes without components throw
  /// NotIndexableException with a null message. Requires: i names a component.
  virtual ExpressionAST* getIth(int i) = 0;

  /// 1 for an interpolation table, 0 for everything else.
  virtual int type() { return 0; }

 protected:
  ~ExpressionAST() = default;
};

}  // namespace Kelp
