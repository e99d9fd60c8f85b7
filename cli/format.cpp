// kelp format: the text of scenes in its canonical layout.
#include <fmt/format.h>

#include <algorithm>
#include <filesystem>

#include "cli/commands.h"
#include "cli/diagnostics.h"
#include "cli/input.h"
#include "cli/output.h"
#include "kelp/writers/sceneformat.h"

namespace KelpCli {

namespace {

struct Difference {};

// Compares with the result as it comes.
bool isFormatted(std::string_view text) {
  std::string_view rest = text;
  try {
    Kelp::formatText(text, [&rest](std::string_view piece) {
      if (!rest.starts_with(piece)) throw Difference();
      rest.remove_prefix(piece.size());
    });
  } catch (const Difference&) {
    return false;
  }
  return rest.empty();
}

void writeFormatted(std::string_view text, Output& output) {
  Kelp::formatText(text, [&output](std::string_view piece) {
    output.stream().write(piece.data(), static_cast<std::streamsize>(piece.size()));
  });
}

// One file that cannot be written does not keep others from it.
ExitCode rewrite(const std::string& file, std::string_view text) {
  if (isFormatted(text)) return kGood;
  if (!std::filesystem::is_regular_file(file)) {
    complain(fmt::format("Cannot rewrite \"{}\": not a regular file", file));
    return kTrouble;
  }
  try {
    Output replaced(file);
    writeFormatted(text, replaced);
    replaced.finish();
  } catch (const WriteFailure& failure) {
    complain(failure.message);
    return kTrouble;
  }
  return kGood;
}

ExitCode formatFile(const std::string& file, const Options& options, Output& output) {
  std::string text;
  Input input = readScene(file, options.scene, &text);
  if (!input.good()) {
    report(input.error, options.colour);
    return exitCodeOf(input.error);
  }
  input.scene.reset();  // the tree is not needed any more
  if (options.rewrite) return rewrite(file, text);
  if (!options.checkOnly) {
    writeFormatted(text, output);
    return kGood;
  }
  if (isFormatted(text)) return kGood;
  output.stream() << shownName(file) << '\n';
  return kInvalid;
}

}  // namespace

ExitCode runFormat(const Options& options) {
  Output output(options.output);
  ExitCode worst = kGood;
  for (const std::string& file : options.files) {
    worst = std::max(worst, formatFile(file, options, output));
    // What goes to the two outputs stays in order, and results of long runs are seen early.
    output.flush();
  }
  const bool incomplete = worst != kGood && !options.output.empty();
  if (!incomplete) output.finish();
  return worst;
}

}  // namespace KelpCli
