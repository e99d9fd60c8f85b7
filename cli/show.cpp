// kelp show: one object, or one of its properties, as scene text.
#include <fmt/format.h>

#include <CLI/CLI.hpp>
#include <utility>

#include "cli/command.h"
#include "cli/diagnostics.h"
#include "cli/objects.h"
#include "cli/output.h"
#include "kelp/writers/jsonwriter.h"
#include "kelp/writers/scenetextwriter.h"

namespace KelpCli {

namespace {

// What is asked for: OBJECT, or OBJECT.PROPERTY. Names have no dots.
struct Wanted {
  explicit Wanted(const std::string& words) {
    const size_t dot = words.find('.');
    object = words.substr(0, dot);
    isProperty = dot != std::string::npos;
    if (isProperty) property = words.substr(dot + 1);
  }

  bool isObject(const Kelp::ObjectAST& candidate) const { return object == candidate.name.chars(); }

  std::string object;
  std::string property;
  bool isProperty;
};

class Shower {
 public:
  Shower(const Wanted& asked, bool asJson, Kelp::TextSink textSink)
      : wanted(asked), json(asJson), sink(std::move(textSink)) {}

  void see(const Kelp::ObjectAST& object) {
    if (!wanted.isObject(object)) return;
    anyObject = true;
    if (!wanted.isProperty) return show(object);
    // The last assignment wins.
    if (const auto* property = object.findProperty(wanted.property.c_str())) show(*property);
  }

  /// Why nothing was shown; empty when something was.
  std::string complaint() const {
    if (any) return {};
    if (!anyObject)
      return fmt::format("there is no object \"{}\"; kelp list names all objects", wanted.object);
    return fmt::format("\"{0}\" has no property \"{1}\"; kelp show FILE {0} shows those it has",
                       wanted.object, wanted.property);
  }

 private:
  template <class Node>
  void show(const Node& node) {
    const bool first = !any;
    any = true;
    if (json) return Kelp::JsonWriter(sink).write(node);
    if (!first && !wanted.isProperty) sink("\n");
    // One for each: a stream may have an object several times, which a scene has not.
    Kelp::SceneTextWriter writer(sink);
    writer.write(node);
    writer.finish();
  }

  const Wanted& wanted;
  const bool json;
  const Kelp::TextSink sink;
  bool anyObject = false;
  bool any = false;
};

class ShowCommand final : public Command {
 public:
  ShowCommand() : Command("show", "Print an object or a property as scene text") {}

  void declare(CLI::App& app) override {
    addFiles(app, options, "The scene, - is standard input; and what to show of it",
             "OBJECT[.PROPERTY]");
    addJson(app, options);
    addOutput(app, options);
    addStreaming(app, options);
    addSceneOptions(app, options);
    app.footer(kExitCodes);
  }

  void check() override {
    if (options.files.size() != 2) throw UsageError{"show takes FILE and OBJECT[.PROPERTY]"};
    object = options.files.back();
    options.files.pop_back();
  }

  ExitCode run() override {
    try {
      return show();
    } catch (const Kelp::NotWritableException& failure) {  // a name that an affix has spoilt
      complain(failure.message.chars());
      return kInvalid;
    }
  }

 private:
  ExitCode show() const {
    const std::string& file = options.files.front();
    const Wanted wanted(object);
    Output output(options.output);
    Shower shower(wanted, options.json, output.textSink());
    const Kelp::SceneError error =
        forEachObject(file, options, [&shower](const Kelp::ObjectAST& each) { shower.see(each); });
    if (error.kind != Kelp::SceneError::Kind::kNone) {
      report(error, options.colour);
      return exitCodeOf(error);
    }
    if (const std::string complaint = shower.complaint(); !complaint.empty()) {
      complain(fmt::format("{}: {}", file, complaint));
      return kInvalid;
    }
    output.finish();
    return kGood;
  }

  std::string object;  // OBJECT or OBJECT.PROPERTY
};

}  // namespace

std::unique_ptr<Command> showCommand() { return std::make_unique<ShowCommand>(); }

}  // namespace KelpCli
