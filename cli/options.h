// Options that several commands share.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "kelp/scene.h"

namespace CLI {
class App;
}

namespace KelpCli {

enum class Streaming { kAuto, kAlways, kNever };
enum class Colour { kAuto, kAlways, kNever };

struct Options {
  Kelp::SceneOptions scene;
  std::vector<std::string> files;  ///< "-" is standard input
  Colour colour = Colour::kAuto;
  bool json = false;
  std::string output;         ///< empty: standard output
  std::string filesFrom;      ///< a list of more files, "-" is standard input; empty: none
  bool nulSeparated = false;  ///< the names in that list end in NUL, not at the line's end
  Streaming streaming = Streaming::kAuto;
  int jobs = 1;  ///< processes that share the files; 0: one a processor
};

/// For the end of a command's help.
constexpr const char* kExitCodes =
    "Exit codes: 0 all scenes are good, 1 a scene is not, 2 a file cannot be read or written or\n"
    "the usage is wrong.";

/// The command line makes no sense.
struct UsageError {
  std::string message;
};

void addFiles(CLI::App& command, Options& options, const char* description, const char* type = "");
void addFilesFrom(CLI::App& command, Options& options);
void addJson(CLI::App& command, Options& options);
void addOutput(CLI::App& command, Options& options);
void addStreaming(CLI::App& command, Options& options);

/// What every command needs to read scenes: include paths, limits, colours.
void addReadingOptions(CLI::App& command, Options& options);

/// The former, affixes and frames.
void addSceneOptions(CLI::App& command, Options& options);

/// An option that takes one of a few words; the first of them is the default. `set` gets the place
/// of the word that was chosen.
void addChoice(CLI::App& command, const std::string& name, const std::string& description,
               const std::vector<std::string>& words, const std::function<void(size_t)>& set);

}  // namespace KelpCli
