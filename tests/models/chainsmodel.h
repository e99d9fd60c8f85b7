// A model of the name-keyed map: bucket counts, the order of every chain, the order in which
// entries are handed out again.
#pragma once

#include <cstring>
#include <functional>
#include <iterator>
#include <unordered_set>
#include <utility>
#include <vector>

#include "kelp/program/hashmap.h"
#include "tests/models/mismatch.h"

namespace KelpTest {

/// The map as a list of lists. `Content` is what the model remembers of an entry; the key is
/// derived from it whenever it is needed, since keys may change behind a map.
template <class Content>
class ChainsModel {
 public:
  struct Entry {
    const void* element;  // where the map keeps it; null where that is not known
    Content content;
  };
  using KeyOf = std::function<const char*(const Content&)>;

  explicit ChainsModel(KeyOf keyOfContent)
      : keyOf(std::move(keyOfContent)), chains(Kelp::recommended_hash_sizes[0]) {}

  int count() const { return entries; }
  size_t buckets() const { return chains.size(); }

  size_t bucketOf(const char* key) const {
    if (key == nullptr) return 0;
    return Kelp::hashlittle(key, std::strlen(key)) % chains.size();
  }

  Entry* find(const char* key) {
    for (Entry& entry : chains[bucketOf(key)]) {
      if (same(keyOf(entry.content), key)) return &entry;
    }
    return nullptr;
  }

  /// One step up or down the list of bucket counts, where the load asks for it.
  void adapt() {
    const int64_t load = int64_t{entries} * 100 / static_cast<int64_t>(chains.size());
    if (load > 75) {
      rehash(Kelp::recommended_hash_sizes[++size]);
    } else if (load <= 19 && size > 0) {
      rehash(Kelp::recommended_hash_sizes[--size]);
    }
  }

  /// The entry of that key: the present one, or a new one kept in `element`.
  Entry& insert(const char* key, const Content& content, const void* element) {
    Entry& inserted = insertSomewhere(key, content);
    if (inserted.element == nullptr) {
      noteHandedOut(element);
      inserted.element = element;
    }
    expectSame("the entry's element", inserted.element, element);
    return inserted;
  }

  /// The same where it is not known which element a new entry is kept in.
  Entry& insertSomewhere(const char* key, const Content& content) {
    adapt();
    if (Entry* present = find(key)) return *present;
    ++entries;
    std::vector<Entry>& chain = chains[bucketOf(key)];
    return *chain.insert(chain.begin(), Entry{nullptr, content});
  }

  /// Without the step of the bucket count; false when there is no such key.
  bool unlink(const char* key) {
    std::vector<Entry>& chain = chains[bucketOf(key)];
    Entry* entry = find(key);
    if (entry == nullptr) return false;
    if (entry->element != nullptr) freeElements.push_back(entry->element);
    chain.erase(chain.begin() + (entry - chain.data()));
    --entries;
    return true;
  }

  void erase(const char* key) {
    if (unlink(key)) adapt();
  }

  void clear() {
    for (std::vector<Entry>& chain : chains) {
      for (size_t i = chain.size(); i-- > 0;) {
        if (chain[i].element != nullptr) freeElements.push_back(chain[i].element);
      }
    }
    size = 0;
    entries = 0;
    chains.assign(Kelp::recommended_hash_sizes[0], {});
  }

  void rehash(int bucketCount) {
    std::vector<std::vector<Entry>> old(static_cast<size_t>(bucketCount));
    old.swap(chains);
    for (std::vector<Entry>& chain : old) {
      for (Entry& entry : chain) {
        std::vector<Entry>& target = chains[bucketOf(keyOf(entry.content))];
        target.insert(target.begin(), std::move(entry));
      }
    }
  }

  /// After an insertion that failed: the map may have been rehashed, and counted what it did not
  /// get.
  template <class Map>
  void settleAfterFailedInsertion(const Map& map) {
    if (static_cast<size_t>(map.buckets.count) != chains.size()) adapt();
    if (map.count == entries + 1) ++entries;
  }

  /// `same` compares one entry of the map with the content of the model's.
  template <class Map, class Same>
  void compareChain(const Map& map, size_t bucket, Same sameEntry) const {
    const auto* entry = map.buckets.data[bucket];
    for (const Entry& expected : chains[bucket]) {
      expectThat("the chain has another entry", entry != nullptr);
      if (expected.element != nullptr) {
        expectSame("the entry's element", expected.element, static_cast<const void*>(entry));
      }
      sameEntry(*entry, expected.content);
      entry = entry->next;
    }
    expectThat("the chain ends", entry == nullptr);
  }

  template <class Map>
  void compareCounts(const Map& map) const {
    expectSame("buckets", chains.size(), static_cast<size_t>(map.buckets.count));
    expectSame("entries", entries, map.count);
  }

  template <class Map, class Same>
  void compareAll(const Map& map, Same sameEntry) const {
    compareCounts(map);
    for (size_t i = 0; i < chains.size(); ++i) compareChain(map, i, sameEntry);
  }

 private:
  static bool same(const char* a, const char* b) {
    return a == nullptr || b == nullptr ? a == b : std::strcmp(a, b) == 0;
  }

  // Returned entries first, the last one on top; then ones that were never handed out.
  void noteHandedOut(const void* element) {
    if (freeElements.empty()) {
      expectThat("a fresh entry was never handed out", known.insert(element).second);
      return;
    }
    expectSame("the entry handed out", freeElements.back(), element);
    freeElements.pop_back();
  }

  KeyOf keyOf;
  std::vector<std::vector<Entry>> chains;  // heads first
  int entries = 0;
  size_t size = 0;  // index of the bucket count
  std::vector<const void*> freeElements;
  std::unordered_set<const void*> known;
};

}  // namespace KelpTest
