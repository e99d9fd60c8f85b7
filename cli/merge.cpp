// kelp merge: one scene out of several.
#include <CLI/CLI.hpp>
#include <utility>

#include "cli/command.h"
#include "cli/diagnostics.h"
#include "cli/input.h"
#include "cli/output.h"
#include "kelp/writers/scenetextwriter.h"

namespace KelpCli {

namespace {

// Scenes become one; what later ones say about an object is added to it. The texts that the tree
// borrows are theirs, so all stay.
class MergedScene {
 public:
  void add(Kelp::Scene&& scene) {
    scenes.push_back(std::move(scene));
    Kelp::ProgramAST* added = scenes.back().program();
    if (added == program()) {
      for (Kelp::ObjectAST* object : Kelp::objectsInTextOrder(*added)) objects.push_back(object);
      return;
    }
    const Kelp::ObjectAST* newestSoFar = program()->firstObject;
    // Frames count when properties are read: each has its own already.
    program()->mergeProgram(added, 0, 0, nullptr);
    // Merging begins with the newest object: the list has what is new in the order of the text.
    for (auto* object = program()->firstObject; object != newestSoFar; object = object->next) {
      objects.push_back(object);
    }
  }

  void write(Kelp::SceneTextWriter& writer) const {
    for (const Kelp::ObjectAST* object : objects) writer.write(*object);
  }

 private:
  Kelp::ProgramAST* program() const { return scenes.front().program(); }

  std::vector<Kelp::Scene> scenes;
  std::vector<const Kelp::ObjectAST*> objects;  // in the order of the texts
};

class MergeCommand final : public Command {
 public:
  MergeCommand() : Command("merge", "Make one scene out of several, later ones winning") {}

  void declare(CLI::App& app) override {
    addFiles(app, options, "Scenes; - is standard input");
    addOutput(app, options);
    addSceneOptions(app, options);
    app.footer(
        "Objects of one type and name become one with the properties of all; of a property that is "
        "\nassigned several times the last value is written.\n\n" +
        std::string(kExitCodes));
  }

  ExitCode run() override {
    MergedScene merged;
    for (const std::string& file : options.files) {
      Input input = readScene(file, options.scene);
      if (!input.good()) {
        report(input.error, options.colour);
        return exitCodeOf(input.error);
      }
      merged.add(std::move(*input.scene));
    }
    try {
      Output output(options.output);
      Kelp::SceneTextWriter writer(output.textSink());
      writer.leaveOutOverridden = true;
      merged.write(writer);
      writer.finish();
      output.finish();
    } catch (const Kelp::NotWritableException& failure) {  // a name that an affix has spoilt
      complain(failure.message.chars());
      return kInvalid;
    }
    return kGood;
  }
};

}  // namespace

std::unique_ptr<Command> mergeCommand() { return std::make_unique<MergeCommand>(); }

}  // namespace KelpCli
