// The command line of the program.
#pragma once

#include <string>
#include <vector>

#include "kelp/scene.h"

namespace KelpCli {

enum class Command { kCheck, kDump, kFormat, kShowText };
enum class Format { kTree, kJson };
enum class Colour { kAuto, kAlways, kNever };

struct Options {
  Command command = Command::kShowText;
  std::string text;  ///< for kShowText: the help or the version

  Kelp::SceneOptions scene;
  std::vector<std::string> files;  ///< "-" is standard input
  Colour colour = Colour::kAuto;

  bool stats = false;  ///< check
  bool json = false;   ///< check

  Format format = Format::kTree;  ///< dump
  std::string output;             ///< dump, format; empty: standard output

  bool checkOnly = false;  ///< format: name the files that would change
  bool rewrite = false;    ///< format: write to the files themselves
};

/// The command line makes no sense.
struct UsageError {
  std::string message;
};

/// Throws UsageError.
Options parseOptions(int argc, const char* const* argv);

}  // namespace KelpCli
