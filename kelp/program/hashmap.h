// HashMap: the string-keyed, separately chained table behind a program's objects.
//
// Keys are NUL-terminated texts compared byte by byte; a null key is a key of its own, which lives
// in bucket 0 and equals only null. Bucket counts step up and down `recommended_hash_sizes`. The
// hash is fixed and keys may change behind the map, so hashes are never cached, and a text written
// to collide makes the map slow. A map belongs to one thread at a time.
#pragma once

#include <algorithm>
#include <climits>
#include <cstdint>
#include <cstring>
#include <memory>
#include <new>
#include <utility>

#include "kelp/program/hashlittle.h"
#include "kelp/utils/pool.h"
#include "kelp/utils/table.h"

namespace Kelp {

/// The bucket counts that a map can have, primes in rising order.
inline constexpr int32_t recommended_hash_sizes[27] = {
    13,      29,      59,       127,      257,      521,       1049,      2099,      4201,
    8419,    16843,   33703,    67409,    134837,   269683,    539389,    1078787,   2157587,
    4315183, 8630387, 17260781, 34521589, 69043189, 138086407, 276172823, 552345671, 1104691373};

/// The bucket count that a map of `entries` entries in `bucketCount` buckets steps to: the next
/// larger one above 75 % load, the next smaller one at 19 % or less, else `bucketCount` itself.
/// Stays at both ends of the list.
int recommendedBucketCount(int entries, int bucketCount);

/// T is the value type. Kind 0 borrows keys (or derives them from values, see KeyFunction), kind 1
/// keeps a copy of every key and owns its values. LeastKeyBuffer is the least size of the two key
/// buffers, in chars. Flag has no meaning: 0.
template <class T, int Kind, int LeastKeyBuffer = 1024, int Flag = 0>
class HashMap {
  static_assert((Kind == 0 || Kind == 1) && Flag == 0);

 public:
  /// Writes the key of `value` into buffer, NUL-terminated, at most bufferSize chars in all.
  using KeyFunction = void (*)(const T& value, char* buffer, int bufferSize);

  struct __internal_s {
    const char* key = nullptr;  ///< borrowed (kind 0), from new[] (kind 1), null when derived
    T value = T();
    __internal_s* next = nullptr;
  };

  /// Good until the map is rehashed or the entry erased.
  struct Iterator {
    HashMap* map;
    int bucket;
    __internal_s* entry;
  };

  HashMap() { _installBuckets(_newBuckets(kSmallest), kSmallest); }
  HashMap(const HashMap&) = delete;
  HashMap& operator=(const HashMap&) = delete;
  ~HashMap() {
    _destroyChains();
    _freeKeyBuffers();
  }

  /// Inserts unless the key is present, in which case the old entry stays as it is: the iterator
  /// leads to whichever holds the key. With a key function the key is derived from `value` and the
  /// argument only sizes the key buffers (null: the least size). Kind 0 without a key function
  /// borrows `key`, which must outlive the entry. The map may be rehashed either way.
  /// Throws ExceptionMsg (then `count` is one too high) or std::bad_alloc.
  Iterator _insert(const char* key, const T& value, KeyFunction keyFunction) {
    if (keyFunction == nullptr) return _insertAs(StoredKeys(), key, _hashOf(key), value);
    _reserveKeyBuffers(key != nullptr ? std::strlen(key) + 1 : 0);
    keyFunction(value, newKeyBuffer, keyBufferSize);
    return _insertAs(_derivedKeys(keyFunction), newKeyBuffer, _hashOf(newKeyBuffer), value);
  }

  /// The entry with that key, or null. For maps that store their keys.
  __internal_s* find(const char* key) const { return _findAs(_bucketOf(key), key, StoredKeys()); }

  /// The first entry of a bucket whose stored or derived key equals `key`, or null. With a key
  /// function the key buffers must have been reserved.
  __internal_s* _findInBucket(int bucket, const char* key, KeyFunction keyFunction) const {
    if (keyFunction == nullptr) return _findAs(bucket, key, StoredKeys());
    return _findAs(bucket, key, _derivedKeys(keyFunction));
  }

  int _bucketOf(const char* key) const { return _bucketOf(_hashOf(key)); }

  /// Removes the entry with that key, if there is one; the map may then shrink or grow.
  /// For maps that store their keys.
  void erase(const char* key) {
    __internal_s** link = &buckets.data[_bucketOf(key)];
    while (*link != nullptr && !_sameKey((*link)->key, key)) link = &(*link)->next;
    __internal_s* entry = *link;
    if (entry == nullptr) return;
    *link = entry->next;
    _releaseEntry(entry);
    --count;
    _adaptBucketCount(StoredKeys());
  }

