// The scenes that memory runs out in.
#pragma once

#include <string>
#include <vector>

namespace KelpTest {

struct NamedScene {
  std::string name;  ///< of the file, so that its includes are found
  std::string text;
};

/// Scenes that parse: small ones of every form, those of the scene files and the examples, and
/// made ones that cross the sizes at which tables, maps, pools and tokens grow.
const std::vector<NamedScene>& goodScenes();

/// Scenes with an error, in the middle of which something is half built.
const std::vector<NamedScene>& failingScenes();

/// Both.
std::vector<NamedScene> allScenes();

}  // namespace KelpTest
