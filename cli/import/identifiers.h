// Identifiers: names for objects of a scene, made from names that may be anything.
#pragma once

#include <string>
#include <string_view>
#include <unordered_map>

namespace KelpCli {

/// References find objects by their names, whatever the types: no name is given twice.
class Identifiers {
 public:
  /// An identifier as like `wanted` as can be. What is taken already gets `kind` behind it, then a
  /// number; of an empty name the kind takes the place. Equal calls in equal order give equal
  /// names.
  std::string add(std::string_view wanted, std::string_view kind);

 private:
  bool _take(const std::string& name) { return taken.try_emplace(name, 1).second; }

  std::unordered_map<std::string, int> taken;  // with the last number that was tried behind it
};

}  // namespace KelpCli
