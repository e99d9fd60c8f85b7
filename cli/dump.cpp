// kelp dump: the tree of a scene.
#include <CLI/CLI.hpp>

#include "cli/command.h"
#include "cli/diagnostics.h"
#include "cli/input.h"
#include "cli/output.h"
#include "kelp/writers/jsonwriter.h"
#include "kelp/writers/treewriter.h"

namespace KelpCli {

namespace {

class DumpCommand final : public Command {
 public:
  DumpCommand() : Command("dump", "Print the tree of a scene") {}

  void declare(CLI::App& app) override {
    addFiles(app, options, "The scene; - is standard input");
    addChoice(app, "--format", "Form of the output", {"tree", "json"},
              [this](size_t i) { asJson = i == 1; });
    addOutput(app, options);
    addSceneOptions(app, options);
    app.footer(kExitCodes);
  }

  void check() override { requireOneFile(); }

  ExitCode run() override {
    const std::string& file = options.files.front();
    const Input input = readScene(file, options.scene);
    if (!input.good()) {
      report(input.error, options.colour);
      return exitCodeOf(input.error);
    }
    Output output(options.output);
    if (asJson) {
      Kelp::JsonWriter(output.textSink()).write(*input.scene->program(), shownName(file));
    } else {
      Kelp::TreeWriter(output.textSink()).write(*input.scene->program());
    }
    output.finish();
    return kGood;
  }

 private:
  bool asJson = false;
};

}  // namespace

std::unique_ptr<Command> dumpCommand() { return std::make_unique<DumpCommand>(); }

}  // namespace KelpCli
