// PtrArray: a shared, reference-counted array of a fixed size; the elements of a typed list.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <new>

namespace Kelp {

/// An array of exactly the requested count, shared by all copies of the PtrArray and freed with
/// the last of them. Reference counts are plain integers: one thread at a time.
template <class T>
class PtrArray {
  static_assert(alignof(T) <= alignof(std::max_align_t), "the elements follow the holder");

 public:
  PtrArray() = default;
  PtrArray(const PtrArray& other) noexcept
      : data(other.data), holder(other.holder), count(other.count) {
    if (holder != nullptr) ++holder->referenceCount;
  }
  PtrArray& operator=(const PtrArray& other) noexcept {
    if (holder == other.holder) return *this;
    free();
    data = other.data;
    holder = other.holder;
    count = other.count;
    if (holder != nullptr) ++holder->referenceCount;
    return *this;
  }
  ~PtrArray() { free(); }

  /// Drops what it held and takes a new array of `size` elements in one allocation; numbers are
  /// left unset. 0 or less gives the empty array. Throws std::bad_alloc, and then it is unchanged.
  void allocArray(int size) {
    if (size <= 0) {
      free();
      return;
    }
    const size_t elementBytes = static_cast<size_t>(size) * sizeof(T);
    auto* fresh = static_cast<Holder*>(::operator new(sizeof(Holder) + elementBytes));
    new (fresh) Holder{1, size};
    T* elements = reinterpret_cast<T*>(fresh + 1);
    std::uninitialized_default_construct_n(elements, size);
    free();
    holder = fresh;
    data = elements;
    count = size;
  }

  /// Drops this share of the array; the last share frees it. The PtrArray is empty afterwards.
  void free() noexcept {
    if (holder != nullptr && --holder->referenceCount == 0) {
      std::destroy_n(data, holder->count);
      ::operator delete(holder);
    }
    data = nullptr;
    holder = nullptr;
    count = 0;
  }

  T& operator[](int i) { return data[i]; }
  const T& operator[](int i) const { return data[i]; }

 private:
  struct alignas(std::max_align_t) Holder {
    int referenceCount;
    int count;
  };

 public:
  T* data = nullptr;  ///< the first element, null when empty; lives as long as the last share

 private:
  Holder* holder = nullptr;

 public:
  int count = 0;  ///< number of elements
};

}  // namespace Kelp
