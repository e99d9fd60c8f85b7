// Parsed trees that a test looks into.
#pragma once

#include <stdexcept>
#include <string_view>

#include "tests/support/parsing.h"

namespace KelpTest {

/// The node as one of the given class; throws when it is of another.
template <class Node>
Node& as(Kelp::ExpressionAST* node) {
  auto* cast = dynamic_cast<Node*>(node);
  if (cast == nullptr) throw std::logic_error("the node is of another class");
  return *cast;
}

/// An expression and the source that it borrows from.
struct ParsedExpression {
  explicit ParsedExpression(std::string_view text)
      : source(text), tree(source.started().parseExpression()) {}

  TextParser source;
  Kelp::auto_ast<Kelp::ExpressionAST> tree;
};

/// A scene and the source that it borrows from. `prepare` sets the parser up.
struct ParsedScene {
  explicit ParsedScene(std::string_view text) : ParsedScene(text, [](Kelp::TreeParser&) {}) {}
  template <class Prepare>
  ParsedScene(std::string_view text, const Prepare& prepare) : source(text) {
    prepare(source.parser);
    program.reset(source.parser.parseProgram());
  }

  /// The object of that name; throws when there is none.
  Kelp::ObjectAST& object(const char* name) const {
    Kelp::ObjectAST* found = program.get()->getObject(name);
    if (found == nullptr) throw std::logic_error("there is no such object");
    return *found;
  }

  TextParser source;
  Kelp::auto_ast<Kelp::ProgramAST> program{nullptr};
};

}  // namespace KelpTest
