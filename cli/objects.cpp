#include "cli/objects.h"

#include <fnmatch.h>

#include "cli/input.h"

namespace KelpCli {

bool isStreamed(const std::string& file, const Options& options) {
  return options.streaming == Streaming::kAlways ||
         (options.streaming == Streaming::kAuto && isLarge(file));
}

Kelp::SceneError forEachObject(const std::string& file, const Options& options,
                               const std::function<void(const Kelp::ObjectAST&)>& use) {
  if (isStreamed(file, options)) {
    const auto drop = [&use](const Kelp::ObjectAST& object) {
      use(object);
      return Kelp::ObjectFate::kDrop;
    };
    return streamScene(file, options.scene, drop).error;
  }
  const Input input = readScene(file, options.scene);
  if (!input.good()) return input.error;
  for (const Kelp::ObjectAST& object : input.scene->objects()) use(object);
  return {};
}

bool matches(const std::string& pattern, const Kelp::CharString& text) {
  return pattern.empty() || ::fnmatch(pattern.c_str(), text.chars(), 0) == 0;
}

}  // namespace KelpCli
