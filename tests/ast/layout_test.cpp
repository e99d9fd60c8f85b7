// The order of fields is part of the interface: hosts map these classes.
#include <gtest/gtest.h>

#include <cstddef>
#include <type_traits>

#include "kelp/ast/auto_ast.h"
#include "kelp/ast/expressions.h"
#include "kelp/ast/objects.h"
#include "kelp/program/programast.h"
#include "kelp/utils/pool.h"
#include "kelp/utils/table.h"

// Conditionally supported for classes with bases, and supported by the compilers used here.
#pragma GCC diagnostic ignored "-Winvalid-offsetof"

using namespace Kelp;

namespace {

constexpr size_t kTableEnd = 8;  // a node begins with the pointer to its virtual operations

template <class... Offsets>
constexpr bool rising(Offsets... offsets) {
  const size_t row[] = {offsets...};
  for (size_t i = 1; i < sizeof...(offsets); ++i) {
    if (row[i - 1] >= row[i]) return false;
  }
  return true;
}

#define AT(Class, field) offsetof(Class, field)

// ---- utils ----

static_assert(AT(CharString, buffer) == 0 && sizeof(CharString) == 8);
static_assert(AT(CharStringBuf, data) == 8 && AT(CharStringBuf, referenceCount) == 16);
using AnyTable = Table<int, 100>;
static_assert(AT(AnyTable, count) == 0 && AT(AnyTable, step) == 4);
static_assert(AT(AnyTable, capacity) == 8 && AT(AnyTable, data) == 16);
using Block = _Sequence<double>::Block;
static_assert(AT(Block, next) == 0 && AT(Block, previous) == 8 && AT(Block, used) == 16);
static_assert(AT(Block, capacity) == 20 && AT(Block, elements) == 24 && sizeof(Block) == 32);
static_assert(AT(InvalidSyntaxException, message) == 0 && sizeof(InvalidSyntaxException) == 8);
static_assert(AT(NotIndexableException, message) == 0 && sizeof(NotIndexableException) == 8);
static_assert(AT(InvalidSourceFile, message) == 0 && sizeof(InvalidSourceFile) == 8);

// ---- nodes: own fields in order, then the free-list link of the pool's element ----

static_assert(AT(NumberExpressionAST, value) == kTableEnd);
static_assert(AT(StringExpressionAST, directory) == 8 && AT(StringExpressionAST, text) == 16);
static_assert(AT(StringExpressionAST, span) == 24 && AT(StringExpressionAST, spanLength) == 48);
static_assert(AT(StringExpressionAST, ownsText) == 52 && sizeof(StringExpressionAST) == 56);
static_assert(AT(VectorExpressionAST, components) == 8 && AT(VectorExpressionAST, kind) == 32);
static_assert(sizeof(VALUE_TYPE) == 4);
static_assert(AT(AColorExpressionAST, components) == 8 && sizeof(AColorExpressionAST) == 40);
static_assert(AT(MatrixExpressionAST, rows) == 8 && sizeof(MatrixExpressionAST) == 32);
static_assert(AT(TransformExpressionAST, matrix) == 8 && AT(TransformExpressionAST, offset) == 16);
static_assert(AT(TransformHexExpressionAST, count) == 8);
static_assert(AT(TransformHexExpressionAST, textRef) == 16);
static_assert(AT(TransformHexExpressionAST, textLength) == 40);
static_assert(AT(ObjectReferenceAST, name) == 8 && AT(ObjectReferenceAST, object) == 16);
static_assert(AT(NegatedExpressionAST, operand) == 8);
static_assert(rising(AT(InterpolateExpressionAST, first), AT(InterpolateExpressionAST, last),
                     AT(InterpolateExpressionAST, count)));
static_assert(AT(KeyList, key) == 0 && AT(KeyList, value) == 8 && AT(KeyList, next) == 16);
static_assert(AT(PoolElement<KeyList>, nextFree) == 24 && sizeof(PoolElement<KeyList>) == 32);
static_assert(AT(PoolElement<NumberExpressionAST>, nextFree) == 16);
static_assert(AT(PoolElement<NegatedExpressionAST>, nextFree) == 16);
static_assert(AT(PoolElement<VectorExpressionAST>, nextFree) == 40);
static_assert(AT(PoolElement<StringExpressionAST>, nextFree) == 56);

using FloatList = ListTypeExpressionAST<float>;
static_assert(AT(FloatList, textRef) == 8 && AT(FloatList, textLength) == 32);
static_assert(AT(FloatList, parsedForm) == 36 && AT(FloatList, elements) == 40);
static_assert(AT(FloatList, sourceDir) == 40 + sizeof(PtrArray<float>));

static_assert(AT(PropertyReferenceAST, objectName) == 8);
static_assert(AT(PropertyReferenceAST, propertyName) == 16);
static_assert(AT(RuntimeValueAST, objectName) == 8 && AT(RuntimeValueAST, valueName) == 16);
static_assert(rising(AT(BinaryExpressionAST, left), AT(BinaryExpressionAST, right),
                     AT(BinaryExpressionAST, op)));
static_assert(rising(AT(BuiltinFunctionAST, numArgs), AT(BuiltinFunctionAST, args),
                     AT(BuiltinFunctionAST, funcID), AT(BuiltinFunctionAST, seed)));
static_assert(sizeof(BuiltinFunctionAST::args) == 4 * sizeof(void*));
static_assert(rising(AT(ListExpressionAST, head), AT(ListExpressionAST, tail),
                     AT(ListExpressionAST, count)));
static_assert(AT(ListCell, expr) == 0 && AT(ListCell, next) == 8);
static_assert(AT(RandomGenerator, lastSine) == 0 && AT(RandomGenerator, state) == 8);

// ---- objects and properties ----

static_assert(AT(ObjectAST, firstProperty) == kTableEnd);
static_assert(rising(AT(ObjectAST, firstProperty), AT(ObjectAST, type), AT(ObjectAST, name),
                     AT(ObjectAST, next), AT(ObjectAST, extra), AT(ObjectAST, filteredOut)));
static_assert(AT(ObjectAST, filteredOut) == 48);
static_assert(rising(AT(PropertyAST, name), AT(PropertyAST, value), AT(PropertyAST, file),
                     AT(PropertyAST, line), AT(PropertyAST, next), AT(PropertyAST, extra),
                     AT(PropertyAST, records)));
static_assert(AT(PropertyRecord, next) == 16);

// ---- program ----

using ObjectMap = ProgramAST::ObjectMap;
static_assert(AT(ObjectMap, entryPool) == 0);
static_assert(rising(AT(ObjectMap, entryPool), AT(ObjectMap, buckets), AT(ObjectMap, count),
                     AT(ObjectMap, keyBufferSize), AT(ObjectMap, entryKeyBuffer),
                     AT(ObjectMap, newKeyBuffer)));
using Entry = ObjectMap::__internal_s;
static_assert(AT(Entry, key) == 0 && AT(Entry, value) == 8 && AT(Entry, next) == 16);
using Iterator = ObjectMap::Iterator;
static_assert(AT(Iterator, map) == 0 && AT(Iterator, bucket) == 8 && AT(Iterator, entry) == 16);
static_assert(AT(ProgramAST, typedObjects) == kTableEnd);
static_assert(rising(AT(ProgramAST, typedObjects), AT(ProgramAST, namedObjects),
                     AT(ProgramAST, firstObject), AT(ProgramAST, numObjects)));

// ---- what must not be copied or deleted through a base ----

static_assert(!std::is_copy_constructible_v<ObjectMap> && !std::is_copy_assignable_v<ObjectMap>);
static_assert(!std::is_copy_constructible_v<Pool<NumberExpressionAST>>);
static_assert(!std::is_copy_constructible_v<AnyTable>);
static_assert(!std::is_copy_constructible_v<auto_ast<ExpressionAST>>);
static_assert(!std::is_copy_constructible_v<CharStringBuf>);
static_assert(!std::is_copy_constructible_v<NumberExpressionAST>);
static_assert(!std::is_destructible_v<AST> && !std::is_destructible_v<ExpressionAST>);
static_assert(!std::has_virtual_destructor_v<NumberExpressionAST>);
static_assert(!std::has_virtual_destructor_v<ObjectAST>);
static_assert(!std::has_virtual_destructor_v<ProgramAST>);

// ---- virtual operations, as code that was compiled elsewhere finds them ----

void* const* slotsOf(const void* object) { return *static_cast<void* const* const*>(object); }

TEST(VirtualOperations, OfAnExpressionStandInOrder) {
  InterpolateExpressionAST* table = InterpolateExpressionAST::pool.newElement();
  NumberExpressionAST* number = NumberExpressionAST::newNumberExpressionAST(1);
  using Type = int (*)(ExpressionAST*);
  EXPECT_EQ(reinterpret_cast<Type>(slotsOf(table)[3])(table), 1);
  EXPECT_EQ(reinterpret_cast<Type>(slotsOf(number)[3])(number), 0);
  using GetIth = ExpressionAST* (*)(ExpressionAST*, int);
  EXPECT_THROW(reinterpret_cast<GetIth>(slotsOf(number)[2])(number, 0), NotIndexableException);
  const int live = NumberExpressionAST::pool.liveCount();
  using DeleteThis = void (*)(AST*);
  reinterpret_cast<DeleteThis>(slotsOf(number)[0])(number);
  EXPECT_EQ(NumberExpressionAST::pool.liveCount(), live - 1);
  table->first = table->last = nullptr;
  table->deleteThis();
}

TEST(VirtualOperations, OfABufferAreResizeThenDestruction) {
  auto* buffer = new CharStringBuf;
  using Resize = void (*)(CharStringBuf*, int);
  reinterpret_cast<Resize>(slotsOf(buffer)[0])(buffer, 3);
  EXPECT_NE(buffer->data, nullptr);
  delete buffer;
}

}  // namespace
