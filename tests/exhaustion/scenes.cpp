#include "tests/exhaustion/scenes.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <sstream>

#include "tests/support/figures.h"
#include "tests/support/richscenes.h"

namespace KelpTest {

namespace {

void addFilesOf(const char* folder, bool failing, std::vector<NamedScene>& scenes) {
  std::vector<std::filesystem::path> paths;
  for (const auto& entry :
       std::filesystem::directory_iterator(std::filesystem::path(KELP_SOURCE_DIR) / folder)) {
    const bool fails = entry.path().filename().string().starts_with("fail_");
    if (entry.path().extension() == ".scene" && fails == failing) paths.push_back(entry.path());
  }
  std::sort(paths.begin(), paths.end());
  for (const auto& path : paths) {
    std::ostringstream text;
    text << std::ifstream(path, std::ios::binary).rdbuf();
    scenes.push_back({path.string(), text.str()});
  }
}

void addTexts(const char* name, const std::vector<std::string>& texts,
              std::vector<NamedScene>& scenes) {
  int number = 0;
  for (const std::string& text : texts) {
    scenes.push_back({name + std::to_string(++number) + ".scene", text});
  }
}

// `piece` with every '#' replaced by the numbers from 0 on.
std::string numbered(const std::string& piece, int count) {
  std::string text;
  for (int i = 0; i < count; ++i) {
    for (const char c : piece) text += c == '#' ? std::to_string(i) : std::string(1, c);
  }
  return text;
}

std::vector<NamedScene> madeScenes() {
  const std::string longName(150, 'n');
  return {
      // Maps of 13, 29, 59 and 127 buckets.
      {"rehashes.scene", numbered("P o# {} ", 80)},
      {"merges.scene", numbered("P o# { x = #; } ", 12) + numbered("P o# { y = #; } ", 12)},
      // The table of references grows behind 100, 200 and 400.
      {"references.scene", "A a { x = List(b" + numbered(", o#, p.q#, r::s#", 140) + "); }"},
      // The scratch of typed lists grows behind 1000 and 2000.
      {"integers.scene", "A a { x = ListInt(" + numbered("#,", 1001) + "); }"},
      {"floats.scene", "A a { x = ListFloat(" + numbered("#,", 1001) + "); }"},
      {"vectors.scene", "A a { x = ListVector(" + numbered("Vector(#,1,2),", 1001) + "); }"},
      {"strings.scene", "A a { x = ListString(\"s\"" + numbered(",\"#\"", 1000) + "); }"},
      {"tokens.scene", "A " + longName + " { " + longName + " = \"" + std::string(900, 's') +
                           "\" + " + std::string(300, '1') + "; }"},
      {"escapes.scene", "A a { x = \"\\\"" + std::string(1200, 'e') + "\\\\\"; y = \"\\\"\"; }"},
      {"indices.scene", "A a { x = b.c" + numbered("[#].x", 20) + "; }"},
      {"nested.scene", "A a { x = " + numbered("-(1+", 40) + "2" + numbered(")", 40) + "; }"},
  };
}

}  // namespace

const std::vector<NamedScene>& goodScenes() {
  static const std::vector<NamedScene> scenes = [] {
    std::vector<NamedScene> good = madeScenes();
    addTexts("rich", richScenes(), good);
    addFilesOf("tests/scenes", false, good);
    addFilesOf("examples", false, good);
    // Failing at every hundredth place of a large scene proves little, and takes long.
    constexpr size_t kEverydayBytes = 2500;
    if (!hasTimeForAll()) {
      std::erase_if(good, [](const NamedScene& s) { return s.text.size() > kEverydayBytes; });
    }
    return good;
  }();
  return scenes;
}

const std::vector<NamedScene>& failingScenes() {
  static const std::vector<NamedScene> scenes = [] {
    std::vector<NamedScene> failing;
    addTexts("broken", brokenScenes(), failing);
    addFilesOf("tests/scenes", true, failing);
    return failing;
  }();
  return scenes;
}

std::vector<NamedScene> allScenes() {
  std::vector<NamedScene> all = goodScenes();
  all.insert(all.end(), failingScenes().begin(), failingScenes().end());
  return all;
}

}  // namespace KelpTest
