#include "cli/import/values.h"

#include <cmath>

#include "kelp/parser/treeparser.h"
#include "kelp/writers/numberliteral.h"

namespace KelpCli {

double Values::finite(double value) {
  if (std::isfinite(value)) return value;
  ++notFinite;
  return 0.0;
}

// In an expression a minus is a negation.
Value Values::_signed(double value) {
  Value magnitude(Kelp::NumberExpressionAST::newNumberExpressionAST(std::abs(value)));
  if (!std::signbit(value)) return magnitude;
  Kelp::NegatedExpressionAST* negated = Kelp::NegatedExpressionAST::pool.newElement();
  negated->operand = magnitude.release();
  return Value(negated);
}

Value Values::number(float value) {
  const float magnitude = std::abs(finite(value));
  const Kelp::NumberLiteral literal(magnitude);
  const double read = Kelp::TreeParser::parseNum(literal.view().data());
  return _signed(std::signbit(value) && std::isfinite(value) ? -read : read);
}

Value Values::number(double value) { return _signed(finite(value)); }

Value Values::_triple(Kelp::VALUE_TYPE kind, const float (&numbers)[3]) {
  Value owned[3] = {number(numbers[0]), number(numbers[1]), number(numbers[2])};
  Kelp::ExpressionAST* components[3] = {owned[0].get(), owned[1].get(), owned[2].get()};
  Value triple(Kelp::VectorExpressionAST::newVectorExpressionAST(kind, components));
  for (Value& each : owned) each.release();
  return triple;
}

Value Values::acolor(const float (&numbers)[4]) {
  Value owned[4] = {number(numbers[0]), number(numbers[1]), number(numbers[2]), number(numbers[3])};
  Kelp::AColorExpressionAST* node = Kelp::AColorExpressionAST::pool.newElement();
  for (size_t i = 0; i < 4; ++i) node->components[i] = owned[i].release();
  return Value(node);
}

Value Values::transform(const float (&rows)[3][3], const float (&offset)[3]) {
  Value ownedRows[3] = {vector(rows[0]), vector(rows[1]), vector(rows[2])};
  Value ownedOffset = vector(offset);
  Kelp::MatrixExpressionAST* matrix = Kelp::MatrixExpressionAST::pool.newElement();
  for (size_t i = 0; i < 3; ++i) matrix->rows[i] = ownedRows[i].release();
  Value ownedMatrix(matrix);
  Kelp::TransformExpressionAST* node = Kelp::TransformExpressionAST::pool.newElement();
  node->matrix = ownedMatrix.release();
  node->offset = ownedOffset.release();
  return Value(node);
}

Value Values::list(std::vector<Value> elements) {
  auto* node = new Kelp::ListExpressionAST;
  Value owned(node);
  for (Value& element : elements) {
    auto* cell = new Kelp::ListCell;
    cell->expr = element.release();
    (node->tail != nullptr ? node->tail->next : node->head) = cell;
    node->tail = cell;
    ++node->count;
  }
  return owned;
}

Value Values::text(const std::string& characters) {
  const Kelp::CharString copy(characters.c_str());
  Kelp::StringExpressionAST* node = Kelp::StringExpressionAST::pool.newElement();
  node->directory.freeMem();
  node->text = copy;
  node->span[0] = node->span[1] = node->span[2] = 0;
  node->spanLength = 0;
  node->ownsText = 1;
  return Value(node);
}

Value Values::reference(const std::string& object) {
  const Kelp::CharString copy(object.c_str());
  Kelp::ObjectReferenceAST* node = Kelp::ObjectReferenceAST::pool.newElement();
  node->name = copy;
  node->object = nullptr;
  return Value(node);
}

Interpolation::Interpolation() {
  Kelp::InterpolateExpressionAST* table = Kelp::InterpolateExpressionAST::pool.newElement();
  table->first = table->last = nullptr;
  table->count = 0;
  node.reset(table);
}

void Interpolation::add(Value key, Value value) {
  auto* table = static_cast<Kelp::InterpolateExpressionAST*>(node.get());
  Kelp::KeyList* pair = Kelp::KeyList::pool.newElement();
  pair->key = key.release();
  pair->value = value.release();
  pair->next = nullptr;
  (table->last != nullptr ? table->last->next : table->first) = pair;
  table->last = pair;
  ++table->count;
}

SceneObject::SceneObject(const char* type, const std::string& name) {
  const Kelp::CharString copiedType(type);
  const Kelp::CharString copiedName(name.c_str());
  node.reset(Kelp::ObjectAST::pool.newElement());
  node->firstProperty = node->lastProperty = nullptr;
  node->type = copiedType;
  node->name = copiedName;
  node->next = nullptr;
  node->extra = nullptr;
  node->filteredOut = 0;
}

void SceneObject::add(const std::string& property, Value value) {
  const Kelp::CharString name(property.c_str());
  Kelp::PropertyAST* added = Kelp::PropertyAST::pool.newElement();
  added->name = name;
  added->value = value.release();
  added->file.freeMem();
  added->line = 0;
  added->next = nullptr;
  added->extra = nullptr;
  added->records = nullptr;
  node->addProperty(added, 0.0, 0.0);
}

}  // namespace KelpCli