  /// Distributes the entries over bucketCount buckets. Entries are relinked, not copied, and the
  /// order within a chain is not kept. Throws std::bad_alloc, and then the map is unchanged.
  void _resize_table(int bucketCount, KeyFunction keyFunction) {
    if (keyFunction == nullptr) return _rehash(bucketCount, StoredKeys());
    _reserveKeyBuffers(0);
    _rehash(bucketCount, _derivedKeys(keyFunction));
  }

  /// Gives a chain back to the pool, its first entry last (so that it is handed out first).
  void _destroy_chain(__internal_s* entry) noexcept {
    // Turned round in place first: a chain may be too long to recurse over.
    __internal_s* last = nullptr;
    while (entry != nullptr) {
      __internal_s* following = entry->next;
      entry->next = last;
      last = entry;
      entry = following;
    }
    while (last != nullptr) {
      __internal_s* preceding = last->next;
      _releaseEntry(last);
      last = preceding;
    }
  }

  /// Back to an empty map of 13 buckets; pool blocks stay for reuse.
  /// Throws std::bad_alloc, and then the map is unchanged.
  void clear() {
    __internal_s** fresh = _newBuckets(kSmallest);
    _destroyChains();
    delete[] _installBuckets(fresh, kSmallest);
    _freeKeyBuffers();
    count = 0;
  }

  /// Makes both key buffers hold at least `needed` chars, and never less than LeastKeyBuffer.
  /// Throws std::bad_alloc, and then they are unchanged.
  void _reserveKeyBuffers(size_t needed) {
    needed = std::max(needed, static_cast<size_t>(LeastKeyBuffer));
    if (static_cast<size_t>(keyBufferSize) >= needed) return;
    if (needed > static_cast<size_t>(INT_MAX)) throw std::bad_alloc();
    std::unique_ptr<char[]> entryKey(new char[needed]);
    char* newKey = new char[needed];
    _freeKeyBuffers();
    entryKeyBuffer = entryKey.release();
    newKeyBuffer = newKey;
    keyBufferSize = static_cast<int32_t>(needed);
  }

  // The operations below take the way to the keys as an argument `keys`: StoredKeys, what
  // _derivedKeys gives, or a class of its owner's that does the same for one key function but
  // faster. Hashes are those of whole keys; a null key has 0.

  struct StoredKeys {
    static constexpr bool kStored = true;

    /// Fetch what the other operations will read, in two steps that do not wait.
    void fetchValue(const __internal_s*) const {}
    void fetchKey(const __internal_s* entry) const { __builtin_prefetch(entry->key); }

    uint32_t hash(const __internal_s* entry) const { return _hashOf(entry->key); }
    bool equals(const __internal_s* entry, const char* key) const {
      return _sameKey(entry->key, key);
    }
  };

  static uint32_t _hashOf(const char* key) {
    return key != nullptr ? hashlittle(key, std::strlen(key)) : 0;
  }

  int _bucketOf(uint32_t hash) const {
    return static_cast<int>(hash % static_cast<uint32_t>(buckets.count));
  }

  /// The head of that hash's chain.
  __internal_s* const* _bucketSlot(uint32_t hash) const { return &buckets.data[_bucketOf(hash)]; }

  /// The first entry of a bucket that has that key, or null.
  template <class Keys>
  __internal_s* _findAs(int bucket, const char* key, const Keys& keys) const {
    __internal_s* entry = buckets.data[bucket];
    while (entry != nullptr && !keys.equals(entry, key)) entry = entry->next;
    return entry;
  }

  /// _insert for a key in hand.
  template <class Keys>
  Iterator _insertAs(const Keys& keys, const char* key, uint32_t hash, const T& value) {
    _adaptBucketCount(keys);
    const int bucket = _bucketOf(hash);
    if (__internal_s* present = _findAs(bucket, key, keys)) return {this, bucket, present};
    return {this, bucket, _link(bucket, Keys::kStored ? key : nullptr, value)};
  }

  /// Makes an entry at the head of a bucket, in which its key must not be. Throws as _insert does.
  __internal_s* _link(int bucket, const char* key, const T& value) {
    std::unique_ptr<char[]> ownKey = Kind == 1 ? _copyKey(key) : nullptr;
    ++count;
    __internal_s* entry = entryPool.newElement();
    entry->key = Kind == 1 ? ownKey.release() : key;
    entry->value = value;
    entry->next = buckets.data[bucket];
    buckets.data[bucket] = entry;
    return entry;
  }

  /// One step up or down the list of bucket counts, if the load asks for it; whether it did.
  /// Throws std::bad_alloc, and then the map is unchanged.
  template <class Keys>
  bool _adaptBucketCount(const Keys& keys) {
    const int wanted = recommendedBucketCount(count, buckets.count);
    if (wanted == buckets.count) return false;
    _rehash(wanted, keys);
    return true;
  }

