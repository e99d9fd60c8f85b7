// Name-keyed maps side by side with a model of them.
#pragma once

#include <cstring>
#include <memory>
#include <string>
#include <vector>

#include "kelp/ast/objects.h"
#include "tests/models/chainsmodel.h"
#include "tests/models/choices.h"
#include "tests/models/shortage.h"

namespace KelpTest {

/// A map that borrows its keys. They change behind it now and then.
class CheckedBorrowingMap {
 public:
  CheckedBorrowingMap(Choices& source, Shortage& memory, uint32_t keyCount);

  /// One operation, then what it touched is compared. Throws Mismatch.
  void step();
  void compareAll() const;

  /// How readily keys are inserted, in 16; the rest is erased.
  uint32_t inserting = 9;

 private:
  struct Content {
    size_t key;
    Kelp::ObjectAST* value;
  };
  using Map = Kelp::HashMap<Kelp::ObjectAST*, 0, 1024, 0>;

  void insert(size_t key);
  void erase(size_t key);
  void change(size_t key);
  void compareTouched(size_t key) const;
  auto comparing() const;
  const char* text(size_t key) const { return keys[key].get(); }

  Choices& choices;
  Shortage& shortage;
  std::vector<std::unique_ptr<char[]>> keys;  // the first one is null
  Map map;
  ChainsModel<Content> model;
  size_t compared = 0;  // buckets at the last full comparison
};

/// A map that owns copies of its keys, and strings as values.
class CheckedOwningMap {
 public:
  CheckedOwningMap(Choices& source, Shortage& memory, uint32_t keyCount);

  void step();
  void compareAll() const;

  uint32_t inserting = 9;

 private:
  struct Content {
    MaybeText key;
    MaybeText value;
  };
  using Map = Kelp::HashMap<Kelp::CharString, 1, 1024, 0>;

  void insert(const MaybeText& key);
  void erase(const MaybeText& key);
  void compareTouched(const MaybeText& key) const;

  Choices& choices;
  Shortage& shortage;
  uint32_t keyCount;
  Map map;
  ChainsModel<Content> model;
  size_t compared = 0;
};

}  // namespace KelpTest
