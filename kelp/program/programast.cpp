#include "kelp/program/programast.h"

#include <cassert>
#include <climits>
#include <cstring>
#include <memory>

namespace Kelp {

namespace {

// Appends to a key that may be cut: once it is full, nothing more fits.
class KeyWriter {
 public:
  KeyWriter(char* buffer, int bufferSize) : at(buffer), room(bufferSize - 1) { *at = '\0'; }

  void append(const char* text, size_t length) {
    if (room <= 0) return;
    const size_t fitting = std::min(length, static_cast<size_t>(room));
    std::memcpy(at, text, fitting);
    at += fitting;
    room -= static_cast<int>(fitting);
    *at = '\0';
  }

  void append(const CharString& text) {
    if (!text.isEmpty()) append(text.chars(), std::strlen(text.chars()));
  }

 private:
  char* at;
  int room;
};

size_t lengthOf(const CharString& text) { return static_cast<size_t>(text.length()); }

}  // namespace

void getNameTypeKey(ObjectAST* const& object, char* buffer, int bufferSize) {
  KeyWriter key(buffer, bufferSize);
  key.append(object->type);
  key.append("\t", 1);
  key.append(object->name);
}

// The object of the same type and name, or null. The key alone does not decide: a tab inside a
// name, or an absent and an empty type, can give two different objects one key.
ObjectAST* ProgramAST::_findTyped(ObjectAST* object) {
  const size_t size = lengthOf(object->type) + 1 + lengthOf(object->name) + 1;
  if (size > static_cast<size_t>(INT_MAX)) throw std::bad_alloc();
  char shortKey[256];
  std::unique_ptr<char[]> longKey(size > sizeof shortKey ? new char[size] : nullptr);
  char* key = longKey != nullptr ? longKey.get() : shortKey;
  getNameTypeKey(object, key, static_cast<int>(size));
  typedObjects._reserveKeyBuffers(size);
  const int bucket = typedObjects._bucketOf(key);
  const auto* entry = typedObjects._findInBucket(bucket, key, getNameTypeKey);
  if (entry == nullptr) return nullptr;
  ObjectAST* candidate = entry->value;
  const bool same = candidate->type == object->type && candidate->name == object->name;
  return same ? candidate : nullptr;
}

void ProgramAST::addObject(ObjectAST* object, double t1, double t2,
                           Table<ObjectAST*, 100>* mergedObjects) {
  _refuseDuringFilter("addObject");
  assert(!_isListed(object) && "an object is added twice");
  if (ObjectAST* existing = _findTyped(object)) {
    // Reported first, being the only step that can fail: afterwards the newcomer is gone.
    if (mergedObjects != nullptr) *mergedObjects += existing;
    existing->merge(object, t1, t2);
    object->deleteThis();
    return;
  }
  // On the list before anything can fail: from here on the program owns the object.
  object->next = firstObject;
  firstObject = object;
  typedObjects._insert(nullptr, object, getNameTypeKey);
  namedObjects._insert(object->name.chars(), object, nullptr);
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
