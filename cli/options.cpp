#include "cli/options.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <charconv>
#include <cmath>
#include <string_view>

namespace KelpCli {

namespace {

double parseFrame(std::string_view text) {
  double frame = 0.0;
  const char* end = text.data() + text.size();
  const auto result = std::from_chars(text.data(), end, frame);
  if (result.ec != std::errc() || result.ptr != end || !std::isfinite(frame)) {
    throw CLI::ValidationError("--frames", "\"" + std::string(text) + "\" is not a frame number");
  }
  return frame;
}

void setFrames(Kelp::SceneOptions& scene, const std::string& text) {
  const size_t colon = text.find(':');
  if (colon == std::string::npos) {
    throw CLI::ValidationError("--frames", "\"" + text + "\" is not of the form FIRST:LAST");
  }
  scene.firstFrame = parseFrame(std::string_view(text).substr(0, colon));
  scene.lastFrame = parseFrame(std::string_view(text).substr(colon + 1));
  if (scene.firstFrame > scene.lastFrame) {
    throw CLI::ValidationError("--frames", "the first frame lies behind the last");
  }
}

void addLimits(CLI::App& command, Kelp::SceneOptions& scene) {
  command.add_option("--max-bytes", scene.limits.maxBytes, "Refuse scenes of more bytes than that")
      ->type_name("SIZE")
      ->transform(CLI::AsSizeValue(true))
      ->check(CLI::PositiveNumber);
  command
      .add_option("--max-includes", scene.limits.maxIncludes,
                  "Follow no more #include lines than that; 100000 if not given")
      ->type_name("NUMBER")
      ->check(CLI::PositiveNumber);
  command.add_option("--max-objects", scene.maxObjects, "Refuse scenes of more objects than that")
      ->type_name("NUMBER")
      ->check(CLI::PositiveNumber);
  command.add_flag("--confine", scene.limits.confine,
                   "Refuse included files outside the scene's folder and those of -I");
}

}  // namespace

void addChoice(CLI::App& command, const std::string& name, const std::string& description,
               const std::vector<std::string>& words, const std::function<void(size_t)>& set) {
  std::string all;
  for (const std::string& word : words) all += (all.empty() ? "" : "|") + word;
  const auto choose = [name, words, all, set](const std::string& text) {
    const auto chosen = std::find(words.begin(), words.end(), text);
    if (chosen == words.end()) {
      throw CLI::ValidationError(name, "\"" + text + "\" is none of " + all);
    }
    set(static_cast<size_t>(chosen - words.begin()));
  };
  command.add_option_function<std::string>(name, choose, description)->type_name(all);
}

void addFiles(CLI::App& command, Options& options, const char* description, const char* type) {
  command.add_option("FILE", options.files, description)->type_name(type);
}

void addFilesFrom(CLI::App& command, Options& options) {
  CLI::Option* list =
      command.add_option("--files-from", options.filesFrom,
                         "Then read the scenes that LIST names, one a line; - is standard input");
  list->type_name("LIST");
  command
      .add_flag("-0,--null", options.nulSeparated, "Names in LIST end in NUL, as of find -print0")
      ->needs(list);
}

void addReadingOptions(CLI::App& command, Options& options) {
  command
      .add_option("-I,--include", options.scene.includePaths, "Look up included files there, too")
      ->type_name("DIR")
      ->allow_extra_args(false);
  addLimits(command, options.scene);
  addChoice(command, "--color", "Colours in messages", {"auto", "always", "never"},
            [&options](size_t i) { options.colour = static_cast<Colour>(i); });
}

void addSceneOptions(CLI::App& command, Options& options) {
  Kelp::SceneOptions& scene = options.scene;
  CLI::Option* affix = command.add_option_function<std::string>(
      "--affix", [&scene](const std::string& text) { scene.nameAffix = text; },
      "Put TEXT before the names of all objects");
  CLI::Option* suffix = command.add_option_function<std::string>(
      "--suffix",
      [&scene](const std::string& text) {
        scene.nameAffix = text;
        scene.affixIsSuffix = true;
      },
      "Put TEXT behind the names of all objects");
  affix->type_name("TEXT");
  suffix->type_name("TEXT")->excludes(affix);
  command
      .add_option_function<std::string>(
          "--frames", [&scene](const std::string& text) { setFrames(scene, text); },
          "Frames that the text describes")
      ->type_name("FIRST:LAST");
  addReadingOptions(command, options);
}

void addStreaming(CLI::App& command, Options& options) {
  CLI::Option* stream = command.add_flag_callback(
      "--stream", [&options] { options.streaming = Streaming::kAlways; },
      "Read object by object, without the whole tree in memory");
  command
      .add_flag_callback(
          "--no-stream", [&options] { options.streaming = Streaming::kNever; },
          "Never do that; else it is done with files larger than a quarter of memory")
      ->excludes(stream);
}

void addJson(CLI::App& command, Options& options) {
  command.add_flag("--json", options.json, "Print one JSON object a line instead of texts");
}

void addOutput(CLI::App& command, Options& options) {
  command
      .add_option("-o,--output", options.output, "Write to FILE, when all is well, not to stdout")
      ->type_name("FILE");
}

}  // namespace KelpCli
