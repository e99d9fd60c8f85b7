// The static pools of the node classes.
//
// A host may parse in the constructor of a static object and release a program in the destructor
// of another. So each pool lives in storage that is never destroyed, the references to it are
// constants, and the pools themselves are constructed ahead of all static objects of ordinary
// priority.

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

struct PoolStarter {
  PoolStarter() {
    start<NumberExpressionAST, StringExpressionAST, VectorExpressionAST, AColorExpressionAST,
          MatrixExpressionAST, TransformExpressionAST, TransformHexExpressionAST,
          ObjectReferenceAST, NegatedExpressionAST, InterpolateExpressionAST, KeyList, ObjectAST,
          PropertyAST>();
  }

  template <class... Nodes>
  static void start() {
    (new (&storage<Nodes>.pool) Pool<Nodes>, ...);
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

}  // namespace Kelp
