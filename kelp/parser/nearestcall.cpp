#include "kelp/parser/nearestcall.h"

#include <algorithm>
#include <array>

#include "kelp/ast/builtinfunctions.h"
#include "kelp/parser/callforms.h"

namespace Kelp {

namespace {

constexpr size_t kLongestName = 16;

char lowerCase(char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; }

// Insertions, deletions, replacements and swaps of neighbours that lead from one to the other, no
// part being edited twice: the optimal string alignment distance. Requires: the name is short.
size_t distance(std::string_view word, std::string_view name) {
  std::array<std::array<size_t, kLongestName + 1>, 3> rows{};
  const auto rowOf = [&rows](size_t i) -> auto& { return rows[i % rows.size()]; };
  for (size_t j = 0; j <= name.size(); ++j) rowOf(0)[j] = j;
  for (size_t i = 1; i <= word.size(); ++i) {
    auto& row = rowOf(i);
    const auto& above = rowOf(i - 1);
    row[0] = i;
    for (size_t j = 1; j <= name.size(); ++j) {
      const bool same = lowerCase(word[i - 1]) == lowerCase(name[j - 1]);
      row[j] = std::min({above[j] + 1, row[j - 1] + 1, above[j - 1] + (same ? 0 : 1)});
      const bool swapped = i > 1 && j > 1 && lowerCase(word[i - 1]) == lowerCase(name[j - 2]) &&
                           lowerCase(word[i - 2]) == lowerCase(name[j - 1]);
      if (swapped) row[j] = std::min(row[j], rowOf(i - 2)[j - 2] + 1);
    }
  }
  return rowOf(word.size())[name.size()];
}

}  // namespace

std::string_view nearestCall(std::string_view word) {
  std::string_view nearest;
  size_t least = word.size() > 5 ? 3 : 2;
  if (word.size() > kLongestName + least) return nearest;
  const auto consider = [&](std::string_view name) {
    const size_t edits = distance(word, name);
    if (edits >= least) return;
    least = edits;
    nearest = name;
  };
  for (const std::string_view name : kCallFormNames) consider(name);
  for (const BuiltinFunction& function : BuiltinFunctionAST::functions()) consider(function.name);
  return nearest;
}

}  // namespace Kelp
