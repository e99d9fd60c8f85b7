// Contents for benchmarks: the same for the same size on every machine, and the same in each
// syntax.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

#include "bench/contentwriter.h"

namespace KelpBench {

enum class Content {
  kMesh,         ///< few objects with long lists of vertices, normals and faces
  kObjects,      ///< small objects with seven to ten mixed properties each
  kExpressions,  ///< arithmetic, calls, interpolation and nested lists
  kHex,          ///< meshes whose lists are hexadecimal texts
};

struct GeneratedText {
  std::string text;
  int64_t objects = 0;
  int64_t sceneBytes = 0;  ///< of the same content as scene text
  int64_t values = 0;      ///< see ContentWriter
  int64_t listBytes = 0;   ///< see ContentWriter
};

/// As many objects of the content as make a scene text of at least `sceneBytes` (longer by less
/// than one object), in the wanted syntax.
GeneratedText generate(Content content, Syntax syntax, size_t sceneBytes);

}  // namespace KelpBench
