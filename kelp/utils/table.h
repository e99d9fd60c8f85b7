// Table: the library's growable array of plain values.
#pragma once

#include <algorithm>
#include <climits>
#include <cstdint>
#include <new>

namespace Kelp {

/// A growable array of N-stepped capacity. Elements are copied as plain values; a table of
/// pointers does not own what they point to. Owners may read and write the fields, also replace
/// `data` by an array of their own from new[] with its `capacity` (the table frees whichever it
/// finds there). Who frees the old array before making the new one calls release() for it: the new
/// one may get the same address, and the table would take it for the old.
template <class T, int N = 100>
class Table {
 public:
  Table() = default;
  Table(const Table&) = delete;
  Table& operator=(const Table&) = delete;
  ~Table() { release(); }

  /// Appends a copy of `item`, which may be one of the table's own elements.
  /// Throws std::bad_alloc when memory runs out, and then the table is unchanged.
  Table& operator+=(const T& item) {
    const T copy = item;
    makeRoom();
    data[count++] = copy;
    return *this;
  }

  /// Grows as the next += would, which then cannot fail. Throws std::bad_alloc, changing nothing.
  void makeRoom() {
    if (count >= capacity) _grow(int64_t{count} + 1);
  }

  /// Appends `number` items that are not the table's own, in one go. Throws as operator+= does.
  void append(const T* items, int64_t number) {
    if (number <= 0) return;
    if (number > capacity - count) _grow(count + number);
    std::copy_n(items, number, data + count);
    count += static_cast<int>(number);
  }

  /// Frees the array; count and capacity become 0 and data null, the step stays.
  /// Kept out of line: a destructor's plain stores could be optimised away as dead.
  [[gnu::noinline]] void release() noexcept {
    delete[] data;
    count = 0;
    capacity = 0;
    data = nullptr;
    storage = nullptr;
    storageSize = 0;
    storageCapacity = 0;
  }

  int count = 0;      ///< elements in use
  int step = N;       ///< growth step
  int capacity = 0;   ///< elements that the array holds as far as the growth rule goes
  T* data = nullptr;  ///< the array, from new[]; null while the capacity is 0

 private:
  int64_t _grownCapacity(int64_t needed) const {
    if (step >= 1) return needed + step - needed % step;
    if (capacity < 1) return needed;
    int64_t grown = capacity;
    while (grown < needed) grown *= 2;
    return grown;
  }

  // The visible capacity follows the growth rule to the letter. A fixed step alone would copy the
  // whole array at every step, so the array behind it grows geometrically and is reused while the
  // owner has not put another one in `data`.
  void _grow(int64_t needed) {
    const int64_t grown = _grownCapacity(needed);
    if (grown > INT_MAX) throw std::bad_alloc();
    if (!_hasOwnArray() || grown > storageSize) _moveTo(grown);
    capacity = storageCapacity = static_cast<int>(grown);
  }

  bool _hasOwnArray() const {
    return data != nullptr && data == storage && capacity == storageCapacity;
  }

  void _moveTo(int64_t grown) {
    const int64_t doubled =
        _hasOwnArray() ? std::min<int64_t>(int64_t{storageSize} * 2, INT_MAX) : 0;
    const int64_t size = std::max(grown, doubled);
    T* larger = new T[static_cast<size_t>(size)];
    if (count > 0) std::copy_n(data, count, larger);
    delete[] data;
    data = storage = larger;
    storageSize = static_cast<int>(size);
  }

  T* storage = nullptr;     // the array that storageSize speaks of
  int storageSize = 0;      // elements that it really holds, at least `capacity`
  int storageCapacity = 0;  // the capacity that was last reported for it
};

}  // namespace Kelp
