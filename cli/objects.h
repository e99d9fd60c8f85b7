// The objects of a scene one by one, whether the whole tree fits into memory or not.
#pragma once

#include <functional>
#include <string>

#include "cli/options.h"
#include "kelp/scene.h"

namespace KelpCli {

/// Whether the file is read object by object, without the whole tree in memory. Equal objects are
/// then several, which the whole tree has merged into one.
bool isStreamed(const std::string& file, const Options& options);

/// Calls `use` with all objects of a file, in the order of the text; gives why the scene cannot be
/// read. A scene that is read as a whole and is no good has no objects. Throws what `use` throws.
Kelp::SceneError forEachObject(const std::string& file, const Options& options,
                               const std::function<void(const Kelp::ObjectAST&)>& use);

/// Whether the text matches a pattern of the shell (* ? [...]). An empty pattern matches all texts.
bool matches(const std::string& pattern, const Kelp::CharString& text);

}  // namespace KelpCli
