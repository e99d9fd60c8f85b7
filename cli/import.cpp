// kelp import: a scene from a model of another format.
#include <fmt/format.h>

#include <CLI/CLI.hpp>
#include <algorithm>

#include "cli/command.h"
#include "cli/diagnostics.h"
#include "cli/output.h"
#ifdef KELP_HAS_IMPORT
#include "cli/import/assimp.h"
#include "cli/import/modelscene.h"
#include "kelp/writers/scenetextwriter.h"
#endif

namespace KelpCli {

namespace {

class ImportCommand final : public Command {
 public:
  ImportCommand() : Command("import", "Make a scene out of a model of another format") {}

  void declare(CLI::App& app) override {
    addFiles(app, options, "The model, of any format that Assimp reads");
    app.add_option("--animation", animation, "Take the animation of that NAME or number, from 1")
        ->type_name("NAME");
    app.add_option("--fps", framesPerSecond,
                   "Frames of the scene a second; else a frame is the model's unit of time")
        ->type_name("NUMBER")
        ->check(CLI::Range(1e-6, 1e9));
    app.add_flag("--hex", inHex, "Write lists of numbers and transforms as hexadecimal text");
    addOutput(app, options);
    app.footer(
        "What a scene does not say of the model is told on standard error.\n\n"
        "Exit codes: 0 the scene is written, 2 the model cannot be read, the scene cannot be "
        "written\nor the usage is wrong.");
  }

  void check() override {
    requireOneFile();
    if (options.files.front() == "-") {
      throw UsageError{"import reads no standard input: models name files that lie beside them"};
    }
  }

  ExitCode run() override;

 private:
  std::string animation;         // its name or number; empty: the first
  double framesPerSecond = 0.0;  // 0: of the model
  bool inHex = false;
};

#ifdef KELP_HAS_IMPORT

ExitCode ImportCommand::run() {
  const std::string& file = options.files.front();
  try {
    const Model model(file);
    const ModelOptions modelOptions{animation, framesPerSecond};
    Output output(options.output);
    Kelp::SceneTextWriter writer(output.textSink());
    if (inHex) writer.constants = Kelp::ConstantForm::kHexadecimal;
    ModelScene scene(model.scene(), modelOptions,
                     [&writer](const Kelp::ObjectAST& object) { writer.write(object); });
    scene.write();
    writer.finish();
    output.finish();
    for (const std::string& note : scene.notes()) complain(fmt::format("{}: {}", file, note));
  } catch (const ModelFailure& failure) {
    complain(fmt::format("Cannot import \"{}\": {}", file, failure.message));
    return kTrouble;
  }
  return kGood;
}

#else

ExitCode ImportCommand::run() {
  complain("import needs Assimp: install libassimp-dev and build Kelp again");
  return kTrouble;
}

#endif

}  // namespace

std::unique_ptr<Command> importCommand() { return std::make_unique<ImportCommand>(); }

}  // namespace KelpCli
