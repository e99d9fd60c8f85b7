#include "cli/options.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <charconv>
#include <cmath>
#include <string_view>
#include <utility>

namespace KelpCli {

namespace {

constexpr const char* kExitCodes =
    "Exit codes: 0 all scenes are good, 1 a scene is not, 2 a file cannot be read or written or\n"
    "the usage is wrong.";

constexpr const char* kFormatExitCodes =
    "Exit codes: 0 all scenes are good, 1 a scene is not or, with --check, would change, 2 a file\n"
    "cannot be read or written or the usage is wrong.";

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

// An option that takes one of a few words; the first of them is the default.
template <class Value>
void addChoice(CLI::App& command, const std::string& name, const std::string& description,
               const std::vector<std::pair<std::string, Value>>& choices, Value& value) {
  std::string words;
  for (const auto& [word, meaning] : choices) words += (words.empty() ? "" : "|") + word;
  const auto set = [name, choices, words, &value](const std::string& text) {
    const auto chosen = std::find_if(choices.begin(), choices.end(),
                                     [&text](const auto& choice) { return choice.first == text; });
    if (chosen == choices.end()) {
      throw CLI::ValidationError(name, "\"" + text + "\" is none of " + words);
    }
    value = chosen->second;
  };
  command.add_option_function<std::string>(name, set, description)->type_name(words);
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

// What every command needs to read scenes.
void addReadingOptions(CLI::App& command, Options& options) {
  command
      .add_option("-I,--include", options.scene.includePaths, "Look up included files there, too")
      ->type_name("DIR")
      ->allow_extra_args(false);
  addLimits(command, options.scene);
  addChoice<Colour>(
      command, "--color", "Colours in messages",
      {{"auto", Colour::kAuto}, {"always", Colour::kAlways}, {"never", Colour::kNever}},
      options.colour);
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
  command.footer(kExitCodes);
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

CLI::Option* addFiles(CLI::App& command, Options& options, const char* description,
                      bool needsFile) {
  return command.add_option("FILE", options.files, description)->required(needsFile)->type_name("");
}

CLI::App* addCheck(CLI::App& app, Options& options) {
  CLI::App* check = app.add_subcommand("check", "Say whether scenes can be read");
  check->add_option("FILE", options.files, "Scenes; - is standard input")->type_name("");
  CLI::Option* list =
      check->add_option("--files-from", options.filesFrom,
                        "Then read the scenes that LIST names, one a line; - is standard input");
  list->type_name("LIST");
  check->add_flag("-0,--null", options.nulSeparated, "Names in LIST end in NUL, as of find -print0")
      ->needs(list);
  addStreaming(*check, options);
  check->add_flag("--stats", options.stats, "Print what every scene holds and how fast it is read");
  addJson(*check, options);
  addSceneOptions(*check, options);
  return check;
}

CLI::App* addDump(CLI::App& app, Options& options, bool needsFile) {
  CLI::App* dump = app.add_subcommand("dump", "Print the tree of a scene");
  addFiles(*dump, options, "The scene; - is standard input", needsFile);
  addChoice<Format>(*dump, "--format", "Form of the output",
                    {{"tree", Format::kTree}, {"json", Format::kJson}}, options.format);
  addOutput(*dump, options);
  addSceneOptions(*dump, options);
  return dump;
}

CLI::App* addFormat(CLI::App& app, Options& options, bool needsFile) {
  CLI::App* format = app.add_subcommand("format", "Lay the text of scenes out, comments and all");
  addFiles(*format, options, "Scenes; - is standard input", needsFile);
  CLI::Option* check =
      format->add_flag("--check", options.checkOnly, "Only name the files that would change");
  CLI::Option* rewrite =
      format->add_flag("-w,--write", options.rewrite, "Write to the files that change themselves");
  CLI::Option* output =
      format->add_option("-o,--output", options.output, "Write to FILE, when all is well");
  output->type_name("FILE");
  rewrite->excludes(check);
  output->excludes(check)->excludes(rewrite);
  addReadingOptions(*format, options);
  format->footer(kFormatExitCodes);
  return format;
}

CLI::App* addList(CLI::App& app, Options& options, bool needsFile) {
  CLI::App* list = app.add_subcommand("list", "Print a table of the objects of a scene");
  addFiles(*list, options, "The scene; - is standard input", needsFile);
  list->add_option("--type", options.typePattern, "Only objects of types like GLOB")
      ->type_name("GLOB");
  list->add_option("--name", options.namePattern, "Only objects of names like GLOB")
      ->type_name("GLOB");
  addJson(*list, options);
  addOutput(*list, options);
  addStreaming(*list, options);
  addSceneOptions(*list, options);
  return list;
}

CLI::App* addShow(CLI::App& app, Options& options, bool needsFile) {
  CLI::App* show = app.add_subcommand("show", "Print an object or a property as scene text");
  addFiles(*show, options, "The scene, - is standard input; and what to show of it", needsFile)
      ->type_name("OBJECT[.PROPERTY]");
  addJson(*show, options);
  addOutput(*show, options);
  addStreaming(*show, options);
  addSceneOptions(*show, options);
  return show;
}

CLI::App* addStats(CLI::App& app, Options& options, bool needsFile) {
  CLI::App* stats = app.add_subcommand("stats", "Count what scenes hold");
  addFiles(*stats, options, "Scenes; - is standard input", needsFile);
  addJson(*stats, options);
  addStreaming(*stats, options);
  addSceneOptions(*stats, options);
  return stats;
}

// What the library of options cannot know.
void checkFiles(Options& options) {
  if (options.command == Command::kCheck && options.files.empty() && options.filesFrom.empty()) {
    throw UsageError{"FILE is required"};
  }
  if (options.command == Command::kDump && options.files.size() != 1) {
    throw UsageError{"dump takes one FILE only"};
  }
  if (options.command == Command::kList && options.files.size() != 1) {
    throw UsageError{"list takes one FILE only"};
  }
  if (options.command == Command::kShow) {
    if (options.files.size() != 2) throw UsageError{"show takes FILE and OBJECT[.PROPERTY]"};
    options.object = options.files.back();
    options.files.pop_back();
  }
  if (options.command != Command::kFormat) return;
  if (!options.output.empty() && options.files.size() != 1) {
    throw UsageError{"format takes one FILE only with --output"};
  }
  const bool standardInput =
      std::find(options.files.begin(), options.files.end(), "-") != options.files.end();
  if (options.rewrite && standardInput) throw UsageError{"standard input cannot be rewritten"};
}

}  // namespace

Options parseOptions(int argc, const char* const* argv) {
  // The library forgets a "--" when it stands behind the first file.
  const char* const* end = argv + argc;
  const char* const* mark = std::find(argv, end, std::string_view("--"));
  const std::vector<std::string> filesBehind(std::min(mark + 1, end), end);

  Options options;
  CLI::App app("Reads scene descriptions.", "kelp");
  app.set_version_flag("--version", "kelp " KELP_VERSION);
  app.require_subcommand(1);
  const bool needsFile = filesBehind.empty();
  const std::pair<const CLI::App*, Command> commands[] = {
      {addCheck(app, options), Command::kCheck},
      {addDump(app, options, needsFile), Command::kDump},
      {addFormat(app, options, needsFile), Command::kFormat},
      {addList(app, options, needsFile), Command::kList},
      {addShow(app, options, needsFile), Command::kShow},
      {addStats(app, options, needsFile), Command::kStats}};
  try {
    app.parse(static_cast<int>(mark - argv), argv);
    options.files.insert(options.files.end(), filesBehind.begin(), filesBehind.end());
    for (const auto& [subcommand, command] : commands) {
      if (subcommand->parsed()) options.command = command;
    }
  } catch (const CLI::CallForHelp&) {
    options.text = app.help();  // of the command, if one was named
  } catch (const CLI::CallForVersion&) {
    options.text = "kelp " KELP_VERSION "\n";
  } catch (const CLI::ParseError& error) {
    throw UsageError{error.what()};
  }
  checkFiles(options);
  return options;
}

}  // namespace KelpCli
