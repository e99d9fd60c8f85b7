// The static pools of the node classes.
//
// A host may parse in the constructor of a static object and release a program in the destructor
// of another. So each pool lives in storage that is never destroyed, the references to it are
// constants, and the pools themselves are constructed ahead of all static objects of ordinary
// priority.
//
// A shared object that the library was linked into may be unloaded, and memory that only its pools
// know would be lost with them. So there, where no node lives, the blocks are freed in the end.

#include "kelp/ast/pools.h"

#include <link.h>

#include <cstdint>
#include <new>

#include "kelp/ast/expressions.h"
#include "kelp/ast/objects.h"

namespace Kelp {

namespace {

template <class P>
union NeverDestroyed {
  constexpr NeverDestroyed() : none(0) {}
  // NOLINTNEXTLINE(modernize-use-equals-default): the pool must not be destroyed
  ~NeverDestroyed() {}  // unreachable: the storage outlives every static object
  char none;
  P pool;
};

template <class P>
constinit NeverDestroyed<P> storage;

// The first priority that is open to programs.
constexpr int kEarliest = 101;

bool contains(const dl_phdr_info& object, uintptr_t address) {
  for (int i = 0; i < object.dlpi_phnum; ++i) {
    const auto& segment = object.dlpi_phdr[i];
    const uintptr_t begin = object.dlpi_addr + segment.p_vaddr;
    if (segment.p_type == PT_LOAD && address - begin < segment.p_memsz) return true;
  }
  return false;
}

// Whether this code is the program's own, which lasts as long as the process.
bool isInProgram() {
  const auto isInFirst = [](dl_phdr_info* object, size_t, void* inProgram) {
    const auto here = reinterpret_cast<uintptr_t>(&isInProgram);
    *static_cast<bool*>(inProgram) = contains(*object, here);
    return 1;  // the program comes first, and no more is asked
  };
  bool inProgram = false;
  dl_iterate_phdr(isInFirst, &inProgram);
  return inProgram;
}

template <class... All>
struct Pools {
  static void start() { (new (&storage<All>.pool) All, ...); }
  static void freeUnused() noexcept { (storage<All>.pool.freeUnused(), ...); }
};

using AllPools =
    Pools<Pool<NumberExpressionAST>, Pool<StringExpressionAST>, Pool<VectorExpressionAST>,
          Pool<AColorExpressionAST>, Pool<MatrixExpressionAST>, Pool<TransformExpressionAST>,
          Pool<TransformHexExpressionAST>, Pool<ObjectReferenceAST>, Pool<NegatedExpressionAST>,
          Pool<InterpolateExpressionAST>, Pool<KeyList>, Pool<ObjectAST>, Pool<PropertyAST>,
          NodeRooms<ArrayExpressionAST>, NodeRooms<BinaryExpressionAST>,
          NodeRooms<BuiltinFunctionAST>, NodeRooms<ListExpressionAST>, NodeRooms<ListCell>,
          NodeRooms<PropertyReferenceAST>, NodeRooms<RuntimeValueAST>>;

struct PoolStarter {
  PoolStarter() { AllPools::start(); }
  // At the end of the process the memory goes anyway, and freeing it would only take time.
  ~PoolStarter() {
    if (!isInProgram()) AllPools::freeUnused();
  }
};

[[gnu::init_priority(kEarliest)]] PoolStarter starter;

}  // namespace

constinit Pool<NumberExpressionAST>& NumberExpressionAST::pool =
    storage<Pool<NumberExpressionAST>>.pool;
constinit Pool<StringExpressionAST>& StringExpressionAST::pool =
    storage<Pool<StringExpressionAST>>.pool;
constinit Pool<VectorExpressionAST>& VectorExpressionAST::pool =
    storage<Pool<VectorExpressionAST>>.pool;
constinit Pool<AColorExpressionAST>& AColorExpressionAST::pool =
    storage<Pool<AColorExpressionAST>>.pool;
constinit Pool<MatrixExpressionAST>& MatrixExpressionAST::pool =
    storage<Pool<MatrixExpressionAST>>.pool;
constinit Pool<TransformExpressionAST>& TransformExpressionAST::pool =
    storage<Pool<TransformExpressionAST>>.pool;
constinit Pool<TransformHexExpressionAST>& TransformHexExpressionAST::pool =
    storage<Pool<TransformHexExpressionAST>>.pool;
constinit Pool<ObjectReferenceAST>& ObjectReferenceAST::pool =
    storage<Pool<ObjectReferenceAST>>.pool;
constinit Pool<NegatedExpressionAST>& NegatedExpressionAST::pool =
    storage<Pool<NegatedExpressionAST>>.pool;
constinit Pool<InterpolateExpressionAST>& InterpolateExpressionAST::pool =
    storage<Pool<InterpolateExpressionAST>>.pool;
constinit Pool<KeyList>& KeyList::pool = storage<Pool<KeyList>>.pool;
constinit Pool<ObjectAST>& ObjectAST::pool = storage<Pool<ObjectAST>>.pool;
constinit Pool<PropertyAST>& PropertyAST::pool = storage<Pool<PropertyAST>>.pool;

// The classes of these nodes are final, so that all have the same size.

constinit NodeRooms<ArrayExpressionAST>& ArrayExpressionAST::pool =
    storage<NodeRooms<ArrayExpressionAST>>.pool;
void* ArrayExpressionAST::operator new(size_t) { return pool.newElement(); }
void ArrayExpressionAST::operator delete(void* node) noexcept {
  pool.freeElement(static_cast<NodeRoom<ArrayExpressionAST>*>(node));
}

constinit NodeRooms<BinaryExpressionAST>& BinaryExpressionAST::pool =
    storage<NodeRooms<BinaryExpressionAST>>.pool;
void* BinaryExpressionAST::operator new(size_t) { return pool.newElement(); }
void BinaryExpressionAST::operator delete(void* node) noexcept {
  pool.freeElement(static_cast<NodeRoom<BinaryExpressionAST>*>(node));
}

constinit NodeRooms<BuiltinFunctionAST>& BuiltinFunctionAST::pool =
    storage<NodeRooms<BuiltinFunctionAST>>.pool;
void* BuiltinFunctionAST::operator new(size_t) { return pool.newElement(); }
void BuiltinFunctionAST::operator delete(void* node) noexcept {
  pool.freeElement(static_cast<NodeRoom<BuiltinFunctionAST>*>(node));
}

constinit NodeRooms<ListExpressionAST>& ListExpressionAST::pool =
    storage<NodeRooms<ListExpressionAST>>.pool;
void* ListExpressionAST::operator new(size_t) { return pool.newElement(); }
void ListExpressionAST::operator delete(void* node) noexcept {
  pool.freeElement(static_cast<NodeRoom<ListExpressionAST>*>(node));
}

constinit NodeRooms<ListCell>& ListCell::pool = storage<NodeRooms<ListCell>>.pool;
void* ListCell::operator new(size_t) { return pool.newElement(); }
void ListCell::operator delete(void* node) noexcept {
  pool.freeElement(static_cast<NodeRoom<ListCell>*>(node));
}

constinit NodeRooms<PropertyReferenceAST>& PropertyReferenceAST::pool =
    storage<NodeRooms<PropertyReferenceAST>>.pool;
void* PropertyReferenceAST::operator new(size_t) { return pool.newElement(); }
void PropertyReferenceAST::operator delete(void* node) noexcept {
  pool.freeElement(static_cast<NodeRoom<PropertyReferenceAST>*>(node));
}

constinit NodeRooms<RuntimeValueAST>& RuntimeValueAST::pool =
    storage<NodeRooms<RuntimeValueAST>>.pool;
void* RuntimeValueAST::operator new(size_t) { return pool.newElement(); }
void RuntimeValueAST::operator delete(void* node) noexcept {
  pool.freeElement(static_cast<NodeRoom<RuntimeValueAST>*>(node));
}

void trimPools() noexcept {
  StringExpressionAST::pool.forEachFree([](StringExpressionAST& node) {
    node.directory.freeMem();
    node.text.freeMem();
  });
  ObjectReferenceAST::pool.forEachFree([](ObjectReferenceAST& node) { node.name.freeMem(); });
  ObjectAST::pool.forEachFree([](ObjectAST& object) {
    object.type.freeMem();
    object.name.freeMem();
  });
  PropertyAST::pool.forEachFree([](PropertyAST& property) {
    property.name.freeMem();
    property.file.freeMem();
  });
}

}  // namespace Kelp
