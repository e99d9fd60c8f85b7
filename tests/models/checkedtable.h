// A table side by side with a model of it.
#pragma once

#include <vector>

#include "kelp/utils/table.h"
#include "tests/models/choices.h"
#include "tests/models/shortage.h"

namespace KelpTest {

class CheckedTable {
 public:
  CheckedTable(Choices& source, Shortage& memory) : choices(source), shortage(memory) {}

  /// One operation, then everything is compared. Throws Mismatch.
  void step();

 private:
  void appendOne();
  void appendMany();
  void shrink();
  void replaceArray();
  void grow(int64_t needed);
  void compare(bool items) const;

  Choices& choices;
  Shortage& shortage;
  Kelp::Table<int, 100> table;
  std::vector<int> model;
  int64_t step_ = 100;
  int64_t capacity = 0;
  int next = 0;  // items are numbered
};

}  // namespace KelpTest
