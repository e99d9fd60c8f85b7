// Objects and properties: the two upper levels of a scene's tree.
#pragma once

#include <cstdint>

#include "kelp/ast/ast.h"
#include "kelp/utils/charstring.h"

namespace Kelp {

/// The frames that a property's text describes; one link of a property's record chain.
struct PropertyRecord {
  double t1;
  double t2;
  PropertyRecord* next;
};

/// name = value;
class PropertyAST : public AST {
 public:
  static Pool<PropertyAST>& pool;

  void deleteThis() override;

  CharString name;
  ExpressionAST* value = nullptr;  ///< owned
  CharString file;                 ///< name of the source file that was being read
  int32_t line = 0;             ///< 1-based; where the reader stood after the token behind the name
  PropertyAST* next = nullptr;  ///< the next property of the same object, in text order
  void* extra = nullptr;        ///< null after the parse, for the host
  PropertyRecord* records = nullptr;  ///< owned, each from new
};

/// One object of the scene: plugin type, instance name and properties.
class ObjectAST : public AST {
 public:
  static Pool<ObjectAST>& pool;

  void deleteThis() override;

  /// Appends a property, in constant time. A repeated name keeps both. When t1 and t2 are not both
  /// 0 the property gets a record of them. Takes ownership: when it throws (std::bad_alloc), the
  /// property is released.
  void addProperty(PropertyAST* property, double t1, double t2);

  /// Moves all properties of `newcomer` behind this object's own, in constant time. The newcomer is
  /// left without properties and stays the caller's. The frames are those of its properties'
  /// records already. Changes no name, keeps nothing else of the newcomer, throws nothing.
  void merge(ObjectAST* newcomer, double t1, double t2) noexcept;

  /// The last property of that name (the last assignment wins), or null.
  PropertyAST* findProperty(const char* propertyName) const;

  PropertyAST* firstProperty = nullptr;
  CharString type;  ///< plugin type
  CharString name;  ///< instance name with the parser's affix; "" when the text gives none
  ObjectAST* next = nullptr;  ///< the program's list, newest first; written only by the program
  void* extra = nullptr;      ///< null after the parse; handed to the scene filter
  int32_t filteredOut = 0;    ///< 1 when the last filter rejected the object
  PropertyAST* lastProperty = nullptr;  ///< end of the chain that starts at firstProperty
};

}  // namespace Kelp
