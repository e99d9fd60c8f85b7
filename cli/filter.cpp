// kelp filter: a scene with some of its objects left out or renamed.
#include <fmt/format.h>

#include <CLI/CLI.hpp>
#include <algorithm>
#include <utility>

#include "cli/command.h"
#include "cli/diagnostics.h"
#include "cli/input.h"
#include "cli/objects.h"
#include "cli/output.h"
#include "cli/renaming.h"
#include "kelp/writers/scenetextwriter.h"

namespace KelpCli {

namespace {

using Patterns = std::vector<std::string>;

// The empty pattern is that of objects without a name.
bool matchesAny(const Patterns& patterns, const Kelp::CharString& text) {
  return std::any_of(patterns.begin(), patterns.end(), [&text](const std::string& pattern) {
    return pattern.empty() ? text.isEmpty() : matches(pattern, text);
  });
}

// What is asked for an object of that type or name.
struct Choice {
  bool accepts(const Kelp::CharString& text) const {
    return (keep.empty() || matchesAny(keep, text)) && !matchesAny(drop, text);
  }

  Patterns keep;  // none: all
  Patterns drop;
};

/// The scene cannot be written so.
struct Refusal {
  std::string message;
};

// Chooses and renames by the names that stand in the text, without the affix.
class ObjectFilter final : public Kelp::ScenePluginFilter {
 public:
  ObjectFilter(const Choice& chosenTypes, const Choice& chosenNames, Renaming& newNames,
               const Kelp::SceneOptions& options)
      : types(chosenTypes), names(chosenNames), renaming(newNames), scene(options) {}

  int acceptObject(const Kelp::CharString& type, Kelp::CharString& name, void*) override {
    const std::string old = withoutAffix(name.chars());
    const bool kept = types.accepts(type) && names.accepts(Kelp::CharString(old.c_str()));
    if (old.empty()) return kept ? 1 : 0;
    const std::string fresh = renaming.apply(old);
    if (kept) requireAlone(old, fresh);
    if (fresh != old) name = Kelp::CharString(withAffix(fresh).c_str());
    return kept ? 1 : 0;
  }

 private:
  std::string withoutAffix(const std::string& name) const {
    const size_t length = scene.nameAffix.size();
    if (name.empty()) return name;
    return scene.affixIsSuffix ? name.substr(0, name.size() - length) : name.substr(length);
  }
  std::string withAffix(const std::string& name) const {
    return scene.affixIsSuffix ? name + scene.nameAffix : scene.nameAffix + name;
  }

  // Two names that become one would lead the references of one to the other.
  void requireAlone(const std::string& old, const std::string& fresh) {
    const auto [place, isNew] = oldNames.try_emplace(fresh, old);
    if (isNew || place->second == old) return;
    throw Refusal{
        fmt::format("\"{}\" and \"{}\" would both be called \"{}\"", place->second, old, fresh)};
  }

  const Choice& types;
  const Choice& names;
  Renaming& renaming;
  const Kelp::SceneOptions& scene;
  std::unordered_map<std::string, std::string> oldNames;  // of kept objects, by their new names
};

class FilterCommand final : public Command {
 public:
  FilterCommand() : Command("filter", "Leave objects out or rename them") {}

  void declare(CLI::App& app) override {
    addFiles(app, options, "The scene; - is standard input");
    const auto addPatterns = [&app](const char* option, Patterns& patterns, const char* what) {
      app.add_option(option, patterns, what)->type_name("GLOB")->allow_extra_args(false);
    };
    addPatterns("--keep-type", types.keep, "Only objects of types like GLOB, or one of several");
    addPatterns("--drop-type", types.drop, "No objects of types like GLOB");
    addPatterns("--keep-name", names.keep, "Only objects of names like GLOB, or one of several");
    addPatterns("--drop-name", names.drop, "No objects of names like GLOB");
    const auto addRenames = [&app](const char* option, Patterns& renames, const char* what) {
      return app.add_option(option, renames, what)->allow_extra_args(false);
    };
    addRenames("--rename", newNames, "Rename objects, and the references to them")
        ->type_name("OLD=NEW");
    addRenames("--rename-regex", substitutions, "Likewise, all names that match, as sed -E does")
        ->type_name("s/OLD/NEW/");
    addOutput(app, options);
    addSceneOptions(app, options);
    app.footer(
        "Patterns and new names are for the names in the text; an affix is joined to the result.\n"
        "Exit codes: 0 the scene is good, 1 it is not, or the result cannot be written as a scene,"
        "\n2 a file cannot be read or written or the usage is wrong.");
  }

  void check() override {
    requireOneFile();
    for (const std::string& words : newNames) renaming.addName(words);
    for (const std::string& words : substitutions) renaming.addSubstitution(words);
  }

  ExitCode run() override {
    options.scene.collectReferences = true;
    const Input input = readScene(options.files.front(), options.scene);
    if (!input.good()) {
      report(input.error, options.colour);
      return exitCodeOf(input.error);
    }
    try {
      write(*input.scene);
      return kGood;
    } catch (const Refusal& refusal) {
      complain(refusal.message);
    } catch (const Kelp::NotWritableException& failure) {
      complain(failure.message.chars());
    }
    return kInvalid;
  }

 private:
  void write(const Kelp::Scene& scene) {
    ObjectFilter filter(types, names, renaming, options.scene);
    scene.parser().doFilter(scene.program(), &filter);
    if (const auto unused = renaming.unusedName()) {
      throw Refusal{
          fmt::format("there is no object \"{}\" to rename; kelp list names all objects", *unused)};
    }
    Output output(options.output);
    Kelp::SceneTextWriter writer(output.textSink());
    writer.leaveOutFiltered = true;
    writer.write(*scene.program());
    writer.finish();
    output.finish();
  }

  Choice types;
  Choice names;
  std::vector<std::string> newNames;
  std::vector<std::string> substitutions;
  Renaming renaming;
};

}  // namespace

std::unique_ptr<Command> filterCommand() { return std::make_unique<FilterCommand>(); }

}  // namespace KelpCli
