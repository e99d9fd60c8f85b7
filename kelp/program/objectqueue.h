// ObjectQueue: objects on their way into a program.
#pragma once

#include "kelp/program/programast.h"

namespace Kelp {

/// Adds objects to a program as addObject would, one after the other, but a little later: while the
/// next ones are made, memory fetches step by step what the search for each will read. Those lie
/// all over the memory, and waiting for them would take longer than adding. An object that merges
/// goes back to its pool that much later, too.
class ObjectQueue {
 public:
  /// The program outlives the queue. Objects that it still holds then are released.
  explicit ObjectQueue(ProgramAST& target) : program(target) {}
  ObjectQueue(const ObjectQueue&) = delete;
  ObjectQueue& operator=(const ObjectQueue&) = delete;
  ~ObjectQueue();

  /// Takes over an object, and adds the oldest when many wait. Throws what addObject throws; then
  /// the object that could not be added is released, unless it is in the program already.
  void add(ObjectAST* object, double t1, double t2);

  /// Adds all that wait.
  void flush();

 private:
  struct Waiting {
    ObjectAST* object;
    double t1;
    double t2;
    ProgramAST::Hashes hashes;
  };
  static constexpr unsigned kLength = 5;  // four steps to fetch, and time for the last

  Waiting& _at(unsigned place) { return waiting[place % kLength]; }
  void _addOldest();

  ProgramAST& program;
  Waiting waiting[kLength];
  unsigned oldest = 0;
  unsigned next = 0;
};

}  // namespace Kelp
