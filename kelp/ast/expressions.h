// The expression nodes: what a property's value can be.
//
// Fields are public; the parser fills them and users read them. Field order is part of the
// interface.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "kelp/ast/ast.h"
#include "kelp/ast/builtinfunctions.h"
#include "kelp/ast/mathvalues.h"
#include "kelp/ast/noderooms.h"
#include "kelp/utils/charstring.h"
#include "kelp/utils/ptrarray.h"

namespace Kelp {

class ObjectAST;

// ---- literals --------------------------------------------------------------------------------

/// A number, always as read: a minus before it is a NegatedExpressionAST.
class NumberExpressionAST : public ExpressionAST {
 public:
  static Pool<NumberExpressionAST>& pool;

  /// A node holding `value`, released by the caller with deleteThis. Throws ExceptionMsg.
  static NumberExpressionAST* newNumberExpressionAST(double value) {
    NumberExpressionAST* node = pool.newElement();
    node->value = value;
    return node;
  }

  void deleteThis() override;
  void visit(Visitor& visitor) override;
  ExpressionAST* getIth(int i) override;

  double value = 0.0;
};

/// A string literal: held as `text`, or, when it is long, as a record of where its characters lie.
class StringExpressionAST : public ExpressionAST {
 public:
  static Pool<StringExpressionAST>& pool;

  void deleteThis() override;
  void visit(Visitor& visitor) override;
  ExpressionAST* getIth(int i) override;

  CharString directory;  ///< where the file with the literal lies
  CharString text;       ///< the characters when ownsText is 1, else null
  /// When ownsText is 0: address of the first character, number of characters, owning source.
  /// The characters belong to the SourcesReader and are good as long as that lives.
  uint64_t span[3] = {0, 0, 0};
  int32_t spanLength = 0;  ///< number of characters in the span; 0 when ownsText is 1
  int32_t ownsText = 1;
};

// ---- vectors, colours, matrices, transforms --------------------------------------------------

enum VALUE_TYPE : int32_t {
  VALUE_VECTOR = 3,
  VALUE_COLOR = 5,
};

/// Vector(x, y, z) or Color(r, g, b).
class VectorExpressionAST : public ExpressionAST {
 public:
  static Pool<VectorExpressionAST>& pool;

  /// A node that takes over the three components. Throws ExceptionMsg; they are the caller's then.
  static VectorExpressionAST* newVectorExpressionAST(VALUE_TYPE kind, ExpressionAST** components);

  void deleteThis() override;
  void visit(Visitor& visitor) override;
  ExpressionAST* getIth(int i) override { return components[i]; }

  ExpressionAST* components[3] = {nullptr, nullptr, nullptr};
  VALUE_TYPE kind = VALUE_TYPE{};
};

/// AColor(r, g, b, a).
class AColorExpressionAST : public ExpressionAST {
 public:
  static Pool<AColorExpressionAST>& pool;

  void deleteThis() override;
  void visit(Visitor& visitor) override;
  ExpressionAST* getIth(int i) override { return components[i]; }

  ExpressionAST* components[4] = {nullptr, nullptr, nullptr, nullptr};
};

/// Matrix(row, row, row).
class MatrixExpressionAST : public ExpressionAST {
 public:
  static Pool<MatrixExpressionAST>& pool;

  void deleteThis() override;
  void visit(Visitor& visitor) override;
  ExpressionAST* getIth(int i) override { return rows[i]; }

  ExpressionAST* rows[3] = {nullptr, nullptr, nullptr};
};

/// Transform(matrix, offset).
class TransformExpressionAST : public ExpressionAST {
 public:
  static Pool<TransformExpressionAST>& pool;

  void deleteThis() override;
  void visit(Visitor& visitor) override;
  /// 0 is the matrix, 1 the offset, anything else null.
  ExpressionAST* getIth(int i) override;

  ExpressionAST* matrix = nullptr;
  ExpressionAST* offset = nullptr;
};

/// TransformHex("digits"): the text is kept, not decoded.
class TransformHexExpressionAST : public ExpressionAST {
 public:
  static Pool<TransformHexExpressionAST>& pool;

  void deleteThis() override;
  void visit(Visitor& visitor) override;
  ExpressionAST* getIth(int i) override;

  int32_t count = 0;  ///< 1 while the node is in use
  /// Address of the first character, number of characters, owning source. The characters belong
  /// to the SourcesReader and are good as long as that lives.
  uint64_t textRef[3] = {0, 0, 0};
  int32_t textLength = 0;  ///< characters that the scanner copied into the token, textRef apart
};

// ---- typed lists -----------------------------------------------------------------------------

/// ListVector, ListInt, ListString, ListFloat, ListColor and the hexadecimal forms: constant
/// elements in one flat array, or the undecoded text of the hexadecimal form.
template <class T>
class ListTypeExpressionAST final : public ExpressionAST {
 public:
  void deleteThis() override;
  void visit(Visitor& visitor) override;
  ExpressionAST* getIth(int i) override;

  /// Hexadecimal form: address of the first character, number of characters, owning source; else
  /// zero. The characters belong to the SourcesReader and are good as long as that lives.
  uint64_t textRef[3] = {0, 0, 0};
  int32_t textLength = 0;  ///< characters copied into the token, 0 for a text that was skipped
  int32_t parsedForm = 1;  ///< 1: `elements` hold the values; 0: hexadecimal form
  PtrArray<T> elements;    ///< empty in the hexadecimal form
  CharString sourceDir;    ///< ListString: where the file with the list lies; else null
};

// ---- references ------------------------------------------------------------------------------

/// A reference to another object by name.
class ObjectReferenceAST : public ExpressionAST {
 public:
  static Pool<ObjectReferenceAST>& pool;

