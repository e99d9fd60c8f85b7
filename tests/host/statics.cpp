// Scenes in static objects: read before main, in it and after it, released after it. Prints a line
// from the very last of them, which the test waits for.

#include "tests/host/statics.h"

#include <cstdio>
#include <cstdlib>
#include <string>
#include <thread>

namespace {

using Kelp::Scene;

const std::string& text() {
  static auto& scene = *new std::string("A a { x = -Vector(1, 2, b.c[3]); y = \"text\"; } B b {}");
  return scene;
}

void check(bool good, const char* what) {
  if (good) return;
  std::printf("FAILED: %s\n", what);
  std::_Exit(1);
}

// Reads in the destructor, and asks scenes without a tree what they have: nothing that the library
// keeps for itself may be gone by then.
class LastReader {
 public:
  ~LastReader() {
    const Scene good = Scene::fromText(text());
    check(good.objects().size() == 2, "reading after main");
    const Scene bad = Scene::fromText("A a { x = ; }");
    check(!bad && !bad.error().message.empty(), "an error after main");
    check(Scene().objects().empty() && Scene().error().message.empty(), "no scene after main");
    check(held.objects().size() == 2, "a scene from main after main");
    held = Scene();
    std::printf("FIGURE|host|scenes in static objects, read before, in and after main: ok\n");
  }
  Scene held;
};

LastReader lastReader;  // constructed before the first parse of this unit
Scene assignedInMain;   // likewise
Scene readHere = Scene::fromText(text());

void readAtExit() { check(bool(Scene::fromText(text())), "reading at exit"); }

}  // namespace

int main() {
  check(readBeforeMain.objects().size() == 1, "reading before main");
  check(readHere.objects().size() == 2, "reading before main in this unit");
  assignedInMain = Scene::fromText(text());
  lastReader.held = Scene::fromText(text());
  static Scene madeInMain = Scene::fromText(text());
  check(bool(madeInMain), "reading in main");
  std::atexit(readAtExit);
  std::thread([] {
    thread_local Scene ofThread = Scene::fromText(text());
    check(bool(ofThread), "reading on a thread");
  }).join();
  // From here on everything is released by destructors.
}
