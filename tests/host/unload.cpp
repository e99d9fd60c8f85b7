// Loads and unloads a shared object that the library is linked into, again and again.
//
//   host_unload PLUGIN release    what it holds is released before it is unloaded
//   host_unload PLUGIN keep       nodes live when it is unloaded; nobody touches them any more

#include <dlfcn.h>
#include <malloc.h>

#include <cstdio>
#include <cstdlib>
#include <string>
#include <string_view>

#include "tests/host/plugin.h"

namespace {

constexpr int kTimes = 20;

[[noreturn]] void fail(const std::string& what) {
  std::printf("FAILED: %s\n", what.c_str());
  std::exit(1);
}

template <class Function>
Function find(void* object, const char* name) {
  void* found = dlsym(object, name);
  if (found == nullptr) fail(dlerror());
  return reinterpret_cast<Function>(found);
}

void useOnce(const char* path, bool release) {
  void* object = dlopen(path, RTLD_NOW | RTLD_LOCAL);
  if (object == nullptr) fail(dlerror());
  const auto read = find<PluginRead>(object, "pluginRead");
  if (read("A a { x = 1 + List(2, \"text\", b.c); } B b { c = Vector(1, 2, 3); }") != 2) {
    fail("two objects");
  }
  if (read("A a { x = ; }") != -1) fail("an error");
  if (release && find<PluginRelease>(object, "pluginRelease")() != 0) fail("no nodes");
  if (dlclose(object) != 0) fail(dlerror());
}

// Some systems keep a loaded object for good when it shares inline variables with others.
bool isLoaded(const char* path) {
  void* object = dlopen(path, RTLD_NOW | RTLD_NOLOAD);
  if (object != nullptr) dlclose(object);
  return object != nullptr;
}

}  // namespace

int main(int argc, char** argv) {
  if (argc < 3) fail("host_unload PLUGIN release|keep");
  const bool release = std::string_view(argv[2]) == "release";
  useOnce(argv[1], release);
  const bool stays = isLoaded(argv[1]);
  const size_t before = mallinfo2().uordblks;
  for (int i = 0; i < kTimes; ++i) useOnce(argv[1], release);
  const size_t after = mallinfo2().uordblks;
  if (release && after > before + kTimes * 1000) fail("memory is lost");
  std::printf("FIGURE|host|loaded and unloaded %d times, %s: ok%s\n", kTimes + 1,
              release ? "released before" : "with living nodes",
              stays ? " (the system keeps it loaded)" : "");
}
