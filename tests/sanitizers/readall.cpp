// Reads scene files in all ways, uses everything that came out, and releases it: for sanitizers
// that GoogleTest and the standard streams, which are not built with them, would confuse.
//
//   readall < NAMES    one name of a file a line
#include <cstdio>
#include <cstring>
#include <memory>
#include <string>

#include "kelp/queries/statistics.h"
#include "kelp/scene.h"
#include "tests/support/sexpression.h"

using namespace Kelp;

namespace {

struct Totals {
  long long parses = 0;
  long long trees = 0;
  long long nodes = 0;
  uint64_t used = 0;  // depends on every character that was made

  void use(const char* text) {
    for (; text != nullptr && *text != '\0'; ++text) {
      used = used * 31 + static_cast<unsigned char>(*text);
      // The branch is what a checker of uninitialised memory looks at.
      if (used == 0) std::puts("all characters cancelled out");
    }
  }
};

// Renames every second object and rejects every third.
class HalfRenaming final : public ScenePluginFilter {
 public:
  int acceptObject(const CharString&, CharString& name, void*) override {
    if (++objects % 2 == 0) name.append("_renamed");
    return objects % 3 == 0 ? 0 : 1;
  }

 private:
  int objects = 0;
};

std::string contentsOf(const char* path) {
  const std::unique_ptr<FILE, int (*)(FILE*)> file(std::fopen(path, "rb"), std::fclose);
  std::string text;
  char buffer[4096];
  while (file != nullptr) {
    const size_t bytes = std::fread(buffer, 1, sizeof buffer, file.get());
    if (bytes == 0) break;
    text.append(buffer, bytes);
  }
  return text;
}

void useProgram(const Scene& scene, Totals& totals) {
  const Statistics statistics = countProgram(*scene.program());
  totals.nodes += statistics.expressionNodes;
  totals.used += static_cast<uint64_t>(statistics.listElements);
  totals.use(KelpTest::sexpression(*scene.program()).c_str());
  for (const ObjectAST& object : scene.objects()) {
    if (object.filteredOut != 0 || object.extra != nullptr) ++totals.used;
    const PropertyAST* property = object.firstProperty;
    for (; property != nullptr; property = property->next) {
      totals.use(property->file.chars());
      totals.used += static_cast<uint64_t>(property->line);
      if (property->records != nullptr && property->records->t1 > property->records->t2) {
        ++totals.used;
      }
    }
  }
}

void use(Scene& scene, Totals& totals) {
  ++totals.parses;
  if (!scene) {
    totals.use(scene.error().message.c_str());
    totals.use(scene.error().position().c_str());
    totals.use(scene.error().excerpt().c_str());
    return;
  }
  ++totals.trees;
  useProgram(scene, totals);
  HalfRenaming filter;
  scene.filter(filter);
  useProgram(scene, totals);
}

// The same text twice in one program: every object is merged into its elder.
void mergeTwice(const std::string& text, const SceneOptions& options, Totals& totals) {
  Scene first = Scene::fromText(text, options);
  Scene second = Scene::fromText(text, options);
  if (!first || !second) return;
  Table<ObjectAST*, 100> merged;
  first.program()->mergeProgram(second.program(), 1.0, 2.0, &merged);
  totals.used += static_cast<uint64_t>(merged.count);
  use(first, totals);
}

void readAll(const char* path, Totals& totals) {
  SceneOptions options;
  options.collectReferences = true;
  options.nameAffix = "_of_it";
  options.affixIsSuffix = true;
  options.lastFrame = 24.0;
  Scene fromFile = Scene::fromFile(path, options);
  use(fromFile, totals);
  options.mapFiles = true;
  Scene mapped = Scene::fromFile(path, options);
  use(mapped, totals);
  const std::string text = contentsOf(path);
  mergeTwice(text, options, totals);
  // Cut anywhere, most texts are wrong.
  constexpr size_t kCuts = 16;
  for (size_t i = 0; i < kCuts; ++i) {
    Scene cut = Scene::fromText(std::string_view(text).substr(0, text.size() * i / kCuts), options);
    use(cut, totals);
  }
}

}  // namespace

int main() {
  Totals totals;
  long long files = 0;
  char path[4096];
  for (; std::fgets(path, sizeof path, stdin) != nullptr; ++files) {
    path[std::strcspn(path, "\n")] = '\0';
    readAll(path, totals);
  }
  std::printf("%lld files read, %lld parses, %lld trees, %lld nodes; used %llx\n", files,
              totals.parses, totals.trees, totals.nodes,
              static_cast<unsigned long long>(totals.used));
  return totals.trees > 0 ? 0 : 1;
}
