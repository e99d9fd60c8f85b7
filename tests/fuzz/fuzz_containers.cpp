// Strings, tables and maps: operations on them and on their models.
#include "tests/fuzz/targets.h"
#include "tests/models/checkedmaps.h"
#include "tests/models/checkedstrings.h"
#include "tests/models/checkedtable.h"

namespace KelpTest {

namespace {

template <class Checked>
void takeAllSteps(ByteChoices& input, Checked&& checked) {
  while (!input.atEnd()) checked.step();
}

}  // namespace

int fuzzContainers(const uint8_t* data, size_t size) {
  ByteChoices input(data, size);
  Shortage shortage(input);
  constexpr uint32_t kKeys = 100;
  switch (input.below(4)) {
    case 0:
      takeAllSteps(input, CheckedStrings(input, shortage));
      break;
    case 1:
      takeAllSteps(input, CheckedTable(input, shortage));
      break;
    case 2:
      takeAllSteps(input, CheckedBorrowingMap(input, shortage, kKeys));
      break;
    default:
      takeAllSteps(input, CheckedOwningMap(input, shortage, kKeys));
  }
  return 0;
}

}  // namespace KelpTest
