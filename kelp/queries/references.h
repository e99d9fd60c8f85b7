// References: which objects of a program refer to which.
#pragma once

#include <cstdint>
#include <vector>

#include "kelp/program/programast.h"

namespace Kelp {

/// A reference in a property of an object, with what it is made of. All of it stays the tree's.
struct Reference {
  enum class Kind {
    kObject,        ///< object
    kProperty,      ///< object.property, also below indices
    kRuntimeValue,  ///< object::value
  };

  Kind kind;
  ExpressionAST* node;          ///< ObjectReferenceAST, PropertyReferenceAST or RuntimeValueAST
  const PropertyAST* property;  ///< that it stands in
  const CharString* target;     ///< the name of the object that it refers to
  const CharString* member;     ///< of that object's property or value; null for kObject

  /// The first object of that name, which is meant; null when the reference dangles.
  ObjectAST* resolved(const ProgramAST& program) const {
    return program.getObject(target->chars());
  }
};

/// Replaces the contents of `references` by those in a property's value, in the order of the text.
/// Neither depth nor length of the value costs stack. Throws std::bad_alloc.
void findReferences(const PropertyAST& property, std::vector<Reference>& references);

/// The same for all properties of an object, those that are assigned again too.
void findReferences(const ObjectAST& object, std::vector<Reference>& references);

/// How the references of a program were resolved.
struct Resolution {
  struct Dangling {
    const ObjectAST* object;  ///< that the reference stands in
    Reference reference;
  };

  int64_t resolved = 0;            ///< references of all kinds to objects that are there
  std::vector<Dangling> dangling;  ///< those to names that no object has, in the order of the text
};

/// Sets ObjectReferenceAST::object in all object references of a program: to the first object of
/// their name, to null when there is none. It holds until objects are added, renamed or released.
/// References to properties and runtime values are counted, and nothing is changed in them.
/// Throws std::bad_alloc.
Resolution resolveReferences(ProgramAST& program);

}  // namespace Kelp
