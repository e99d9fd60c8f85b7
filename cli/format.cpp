// kelp format: the text of scenes in its canonical layout.
#include <fmt/format.h>

#include <CLI/CLI.hpp>
#include <algorithm>
#include <filesystem>

#include "cli/command.h"
#include "cli/diagnostics.h"
#include "cli/input.h"
#include "cli/jobs.h"
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
  Kelp::formatText(text, output.textSink());
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

class FormatCommand final : public Command {
 public:
  FormatCommand() : Command("format", "Lay the text of scenes out, comments and all") {}

  void declare(CLI::App& app) override {
    addFiles(app, options, "Scenes; - is standard input");
    addJobs(app, options);
    CLI::Option* check =
        app.add_flag("--check", checkOnly, "Only name the files that would change");
    CLI::Option* write =
        app.add_flag("-w,--write", rewrites, "Write to the files that change themselves");
    CLI::Option* output =
        app.add_option("-o,--output", options.output, "Write to FILE, when all is well");
    output->type_name("FILE");
    write->excludes(check);
    output->excludes(check)->excludes(write);
    addReadingOptions(app, options);
    app.footer(
        "Exit codes: 0 all scenes are good, 1 a scene is not or, with --check, would change, 2 a "
        "file\ncannot be read or written or the usage is wrong.");
  }

  void check() override {
    const std::vector<std::string>& files = options.files;
    if (!options.output.empty() && files.size() != 1) {
      throw UsageError{"format takes one FILE only with --output"};
    }
    const bool standardInput = std::find(files.begin(), files.end(), "-") != files.end();
    if (rewrites && standardInput) throw UsageError{"standard input cannot be rewritten"};
  }

  ExitCode run() override {
    Output output(options.output);
    const auto work = [this](const std::string& file, Output& out) {
      return formatFile(file, out);
    };
    const ExitCode worst = forEachFile(options, output, work);
    const bool incomplete = worst != kGood && !options.output.empty();
    if (!incomplete) output.finish();
    return worst;
  }

 private:
  ExitCode formatFile(const std::string& file, Output& output) {
    std::string text;
    Input input = readScene(file, options.scene, &text);
    if (!input.good()) {
      report(input.error, options.colour);
      return exitCodeOf(input.error);
    }
    input.scene.reset();  // the tree is not needed any more
    if (rewrites) return rewrite(file, text);
    if (!checkOnly) {
      writeFormatted(text, output);
      return kGood;
    }
    if (isFormatted(text)) return kGood;
    output.stream() << shownName(file) << '\n';
    return kInvalid;
  }

  bool checkOnly = false;  // name the files that would change
  bool rewrites = false;   // write to the files themselves
};

}  // namespace

std::unique_ptr<Command> formatCommand() { return std::make_unique<FormatCommand>(); }

}  // namespace KelpCli
