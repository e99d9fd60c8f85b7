// Reading one scene that the command line names.
#pragma once

#include <optional>
#include <string>

#include "kelp/scene.h"
#include "kelp/stream.h"

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

/// How reading a scene object by object went.
struct StreamedInput {
  Kelp::SceneError error;
  int64_t bytes = 0;     ///< read, of the file and all that it includes
  double seconds = 0.0;  ///< for reading the file and its text

  bool good() const { return error.kind == Kelp::SceneError::Kind::kNone; }
};

/// Gives the objects of a file, or of standard input when it is "-", to the callback one by one,
/// with only a part of the text in memory. Throws what the callback throws.
StreamedInput streamScene(const std::string& file, const Kelp::SceneOptions& options,
                          const Kelp::ObjectCallback& callback);

/// Whether a file is so large that the tree of its scene may not fit into memory.
bool isLarge(const std::string& file);

/// Standard input. What reads it throws InvalidSourceFile.
Kelp::TextInput standardInput();

/// How a file is called in messages.
std::string shownName(const std::string& file);

}  // namespace KelpCli
