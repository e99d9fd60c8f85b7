// Reading one scene that the command line names.
#pragma once

#include <optional>
#include <string>

#include "kelp/scene.h"

namespace KelpCli {

/// A scene, or why there is none.
struct Input {
  /// Empty when not even an attempt could be made: no bytes, or no memory.
  std::optional<Kelp::Scene> scene;
  Kelp::SceneError error;
  double seconds = 0.0;  ///< for reading the file and its text

  bool good() const { return error.kind == Kelp::SceneError::Kind::kNone; }
};

/// Reads a file, or standard input when it is "-". `text` (may be null) receives its bytes. Throws
/// nothing but what a second failure of memory brings.
Input readScene(const std::string& file, const Kelp::SceneOptions& options,
                std::string* text = nullptr);

/// How a file is called in messages.
std::string shownName(const std::string& file);

}  // namespace KelpCli