  void deleteThis() override;
  void visit(Visitor& visitor) override;
  ExpressionAST* getIth(int i) override;

  CharString name;              ///< with the parser's affix
  ObjectAST* object = nullptr;  ///< null after the parse; whoever resolves the reference sets it
};

/// object.property
class PropertyReferenceAST final : public ExpressionAST {
 public:
  static NodeRooms<PropertyReferenceAST>& pool;
  static void* operator new(size_t bytes);
  static void* operator new(size_t, void* place) noexcept { return place; }
  static void operator delete(void* node) noexcept;

  void deleteThis() override;
  void visit(Visitor& visitor) override;
  ExpressionAST* getIth(int i) override;

  CharString objectName;  ///< with the parser's affix
  CharString propertyName;
  void* resolved = nullptr;  ///< null after the parse, for whoever resolves the reference
};

/// object::value
class RuntimeValueAST final : public ExpressionAST {
 public:
  static NodeRooms<RuntimeValueAST>& pool;
  static void* operator new(size_t bytes);
  static void* operator new(size_t, void* place) noexcept { return place; }
  static void operator delete(void* node) noexcept;

  void deleteThis() override;
  void visit(Visitor& visitor) override;
  ExpressionAST* getIth(int i) override;

  CharString objectName;  ///< with the parser's affix
  CharString valueName;
};

/// object.property[i].x: a property reference and its indices, in text order.
class ArrayExpressionAST final : public ExpressionAST {
 public:
  static NodeRooms<ArrayExpressionAST>& pool;
  static void* operator new(size_t bytes);
  static void* operator new(size_t, void* place) noexcept { return place; }
  static void operator delete(void* node) noexcept;

  void deleteThis() override;
  void visit(Visitor& visitor) override;
  ExpressionAST* getIth(int i) override;

  std::vector<ExpressionAST*> indices;  ///< owned; a member such as .x is its number
  ExpressionAST* base = nullptr;
};

// ---- operators, lists, interpolation ---------------------------------------------------------

/// Unary minus.
class NegatedExpressionAST : public ExpressionAST {
 public:
  static Pool<NegatedExpressionAST>& pool;

  void deleteThis() override;
  void visit(Visitor& visitor) override;
  /// The operand's component: indexing passes through the minus sign.
  ExpressionAST* getIth(int i) override;

  ExpressionAST* operand = nullptr;
};

/// left op right. A sum of n terms is a chain of n - 1 nodes through `left`; walk it in a loop.
class BinaryExpressionAST final : public ExpressionAST {
 public:
  static NodeRooms<BinaryExpressionAST>& pool;
  static void* operator new(size_t bytes);
  static void* operator new(size_t, void* place) noexcept { return place; }
  static void operator delete(void* node) noexcept;

  /// The values of `op`, which are the codes of the operators' tokens.
  enum Operator : int32_t { kPlus = 13, kMinus = 14, kMultiply = 15, kDivide = 16 };

  /// "+", "-", "*" or "/"; "" for any other code. Lives for ever.
  const char* operatorSpelling() const;

  void deleteThis() override;
  void visit(Visitor& visitor) override;
  ExpressionAST* getIth(int i) override;

  ExpressionAST* left = nullptr;
  ExpressionAST* right = nullptr;
  int32_t op = 0;  ///< an Operator
};

struct ListCell final {
  static NodeRooms<ListCell>& pool;
  static void* operator new(size_t bytes);
  static void* operator new(size_t, void* place) noexcept { return place; }
  static void operator delete(void* node) noexcept;

  ExpressionAST* expr = nullptr;
  ListCell* next = nullptr;
};

/// List(a, b, ...) of any expressions.
class ListExpressionAST final : public ExpressionAST {
 public:
  static NodeRooms<ListExpressionAST>& pool;
  static void* operator new(size_t bytes);
  static void* operator new(size_t, void* place) noexcept { return place; }
  static void operator delete(void* node) noexcept;

  void deleteThis() override;
  void visit(Visitor& visitor) override;
  /// The i-th element, null when there is none. Takes time in proportion to i.
  ExpressionAST* getIth(int i) override;

  ListCell* head = nullptr;
  ListCell* tail = nullptr;
  int32_t count = 0;
  void* evaluated = nullptr;  ///< null after the parse, for whoever evaluates the list
};

/// One pair of an interpolation table.
struct KeyList {
  static Pool<KeyList>& pool;

  ExpressionAST* key = nullptr;
  ExpressionAST* value = nullptr;
  KeyList* next = nullptr;
};

/// interpolate((key, value), ...): pairs in text order.
class InterpolateExpressionAST : public ExpressionAST {
 public:
  static Pool<InterpolateExpressionAST>& pool;

  void deleteThis() override;
  void visit(Visitor& visitor) override;
  ExpressionAST* getIth(int i) override;
  int type() override { return 1; }

  KeyList* first = nullptr;
  KeyList* last = nullptr;
  int32_t count = 0;  ///< number of pairs
};

}  // namespace Kelp
