// Values and objects of a scene, made from plain numbers and texts.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "kelp/ast/expressions.h"
#include "kelp/ast/objects.h"

namespace KelpCli {

struct ReleaseNode {
  void operator()(Kelp::AST* node) const { node->deleteThis(); }
};
using Value = std::unique_ptr<Kelp::ExpressionAST, ReleaseNode>;

/// Makes values that scene text can say. A float becomes the number whose literal reads back to
/// that float with the fewest digits, as 0.1; a number that is not finite becomes 0 and is counted.
class Values {
 public:
  int64_t notFinite = 0;  ///< numbers that became 0

  Value number(float value);
  Value number(double value);
  Value integer(int64_t value) { return number(static_cast<double>(value)); }
  Value vector(const float (&numbers)[3]) { return _triple(Kelp::VALUE_VECTOR, numbers); }
  Value color(const float (&numbers)[3]) { return _triple(Kelp::VALUE_COLOR, numbers); }
  Value acolor(const float (&numbers)[4]);
  Value transform(const float (&rows)[3][3], const float (&offset)[3]);
  Value list(std::vector<Value> elements);
  static Value text(const std::string& characters);
  static Value reference(const std::string& object);

  /// A typed list of `count` elements, the i-th of which is elementAt(i), asked in order.
  /// Requires: count fits an int.
  template <class Element, class ElementAt>
  Value typedList(size_t count, const ElementAt& elementAt);

  float finite(float value) { return static_cast<float>(finite(static_cast<double>(value))); }
  double finite(double value);

 private:
  Value _triple(Kelp::VALUE_TYPE kind, const float (&numbers)[3]);
  static Value _signed(double value);
};

/// The pairs of an interpolation, in text order.
class Interpolation {
 public:
  Interpolation();
  void add(Value key, Value value);
  Value take() { return std::move(node); }

 private:
  Value node;
};

/// An object under construction.
class SceneObject {
 public:
  SceneObject(const char* type, const std::string& name);

  void add(const std::string& property, Value value);
  const Kelp::ObjectAST& object() const { return *node; }

 private:
  std::unique_ptr<Kelp::ObjectAST, ReleaseNode> node;
};

template <class Element, class ElementAt>
Value Values::typedList(size_t count, const ElementAt& elementAt) {
  auto* list = new Kelp::ListTypeExpressionAST<Element>;
  Value owned(list);
  list->elements.allocArray(static_cast<int>(count));
  for (size_t i = 0; i < count; ++i) list->elements.data[i] = elementAt(i);
  return owned;
}

}  // namespace KelpCli
