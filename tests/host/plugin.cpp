// A shared object that the library is linked into.

#include "tests/host/plugin.h"

#include <vector>

#include "kelp/scene.h"

namespace {

// Never destroyed by itself: what nobody releases still lives when the object is unloaded.
std::vector<Kelp::Scene>* scenes = nullptr;

}  // namespace

extern "C" {

[[gnu::visibility("default")]] int pluginRead(const char* text) {
  if (scenes == nullptr) scenes = new std::vector<Kelp::Scene>;
  const Kelp::Scene& scene = scenes->emplace_back(Kelp::Scene::fromText(text));
  return scene ? static_cast<int>(scene.objects().size()) : -1;
}

[[gnu::visibility("default")]] int pluginRelease() {
  delete scenes;
  scenes = nullptr;
  return Kelp::ObjectAST::pool.liveCount() + Kelp::NumberExpressionAST::pool.liveCount();
}
}
