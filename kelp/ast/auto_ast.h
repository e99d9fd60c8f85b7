// auto_ast: the owner of a node under construction.
#pragma once

#include <cstdint>

namespace Kelp {

/// Releases its node with deleteThis() unless the node was given up. Null is nobody's node.
template <class T>
class auto_ast {
 public:
  explicit auto_ast(T* owned) noexcept : node(owned), owns(1) {}
  auto_ast(const auto_ast&) = delete;
  auto_ast& operator=(const auto_ast&) = delete;
  ~auto_ast() {
    if (owns != 0 && node != nullptr) node->deleteThis();
    // Volatile: a destructor's plain stores could be optimised away as dead.
    *const_cast<T* volatile*>(&node) = nullptr;
    *const_cast<volatile int32_t*>(&owns) = 0;
  }

  T* get() const { return node; }
  T* operator->() const { return node; }

  /// Gives the node up: the caller owns it now.
  T* release() noexcept {
    owns = 0;
    return node;
  }

  /// Releases the node, if it is owned, and takes `fresh` (may be null) instead.
  void reset(T* fresh) noexcept {
    if (owns != 0 && node != nullptr) node->deleteThis();
    node = fresh;
    owns = fresh != nullptr ? 1 : 0;
  }

 private:
  T* node;
  int32_t owns;
};

}  // namespace Kelp
