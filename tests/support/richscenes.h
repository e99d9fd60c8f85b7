// Scenes that between them use every form of the language, small enough to break at every token.
#pragma once

#include <string>
#include <vector>

namespace KelpTest {

/// Valid scenes.
const std::vector<std::string>& richScenes();

/// Scenes with an error near their end.
const std::vector<std::string>& brokenScenes();

}  // namespace KelpTest
