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

template <class T>
union NeverDestroyed {
  constexpr NeverDestroyed() : none(0) {}
  // NOLINTNEXTLINE(modernize-use-equals-default): the pool must not be destroyed
  ~NeverDestroyed() {}  // unreachable: the storage outlives every static object
  char none;
  Pool<T> pool;
};

template <class T>
constinit NeverDestroyed<T> storage;

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

template <class... Nodes>
struct Pools {
  static void start() { (new (&storage<Nodes>.pool) Pool<Nodes>, ...); }
  static void freeUnused() noexcept { (storage<Nodes>.pool.freeUnused(), ...); }
};

using AllPools = Pools<NumberExpressionAST, StringExpressionAST, VectorExpressionAST,
                       AColorExpressionAST, MatrixExpressionAST, TransformExpressionAST,
                       TransformHexExpressionAST, ObjectReferenceAST, NegatedExpressionAST,
                       InterpolateExpressionAST, KeyList, ObjectAST, PropertyAST>;

struct PoolStarter {
  PoolStarter() { AllPools::start(); }
  // At the end of the process the memory goes anyway, and freeing it would only take time.
  ~PoolStarter() {
    if (!isInProgram()) AllPools::freeUnused();
  }
};

[[gnu::init_priority(kEarliest)]] PoolStarter starter;

}  // namespace

constinit Pool<NumberExpressionAST>& NumberExpressionAST::pool = storage<NumberExpressionAST>.pool;
constinit Pool<StringExpressionAST>& StringExpressionAST::pool = storage<StringExpressionAST>.pool;
constinit Pool<VectorExpressionAST>& VectorExpressionAST::pool = storage<VectorExpressionAST>.pool;
constinit Pool<AColorExpressionAST>& AColorExpressionAST::pool = storage<AColorExpressionAST>.pool;
constinit Pool<MatrixExpressionAST>& MatrixExpressionAST::pool = storage<MatrixExpressionAST>.pool;
constinit Pool<TransformExpressionAST>& TransformExpressionAST::pool =
    storage<TransformExpressionAST>.pool;
constinit Pool<TransformHexExpressionAST>& TransformHexExpressionAST::pool =
    storage<TransformHexExpressionAST>.pool;
constinit Pool<ObjectReferenceAST>& ObjectReferenceAST::pool = storage<ObjectReferenceAST>.pool;
constinit Pool<NegatedExpressionAST>& NegatedExpressionAST::pool =
    storage<NegatedExpressionAST>.pool;
constinit Pool<InterpolateExpressionAST>& InterpolateExpressionAST::pool =
    storage<InterpolateExpressionAST>.pool;
constinit Pool<KeyList>& KeyList::pool = storage<KeyList>.pool;
constinit Pool<ObjectAST>& ObjectAST::pool = storage<ObjectAST>.pool;
constinit Pool<PropertyAST>& PropertyAST::pool = storage<PropertyAST>.pool;

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
