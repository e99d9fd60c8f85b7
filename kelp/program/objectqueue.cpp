#include "kelp/program/objectqueue.h"

#include "kelp/ast/auto_ast.h"

namespace Kelp {

ObjectQueue::~ObjectQueue() {
  // From the newest to the oldest, as the program releases those before them.
  while (oldest != next) _at(--next).object->deleteThis();
}

void ObjectQueue::add(ObjectAST* object, double t1, double t2) {
  auto_ast<ObjectAST> guard(object);
  if (next - oldest == kLength) _addOldest();
  _at(next) = {object, t1, t2, program._hashesOf(*object)};
  guard.release();
  ++next;
  program._fetchBuckets(_at(next - 1).hashes);
  if (next - oldest > 1) program._fetchEntries(_at(next - 2).hashes);
  if (next - oldest > 2) program._fetchObjects(_at(next - 3).hashes);
  if (next - oldest > 3) program._fetchNames(_at(next - 4).hashes);
}

void ObjectQueue::flush() {
  while (oldest != next) _addOldest();
}

void ObjectQueue::_addOldest() {
  const Waiting& first = _at(oldest++);
  auto_ast<ObjectAST> guard(first.object);
  try {
    program._addHashed(first.object, first.hashes, first.t1, first.t2, nullptr);
  } catch (...) {
    if (program.firstObject == first.object) guard.release();
    throw;
  }
  guard.release();
}

}  // namespace Kelp
