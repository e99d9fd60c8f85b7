#include "kelp/program/programast.h"

#include <cassert>
#include <climits>
#include <cstring>
#include <memory>
#include <string_view>

namespace Kelp {

namespace {

// An absent text counts as empty.
std::string_view viewOf(const CharString& text) {
  const char* chars = text.chars();
  return chars != nullptr ? chars : "";  // a view of null could not be copied from
}

// Appends to a key that may be cut: once it is full, nothing more fits.
class KeyWriter {
 public:
  KeyWriter(char* buffer, int bufferSize) : at(buffer), room(bufferSize - 1) { *at = '\0'; }

  void append(std::string_view text) {
    if (room <= 0) return;
    const size_t fitting = std::min(text.size(), static_cast<size_t>(room));
    std::memcpy(at, text.data(), fitting);
    at += fitting;
    room -= static_cast<int>(fitting);
    *at = '\0';
  }

  void appendKey(std::string_view type, std::string_view name) {
    append(type);
    append("\t");
    append(name);
  }

  void appendKeyOf(const ObjectAST& object) { appendKey(viewOf(object.type), viewOf(object.name)); }

  size_t length(const char* buffer) const { return static_cast<size_t>(at - buffer); }

 private:
  char* at;
  int room;
};

const char* charsOrEmpty(const CharString& text) {
  const char* chars = text.chars();
  return chars != nullptr ? chars : "";
}

// Lets memory fetch a name. A short one lies inside its buffer, at the end of a line of the cache
// and the beginning of the next.
void fetchName(const ObjectAST& object) {
  const CharStringBuf* buffer = object.name.buffer;
  if (buffer == nullptr) return;
  __builtin_prefetch(buffer);
  __builtin_prefetch(buffer + 1);
}

// The keys that getNameTypeKey derives, as ObjectMap wants them.
struct NameTypeKeys {
  using Entry = ProgramAST::ObjectMap::__internal_s;
  char* buffer;  // the map's, for the keys of entries
  int bufferSize;
  bool mayBeCut;  // the key searched for is as long as keys are that were cut

  void fetchValue(const Entry* entry) const { __builtin_prefetch(entry->value); }
  void fetchKey(const Entry* entry) const { fetchName(*entry->value); }

  uint32_t hash(const Entry* entry) const {
    KeyWriter key(buffer, bufferSize);
    key.appendKeyOf(*entry->value);
    return hashlittle(buffer, key.length(buffer));
  }

  // Part by part, without the key that they make.
  bool equals(const Entry* entry, const char* key) const {
    if (mayBeCut) {
      getNameTypeKey(entry->value, buffer, bufferSize);
      return std::strcmp(buffer, key) == 0;
    }
    const char* type = charsOrEmpty(entry->value->type);
    while (*type != '\0' && *type == *key) ++type, ++key;
    return *type == '\0' && *key == '\t' &&
           std::strcmp(charsOrEmpty(entry->value->name), key + 1) == 0;
  }
};

// Lets memory fetch what the release of the next object will read first; two steps of the way were
// taken by the calls for the objects before it.
void fetchForRelease(const ObjectAST& object) {
  if (object.firstProperty != nullptr) __builtin_prefetch(object.firstProperty->value);
  if (object.next == nullptr) return;
  __builtin_prefetch(object.next->firstProperty);
  __builtin_prefetch(object.next->next);
}

// A string without a buffer and one whose buffer holds nothing are both absent.
bool areSame(const CharString& a, const CharString& b) {
  return a == b || (a.chars() == nullptr && b.chars() == nullptr);
}

bool isSameName(const ObjectAST& a, const ObjectAST& b) {
  return areSame(a.type, b.type) && areSame(a.name, b.name);
}

}  // namespace

void getNameTypeKey(ObjectAST* const& object, char* buffer, int bufferSize) {
  KeyWriter(buffer, bufferSize).appendKeyOf(*object);
}

// The search for an object's type and name. Its key lies in the map's buffer for new keys, whole.
struct ProgramAST::TypedSearch {
  NameTypeKeys keys;
  const char* key;
  uint32_t hash;
  int bucket;
  const ObjectMap::__internal_s* present;  // the entry of that key, or null

