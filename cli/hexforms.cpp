// kelp encode, kelp decode: a scene with its constants as hexadecimal text, or as numbers.
#include <fmt/format.h>

#include <CLI/CLI.hpp>

#include "cli/command.h"
#include "cli/diagnostics.h"
#include "cli/input.h"
#include "cli/objects.h"
#include "cli/output.h"
#include "kelp/writers/scenetextwriter.h"

namespace KelpCli {

namespace {

// With the place in the scene, as an error of its text has it.
Kelp::SceneError errorOf(const Kelp::NotWritableException& failure, const std::string& file) {
  Kelp::SceneError error;
  error.kind = Kelp::SceneError::Kind::kInvalid;
  error.message = failure.message.chars();
  error.file =
      failure.line > 0 ? fmt::format("{}:{}", failure.file.chars(), failure.line) : shownName(file);
  return error;
}

class HexCommand final : public Command {
 public:
  HexCommand(const char* commandName, const char* whatItDoes, Kelp::ConstantForm form)
      : Command(commandName, whatItDoes), constants(form) {}

  void declare(CLI::App& app) override {
    addFiles(app, options, "The scene; - is standard input");
    addOutput(app, options);
    addStreaming(app, options);
    addSceneOptions(app, options);
    app.footer(kExitCodes);
  }

  void check() override { requireOneFile(); }

  ExitCode run() override {
    const std::string& file = options.files.front();
    Output output(options.output);
    Kelp::SceneTextWriter writer(output.textSink());
    writer.constants = constants;
    const Kelp::SceneError error = rewrite(file, writer);
    if (error.kind != Kelp::SceneError::Kind::kNone) {
      report(error, options.colour);
      return exitCodeOf(error);
    }
    writer.finish();
    output.finish();
    if (writer.approximatedNumbers() > 0) {
      complain(
          fmt::format("{}: {} not-a-numbers were written as another one: no literal reads "
                      "back to their bits",
                      shownName(file), writer.approximatedNumbers()));
    }
    return kGood;
  }

 private:
  // Gives why it cannot be done.
  Kelp::SceneError rewrite(const std::string& file, Kelp::SceneTextWriter& writer) const {
    try {
      return forEachObject(file, options,
                           [&writer](const Kelp::ObjectAST& object) { writer.write(object); });
    } catch (const Kelp::NotWritableException& failure) {
      return errorOf(failure, file);
    }
  }

  const Kelp::ConstantForm constants;
};

}  // namespace

std::unique_ptr<Command> encodeCommand() {
  return std::make_unique<HexCommand>("encode",
                                      "Write a scene with its lists of numbers as hexadecimal text",
                                      Kelp::ConstantForm::kHexadecimal);
}

std::unique_ptr<Command> decodeCommand() {
  return std::make_unique<HexCommand>("decode",
                                      "Write a scene with its hexadecimal texts as numbers",
                                      Kelp::ConstantForm::kNumbers);
}

}  // namespace KelpCli
