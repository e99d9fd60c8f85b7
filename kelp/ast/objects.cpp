#include "kelp/ast/objects.h"

#include <cassert>
#include <cstring>

#include "kelp/ast/auto_ast.h"

namespace Kelp {

void PropertyAST::deleteThis() {
  if (value != nullptr) value->deleteThis();
  value = nullptr;
  while (records != nullptr) {
    PropertyRecord* following = records->next;
    delete records;
    records = following;
  }
  pool.freeElement(this);
}

void ObjectAST::deleteThis() {
  for (PropertyAST* property = firstProperty; property != nullptr;) {
    PropertyAST* following = property->next;
    // Nodes lie all over the pools: what comes next is on its way while this one is released.
    if (following != nullptr) {
      __builtin_prefetch(following->value);
      __builtin_prefetch(following->next);
    }
    property->deleteThis();
    property = following;
  }
  firstProperty = nullptr;
  lastProperty = nullptr;
  pool.freeElement(this);
}

void ObjectAST::addProperty(PropertyAST* property, double t1, double t2) {
  assert(property != lastProperty && "a property is added twice");
  auto_ast<PropertyAST> guard(property);
  if (t1 != 0.0 || t2 != 0.0) {
    property->records = new PropertyRecord{t1, t2, property->records};
  }
  property->next = nullptr;
  (lastProperty != nullptr ? lastProperty->next : firstProperty) = property;
  lastProperty = property;
  guard.release();
}

void ObjectAST::merge(ObjectAST* newcomer, double, double) noexcept {
  assert(newcomer != this && "an object is merged into itself");
  if (newcomer->firstProperty == nullptr) return;
  (lastProperty != nullptr ? lastProperty->next : firstProperty) = newcomer->firstProperty;
  lastProperty = newcomer->lastProperty;
  newcomer->firstProperty = nullptr;
  newcomer->lastProperty = nullptr;
}

PropertyAST* ObjectAST::findProperty(const char* propertyName) const {
  PropertyAST* found = nullptr;
  for (PropertyAST* property = firstProperty; property != nullptr; property = property->next) {
    const char* characters = property->name.chars();
    if (characters != nullptr && std::strcmp(characters, propertyName) == 0) found = property;
  }
  return found;
}

}  // namespace Kelp