  void repeat(const ObjectMap& map) {
    bucket = map._bucketOf(hash);
    present = map._findAs(bucket, key, keys);
  }
};

// Writes a whole key into the typed map's buffer for new keys, and gives its length.
size_t ProgramAST::_writeTypedKey(std::string_view type, std::string_view name) {
  const size_t size = type.size() + 1 + name.size() + 1;
  if (size > static_cast<size_t>(INT_MAX)) throw std::bad_alloc();
  typedObjects._reserveKeyBuffers(size);
  KeyWriter(typedObjects.newKeyBuffer, typedObjects.keyBufferSize).appendKey(type, name);
  return size - 1;
}

ProgramAST::Hashes ProgramAST::_hashesOf(const ObjectAST& object) {
  const std::string_view name = viewOf(object.name);
  const size_t length = _writeTypedKey(viewOf(object.type), name);
  const uint32_t nameHash =
      object.name.chars() != nullptr ? hashlittle(name.data(), name.size()) : 0;
  return {hashlittle(typedObjects.newKeyBuffer, length), nameHash};
}

void ProgramAST::_fetchBuckets(Hashes hashes) const {
  __builtin_prefetch(typedObjects._bucketSlot(hashes.typed));
  __builtin_prefetch(namedObjects._bucketSlot(hashes.name));
}

void ProgramAST::_fetchEntries(Hashes hashes) const {
  __builtin_prefetch(*typedObjects._bucketSlot(hashes.typed));
  __builtin_prefetch(*namedObjects._bucketSlot(hashes.name));
}

void ProgramAST::_fetchObjects(Hashes hashes) const {
  if (const auto* entry = *typedObjects._bucketSlot(hashes.typed)) {
    __builtin_prefetch(&entry->value->name);
  }
  if (const auto* entry = *namedObjects._bucketSlot(hashes.name)) __builtin_prefetch(entry->key);
}

void ProgramAST::_fetchNames(Hashes hashes) const {
  if (const auto* entry = *typedObjects._bucketSlot(hashes.typed)) fetchName(*entry->value);
}

auto ProgramAST::_searchTyped(const ObjectAST& object, uint32_t hash) -> TypedSearch {
  const size_t length = _writeTypedKey(viewOf(object.type), viewOf(object.name));
  const bool mayBeCut = length + 1 == static_cast<size_t>(typedObjects.keyBufferSize);
  TypedSearch search{{typedObjects.entryKeyBuffer, typedObjects.keyBufferSize, mayBeCut},
                     typedObjects.newKeyBuffer,
                     hash,
                     0,
                     nullptr};
  search.repeat(typedObjects);
  return search;
}

void ProgramAST::addObject(ObjectAST* object, double t1, double t2,
                           Table<ObjectAST*, 100>* mergedObjects) {
  _addHashed(object, _hashesOf(*object), t1, t2, mergedObjects);
}

void ProgramAST::_addHashed(ObjectAST* object, Hashes hashes, double t1, double t2,
                            Table<ObjectAST*, 100>* mergedObjects) {
  _refuseDuringFilter("addObject");
  assert(!_isListed(object) && "an object is added twice");
  TypedSearch search = _searchTyped(*object, hashes.typed);
  // The key alone does not decide: a tab inside a name, or an absent and an empty type, can give
  // two different objects one key.
  if (search.present != nullptr && isSameName(*search.present->value, *object)) {
    ObjectAST* existing = search.present->value;
    // Room for the report first, the only step that can fail: afterwards the newcomer is gone.
    if (mergedObjects != nullptr) mergedObjects->makeRoom();
    existing->merge(object, t1, t2);
    object->deleteThis();
    if (mergedObjects != nullptr) *mergedObjects += existing;
    return;
  }
  // On the list before anything can fail: from here on the program owns the object.
  object->next = firstObject;
  firstObject = object;
  // An object whose name has changed may have been in another bucket than its own until now.
  if (typedObjects._adaptBucketCount(search.keys)) search.repeat(typedObjects);
  if (search.present == nullptr) typedObjects._link(search.bucket, nullptr, object);
  namedObjects._insertAs(ObjectMap::StoredKeys(), object->name.chars(), hashes.name, object);
  ++numObjects;
}

void ProgramAST::mergeProgram(ProgramAST* other, double t1, double t2,
                              Table<ObjectAST*, 100>* mergedObjects) {
  if (other == this) return;
  _refuseDuringFilter("mergeProgram");
  other->_refuseDuringFilter("mergeProgram");
  // The other program's maps speak of objects that leave it, so they are emptied first; each object
  // is taken off its list before it is handed over, so that it never has two owners.
  other->typedObjects.clear();
  other->namedObjects.clear();
  while (ObjectAST* object = other->firstObject) {
    other->firstObject = object->next;
    try {
      addObject(object, t1, t2, mergedObjects);
    } catch (...) {
      if (firstObject != object) {
        object->next = other->firstObject;
        other->firstObject = object;
      }
      throw;
    }
  }
  other->numObjects = 0;
  other->sharedNames.clear();
}

void ProgramAST::updateName(const CharString& oldName, CharString& newName) {
  _refuseDuringFilter("updateName");
  if (namedObjects.find(oldName.chars()) == nullptr) return;
  sharedNames.push_back(newName);
  _moveName(oldName, newName);
}

void ProgramAST::_moveName(const CharString& oldName, const CharString& newName) {
  const auto* entry = namedObjects.find(oldName.chars());
  if (entry == nullptr) return;
  ObjectAST* object = entry->value;
  namedObjects.erase(oldName.chars());
  namedObjects._insert(newName.chars(), object, nullptr);
}

ObjectAST* ProgramAST::getObject(const char* name) const {
  if (name == nullptr) return nullptr;
  const auto* entry = namedObjects.find(name);
  return entry != nullptr ? entry->value : nullptr;
}

void ProgramAST::deleteThis() {
  if (isFiltered) {
    isReleasedAfterFilter = true;
    return;
  }
  for (ObjectAST* object = firstObject; object != nullptr;) {
    ObjectAST* following = object->next;
    if (following != nullptr) fetchForRelease(*following);
    object->deleteThis();
    object = following;
  }
  firstObject = nullptr;
  delete this;
}

ProgramAST::FilterRun::FilterRun(ProgramAST* filtered) : program(filtered) {
  program->_refuseDuringFilter("doFilter");
  program->isFiltered = true;
}

ProgramAST::FilterRun::~FilterRun() {
  program->isFiltered = false;
  if (program->isReleasedAfterFilter) program->deleteThis();
}

void ProgramAST::_refuseDuringFilter(const char* operation) const {
  if (isFiltered) {
    throw ExceptionMsg("[ProgramAST] %s: a filter is running over the program", operation);
  }
}

// Whether the object is among those added last; a long list is not walked for every object.
bool ProgramAST::_isListed(const ObjectAST* object) const {
  constexpr int kWalked = 64;
  const ObjectAST* listed = firstObject;
  for (int i = 0; i < kWalked && listed != nullptr && listed != object; ++i) listed = listed->next;
  return listed == object;
}

std::vector<ObjectAST*> objectsInTextOrder(const ProgramAST& program) {
  std::vector<ObjectAST*> objects;
  objects.reserve(static_cast<size_t>(program.numObjects));
  for (ObjectAST* object = program.firstObject; object != nullptr; object = object->next) {
    objects.push_back(object);
  }
  std::reverse(objects.begin(), objects.end());
  return objects;
}

}  // namespace Kelp
