// Objects in raw memory, for looking at what constructors and destructors do to the bytes.
#pragma once

#include <cstddef>
#include <cstring>
#include <new>
#include <utility>

namespace KelpTest {

/// From here on the compiler must take the memory as read and written by somebody else, so that no
/// store before it is dropped as dead and no read behind it is guessed.
inline void observe(void* memory) { asm volatile("" : : "r"(memory) : "memory"); }

/// A T in memory that held `fill` in every byte before.
template <class T>
class Placed {
 public:
  template <class... Arguments>
  explicit Placed(int fill, Arguments&&... arguments) {
    std::memset(storage, fill, sizeof storage);
    observe(storage);
    if constexpr (sizeof...(arguments) == 0) {
      object = new (storage) T;  // not T(), which may clear the memory first
    } else {
      object = new (storage) T(std::forward<Arguments>(arguments)...);
    }
    observe(storage);
  }
  Placed(const Placed&) = delete;
  Placed& operator=(const Placed&) = delete;

  T* operator->() { return object; }
  T& operator*() { return *object; }

  /// The object's end; its bytes can be read afterwards.
  void destroy() {
    object->~T();
    observe(storage);
  }

  template <class Field>
  Field fieldAt(size_t offset) const {
    Field field;
    std::memcpy(&field, storage + offset, sizeof field);
    return field;
  }

 private:
  alignas(T) unsigned char storage[sizeof(T)];
  T* object;
};

}  // namespace KelpTest
