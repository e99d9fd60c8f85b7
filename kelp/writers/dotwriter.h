// DotWriter: the references between the objects of a program as a graph.
#pragma once

#include <functional>

#include "kelp/program/programast.h"
#include "kelp/writers/linefiller.h"

namespace Kelp {

/// Writes a directed graph in DOT, the language of Graphviz. Each object is a node, labelled with
/// its name and type; each name that no object has but something refers to is a node with a dashed
/// border. An edge goes from an object to each that a property of it refers to, by itself or by one
/// of its properties or values, labelled with the property; several references of properties of one
/// name to one object are one edge. A reference to a name that several objects have goes to the
/// first of them, which is meant.
///
/// Nodes and edges come in the order of the text, numbered, so that the same program gives the same
/// graph. Characters of names that are no UTF-8, or control characters, become U+FFFD.
///
/// Neither depth nor length of a tree costs stack. Throws what the sink and isWanted throw, and
/// std::bad_alloc.
class DotWriter {
 public:
  explicit DotWriter(TextSink textSink) : sink(std::move(textSink)) {}

  /// Which objects are shown; none given: all. Of the references those of objects shown remain
  /// that go to another one shown, or dangle.
  std::function<bool(const ObjectAST&)> isWanted;

  /// The whole graph.
  void write(const ProgramAST& program);

 private:
  TextSink sink;
};

}  // namespace Kelp
