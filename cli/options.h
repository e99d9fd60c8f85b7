// The command line of the program.
#pragma once

#include <string>
#include <vector>

#include "kelp/scene.h"

namespace KelpCli {

enum class Command { kCheck, kDump, kFormat, kList, kShow, kStats, kShowText };
enum class Format { kTree, kJson };
enum class Streaming { kAuto, kAlways, kNever };
enum class Colour { kAuto, kAlways, kNever };

struct Options {
  Command command = Command::kShowText;
  std::string text;  ///< for kShowText: the help or the version

  Kelp::SceneOptions scene;
  std::vector<std::string> files;  ///< "-" is standard input
  Colour colour = Colour::kAuto;

  bool stats = false;         ///< check
  bool json = false;          ///< check, list, show, stats
  std::string filesFrom;      ///< check; a list of more files, "-" is standard input; empty: none
  bool nulSeparated = false;  ///< check; the names in that list end in NUL, not at the line's end
  Streaming streaming = Streaming::kAuto;  ///< check, list, show, stats

  Format format = Format::kTree;  ///< dump
  std::string output;             ///< dump, format, list, show; empty: standard output

  bool checkOnly = false;  ///< format: name the files that would change
  bool rewrite = false;    ///< format: write to the files themselves

  std::string typePattern;  ///< list; a pattern of the shell, empty: all
  std::string namePattern;  ///< list
  std::string object;       ///< show; OBJECT or OBJECT.PROPERTY
};

/// The command line makes no sense.
struct UsageError {
  std::string message;
};

/// Throws UsageError.
Options parseOptions(int argc, const char* const* argv);

}  // namespace KelpCli
