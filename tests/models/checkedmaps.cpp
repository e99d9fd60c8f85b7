#include "tests/models/checkedmaps.h"

#include <cstdint>

namespace KelpTest {

namespace {

// Key 0 is none, key 1 is empty.
MaybeText keyText(uint32_t number) {
  if (number == 0) return {};
  if (number == 1) return "";
  return "key" + std::to_string(number);
}

std::unique_ptr<char[]> copyOf(const MaybeText& text) {
  if (!text) return nullptr;
  std::unique_ptr<char[]> copy(new char[text->size() + 1]);
  std::memcpy(copy.get(), text->c_str(), text->size() + 1);
  return copy;
}

}  // namespace

// ---- CheckedBorrowingMap -----------------------------------------------------------------------

auto CheckedBorrowingMap::comparing() const {
  return [this](const Map::__internal_s& entry, const Content& content) {
    expectThat("the entry's key is the caller's", entry.key == text(content.key));
    expectThat("the entry's value", entry.value == content.value);
  };
}

CheckedBorrowingMap::CheckedBorrowingMap(Choices& source, Shortage& memory, uint32_t keyCount)
    : choices(source),
      shortage(memory),
      model([this](const Content& content) { return text(content.key); }) {
  for (uint32_t i = 0; i < keyCount; ++i) keys.push_back(copyOf(keyText(i)));
}

void CheckedBorrowingMap::step() {
  const uint32_t kind = choices.below(256);
  const size_t key = choices.below(static_cast<uint32_t>(keys.size()));
  if (kind == 255) {
    if (shortage.run([&] { map.clear(); })) model.clear();
  } else if (kind >= 250) {
    change(key);
  } else if (kind % 16 < inserting) {
    insert(key);
  } else {
    erase(key);
  }
  compareTouched(key);
  if (compared != model.buckets()) compareAll();
  compared = model.buckets();
}

void CheckedBorrowingMap::insert(size_t key) {
  auto* value = reinterpret_cast<Kelp::ObjectAST*>(uintptr_t{choices.below(256)} * 8);
  const void* element = nullptr;
  if (shortage.run([&] { element = map._insert(text(key), value, nullptr).entry; })) {
    model.insert(text(key), Content{key, value}, element);
  } else {
    model.settleAfterFailedInsertion(map);
  }
}

void CheckedBorrowingMap::erase(size_t key) {
  if (shortage.run([&] { map.erase(text(key)); })) {
    model.erase(text(key));
  } else {
    model.unlink(text(key));
  }
}

void CheckedBorrowingMap::change(size_t key) {
  char* characters = keys[key].get();
  if (characters == nullptr || *characters == '\0') return;
  *characters = static_cast<char>('k' + choices.below(3));
}

void CheckedBorrowingMap::compareTouched(size_t key) const {
  model.compareCounts(map);
  model.compareChain(map, model.bucketOf(text(key)), comparing());
  const auto* found = map.find(text(key));
  const auto* expected = const_cast<ChainsModel<Content>&>(model).find(text(key));
  expectSame("the entry found", expected != nullptr ? expected->element : nullptr,
             static_cast<const void*>(found));
}

void CheckedBorrowingMap::compareAll() const { model.compareAll(map, comparing()); }

// ---- CheckedOwningMap --------------------------------------------------------------------------

CheckedOwningMap::CheckedOwningMap(Choices& source, Shortage& memory, uint32_t differentKeys)
    : choices(source),
      shortage(memory),
      keyCount(differentKeys),
      model([](const Content& content) { return charsOf(content.key); }) {}

void CheckedOwningMap::step() {
  const uint32_t kind = choices.below(256);
  const MaybeText key = keyText(choices.below(keyCount));
  if (kind == 255) {
    if (shortage.run([&] { map.clear(); })) model.clear();
  } else if (kind % 16 < inserting) {
    insert(key);
  } else {
    erase(key);
  }
  compareTouched(key);
  if (compared != model.buckets()) compareAll();
  compared = model.buckets();
}

void CheckedOwningMap::insert(const MaybeText& key) {
  const MaybeText text = keyText(choices.below(256));
  const Kelp::CharString value(charsOf(text));
  Map::__internal_s* entry = nullptr;
  if (shortage.run([&] { entry = map._insert(charsOf(key), value, nullptr).entry; })) {
    auto& inserted = model.insert(charsOf(key), Content{key, text}, entry);
    if (!choices.oneIn(4)) return;
    entry->value = value;
    inserted.content.value = text;
  } else {
    model.settleAfterFailedInsertion(map);
  }
}

void CheckedOwningMap::erase(const MaybeText& key) {
  if (shortage.run([&] { map.erase(charsOf(key)); })) {
    model.erase(charsOf(key));
  } else {
    model.unlink(charsOf(key));
  }
}

namespace {

const auto sameOwned = [](const auto& entry, const auto& content) {
  const MaybeText key = entry.key != nullptr ? MaybeText(entry.key) : MaybeText();
  expectSame("the entry's key", content.key, key);
  expectSame("the entry's value", content.value, textOf(entry.value));
};

}  // namespace

void CheckedOwningMap::compareTouched(const MaybeText& key) const {
  model.compareCounts(map);
  model.compareChain(map, model.bucketOf(charsOf(key)), sameOwned);
}

void CheckedOwningMap::compareAll() const { model.compareAll(map, sameOwned); }

}  // namespace KelpTest