  SimplePool<__internal_s, 1000, false> entryPool;
  Table<__internal_s*, 1000> buckets;  ///< chain heads; its count is the bucket count
  int32_t count = 0;                   ///< number of entries
  int32_t keyBufferSize = 0;           ///< chars in each key buffer; 0 while there are none
  char* entryKeyBuffer = nullptr;      ///< owned: key of an entry in the map, for chain walks
  char* newKeyBuffer = nullptr;        ///< owned: key being inserted

 private:
  static constexpr int kSmallest = recommended_hash_sizes[0];

  static bool _sameKey(const char* a, const char* b) {
    if (a == nullptr || b == nullptr) return a == b;
    return std::strcmp(a, b) == 0;
  }

  static std::unique_ptr<char[]> _copyKey(const char* key) {
    if (key == nullptr) return nullptr;
    const size_t bytes = std::strlen(key) + 1;
    std::unique_ptr<char[]> copy(new char[bytes]);
    std::memcpy(copy.get(), key, bytes);
    return copy;
  }

  static __internal_s** _newBuckets(int bucketCount) {
    return new __internal_s*[static_cast<size_t>(bucketCount)]();
  }

  // Puts an array of empty buckets in place and gives the old array to the caller.
  __internal_s** _installBuckets(__internal_s** fresh, int bucketCount) noexcept {
    __internal_s** old = buckets.data;
    buckets.data = fresh;
    buckets.count = bucketCount;
    buckets.capacity = bucketCount;
    return old;
  }

  struct DerivedKeys {
    static constexpr bool kStored = false;
    KeyFunction keyFunction;
    char* buffer;
    int bufferSize;

    const char* of(const __internal_s* entry) const {
      keyFunction(entry->value, buffer, bufferSize);
      return buffer;
    }
    void fetchValue(const __internal_s*) const {}
    void fetchKey(const __internal_s*) const {}
    uint32_t hash(const __internal_s* entry) const { return _hashOf(of(entry)); }
    bool equals(const __internal_s* entry, const char* key) const {
      return _sameKey(of(entry), key);
    }
  };

  // Good until the key buffers are replaced.
  DerivedKeys _derivedKeys(KeyFunction keyFunction) const {
    return {keyFunction, entryKeyBuffer, keyBufferSize};
  }

  static constexpr int kBatch = 32;

  template <class Keys>
  [[gnu::noinline]] void _rehash(int bucketCount, const Keys& keys) {
    std::unique_ptr<__internal_s*[]> old(_newBuckets(bucketCount));
    const int oldCount = buckets.count;
    old.reset(_installBuckets(old.release(), bucketCount));
    __internal_s* batch[kBatch];
    int size = 0;
    for (int i = 0; i < oldCount; ++i) {
      if (oldCount - i > kBatch) __builtin_prefetch(old[static_cast<size_t>(i + kBatch)]);
      for (__internal_s* entry = old[static_cast<size_t>(i)]; entry != nullptr;) {
        __internal_s* following = entry->next;
        batch[size++] = entry;
        if (size == kBatch) _distribute(batch, std::exchange(size, 0), keys);
        entry = following;
      }
    }
    _distribute(batch, size, keys);
  }

  // Puts entries at the heads of their buckets, one after the other. Their values, keys and buckets
  // lie all over memory, so each kind is fetched for all of them before it is needed.
  template <class Keys>
  void _distribute(__internal_s* const* entries, int size, const Keys& keys) {
    __internal_s** heads[kBatch];
    for (int i = 0; i < size; ++i) keys.fetchValue(entries[i]);
    for (int i = 0; i < size; ++i) keys.fetchKey(entries[i]);
    for (int i = 0; i < size; ++i) {
      heads[i] = &buckets.data[_bucketOf(keys.hash(entries[i]))];
      __builtin_prefetch(heads[i], 1);
    }
    for (int i = 0; i < size; ++i) {
      entries[i]->next = *heads[i];
      *heads[i] = entries[i];
    }
  }

  void _freeKeyBuffers() noexcept {
    delete[] entryKeyBuffer;
    delete[] newKeyBuffer;
    entryKeyBuffer = nullptr;
    newKeyBuffer = nullptr;
    keyBufferSize = 0;
  }

  void _releaseEntry(__internal_s* entry) noexcept {
    if constexpr (Kind == 1) {
      entry->value = T();
      delete[] entry->key;
    }
    entryPool.freeElement(entry);
  }

  void _destroyChains() noexcept {
    for (int i = 0; i < buckets.count; ++i) {
      _destroy_chain(buckets.data[i]);
      buckets.data[i] = nullptr;
    }
  }
};

}  // namespace Kelp
