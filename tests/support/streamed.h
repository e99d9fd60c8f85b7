// A scene read object by object, and the same read as a whole, for comparing.
#pragma once

#include <string>
#include <vector>

#include "kelp/stream.h"

namespace KelpTest {

/// What a scene gives, as text.
struct ObjectsAndError {
  std::vector<std::string> objects;  ///< trees, and files and lines of properties
  std::string error;                 ///< all fields and the excerpt; "" when there is none

  bool operator==(const ObjectsAndError& other) const = default;
};

/// Shows where two differ.
void PrintTo(const ObjectsAndError& outcome, std::ostream* out);

/// An object and what its properties say about the text.
std::string shownObject(const Kelp::ObjectAST& object);

/// All fields of an error but the line itself, of which the excerpt is shown.
std::string shownError(const Kelp::SceneError& error);

/// A file that is read as a whole and token by token.
ObjectsAndError wholeFile(const std::string& path, const Kelp::SceneOptions& options = {});

/// A text that is read as a whole and token by token.
ObjectsAndError wholeText(std::string_view text, const std::string& name,
                          const Kelp::SceneOptions& options = {});

/// A source that is read object by object; the objects are dropped.
ObjectsAndError streamed(const Kelp::SceneSource& source, const Kelp::StreamOptions& options);

/// The same options with a window of that size.
Kelp::StreamOptions withWindow(size_t bytes, const Kelp::SceneOptions& options = {});

}  // namespace KelpTest
