#include "tests/models/checkedtable.h"

#include <algorithm>
#include <numeric>

#include "tests/models/mismatch.h"

namespace KelpTest {

namespace {

constexpr int kSteps[] = {100, 1, 0, -1, 7, 1000, 100, 100};
constexpr size_t kLargest = 5000;

}  // namespace

void CheckedTable::step() {
  const uint32_t kind = choices.below(64);
  if (kind == 0) {
    table.release();
    model.clear();
    capacity = 0;
  } else if (kind == 1) {
    table.step = kSteps[choices.below(std::size(kSteps))];
    step_ = table.step;
  } else if (kind < 4 || model.size() > kLargest) {
    shrink();
  } else if (kind == 4) {
    replaceArray();
  } else if (kind < 8) {
    appendMany();
  } else {
    appendOne();
  }
  compare(kind < 16);
}

void CheckedTable::appendOne() {
  const bool own = !model.empty() && choices.oneIn(4);
  const size_t from = own ? choices.below(static_cast<uint32_t>(model.size())) : 0;
  const int item = own ? model[from] : next++;
  if (!shortage.run([&] { table += own ? table.data[from] : item; })) return;
  grow(static_cast<int64_t>(model.size()) + 1);
  model.push_back(item);
}

void CheckedTable::appendMany() {
  std::vector<int> items(choices.below(300));
  std::iota(items.begin(), items.end(), next);
  next += static_cast<int>(items.size());
  if (!shortage.run([&] { table.append(items.data(), static_cast<int64_t>(items.size())); })) {
    return;
  }
  grow(static_cast<int64_t>(model.size() + items.size()));
  model.insert(model.end(), items.begin(), items.end());
}

// Owners set the count themselves and keep the array.
void CheckedTable::shrink() {
  const size_t count = choices.below(static_cast<uint32_t>(model.size()) + 1);
  table.count = static_cast<int>(count);
  model.resize(count);
}

// So they do with the array: one of exactly the capacity that they report.
void CheckedTable::replaceArray() {
  capacity = static_cast<int64_t>(model.size()) + 1 + choices.below(50);
  int* fresh = new int[static_cast<size_t>(capacity)];
  std::copy(model.begin(), model.end(), fresh);
  int* old = table.data;
  table.data = fresh;
  table.capacity = static_cast<int>(capacity);
  delete[] old;
}

void CheckedTable::grow(int64_t needed) {
  if (needed <= capacity) return;
  if (step_ >= 1) {
    capacity = needed + step_ - needed % step_;
  } else if (capacity < 1) {
    capacity = needed;
  } else {
    while (capacity < needed) capacity *= 2;
  }
}

void CheckedTable::compare(bool items) const {
  expectSame("the count", model.size(), static_cast<size_t>(table.count));
  expectSame("the step", step_, int64_t{table.step});
  expectSame("the capacity", capacity, int64_t{table.capacity});
  expectSame("no array", capacity == 0, table.data == nullptr);
  if (!model.empty()) expectSame("the last item", model.back(), table.data[table.count - 1]);
  if (items) {
    expectThat("the items", std::equal(model.begin(), model.end(), table.data));
  }
}

}  // namespace KelpTest
