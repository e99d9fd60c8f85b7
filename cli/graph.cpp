// kelp graph: which objects refer to which.
#include <CLI/CLI.hpp>

#include "cli/command.h"
#include "cli/diagnostics.h"
#include "cli/graphviz.h"
#include "cli/input.h"
#include "cli/objects.h"
#include "cli/output.h"
#include "kelp/writers/dotwriter.h"

namespace KelpCli {

namespace {

class GraphCommand final : public Command {
 public:
  GraphCommand() : Command("graph", "Write the references between objects as a graph in DOT") {}

  void declare(CLI::App& app) override {
    addFiles(app, options, "The scene; - is standard input");
    app.add_option("--type", typePattern, "Only objects of types like GLOB")->type_name("GLOB");
    app.add_option("--name", namePattern, "Only objects of names like GLOB")->type_name("GLOB");
    const auto setFormat = [this](const char* format) {
      return [this, format] { picture = format; };
    };
    CLI::Option* svg =
        app.add_flag_callback("--svg", setFormat("svg"), "Draw it with Graphviz, as SVG");
    app.add_flag_callback("--png", setFormat("png"), "Draw it with Graphviz, as PNG")
        ->excludes(svg);
    addOutput(app, options);
    addSceneOptions(app, options);
    app.footer(kExitCodes);
  }

  void check() override { requireOneFile(); }

  ExitCode run() override {
    // Who refers to whom is known when all objects are.
    const Input input = readScene(options.files.front(), options.scene);
    if (!input.good()) {
      report(input.error, options.colour);
      return exitCodeOf(input.error);
    }
    const Kelp::ProgramAST& program = *input.scene->program();
    Output output(options.output);
    if (picture.empty()) {
      writeGraph(program, output.stream());
    } else {
      output.stream() << drawGraph(picture,
                                   [&](std::ostream& stream) { writeGraph(program, stream); });
    }
    output.finish();
    return kGood;
  }

 private:
  void writeGraph(const Kelp::ProgramAST& program, std::ostream& stream) const {
    Kelp::DotWriter writer([&stream](std::string_view piece) {
      stream.write(piece.data(), static_cast<std::streamsize>(piece.size()));
    });
    writer.isWanted = [this](const Kelp::ObjectAST& object) {
      return matches(typePattern, object.type) && matches(namePattern, object.name);
    };
    writer.write(program);
  }

  std::string typePattern;  // of the shell; empty: all
  std::string namePattern;
  std::string picture;  // its format; empty: the graph itself
};

}  // namespace

std::unique_ptr<Command> graphCommand() { return std::make_unique<GraphCommand>(); }

}  // namespace KelpCli
