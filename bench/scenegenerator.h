// Scenes for benchmarks: the same text for the same size, on every machine.
#pragma once

#include <cstddef>
#include <string>

namespace KelpBench {

/// A scene of mesh objects with long lists of vertices, normals and faces, as exporters write
/// them; at least `bytes` long, and longer by less than one mesh.
std::string meshScene(size_t bytes);

/// A scene of small objects with six to ten mixed properties each; at least `bytes` long.
std::string objectScene(size_t bytes);

/// A scene of arithmetic, calls, interpolation and nested lists; at least `bytes` long.
std::string expressionScene(size_t bytes);

/// A scene of meshes whose lists are hexadecimal texts; at least `bytes` long.
std::string hexScene(size_t bytes);

}  // namespace KelpBench
