// Inventory: what a scene holds, by kinds.
#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <string_view>
#include <unordered_map>
#include <unordered_set>
#include <vector>

#include "kelp/program/programast.h"

namespace Kelp {

/// Counts objects that it is shown one after the other, whether a program holds them or not.
class Inventory {
 public:
  /// An object and how large it is: expression nodes, list elements and bytes of hexadecimal text.
  struct Sized {
    std::string type;
    std::string name;
    int64_t size;
  };
  static constexpr size_t kLargest = 10;

  /// With `resolves` the names of objects and references are remembered, so that references can be
  /// told apart by whether there is an object of their name.
  explicit Inventory(bool resolves = true) : resolvesReferences(resolves) {}

  /// Throws std::bad_alloc.
  void add(const ObjectAST& object);

  int64_t objects = 0;
  int64_t properties = 0;
  int64_t repeatedProperties = 0;  ///< assigned before in the same object; the last one counts
  int64_t listElements = 0;        ///< of typed lists; hexadecimal forms are not decoded
  int64_t hexBytes = 0;            ///< characters of hexadecimal forms
  int64_t references = 0;          ///< to objects, to their properties and to runtime values
  std::map<std::string, int64_t> types;             ///< objects by type
  std::map<std::string_view, int64_t> expressions;  ///< nodes by kind

  /// The largest objects, the largest first; of equal ones those that came first.
  const std::vector<Sized>& largest() const { return largestObjects; }

  /// References to names that no object has had so far. Requires: made to resolve.
  int64_t danglingReferences() const;

 private:
  class Walk;

  void _noteSize(const ObjectAST& object, int64_t size);
  void _countProperties(const ObjectAST& object, Walk& walk);

  const bool resolvesReferences;
  std::vector<Sized> largestObjects;
  std::unordered_set<std::string> names;
  std::unordered_map<std::string, int64_t> referencesByName;
};

}  // namespace Kelp
