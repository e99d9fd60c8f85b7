// kelp lint: what scenes may hold, and is probably a mistake.
#include "kelp/queries/lint.h"

#include <fmt/format.h>

#include <CLI/CLI.hpp>
#include <algorithm>

#include "cli/command.h"
#include "cli/diagnostics.h"
#include "cli/input.h"
#include "cli/jobs.h"
#include "cli/output.h"
#include "kelp/ast/treetext.h"
#include "kelp/writers/jsontext.h"

namespace KelpCli {

namespace {

constexpr const char* kLintExitCodes =
    "Exit codes: 0 nothing was found, 1 something was, or a scene is not good, 2 a file cannot be\n"
    "read or the usage is wrong.";

void writeText(std::ostream& out, const std::string& file, const Kelp::Finding& finding,
               Colour colour) {
  const Kelp::PropertyAST* place = finding.place();
  const std::string shown =
      place != nullptr ? fmt::format("{}:{}", Kelp::viewOf(place->file), place->line) : file;
  out << warningLine(shown, finding.message, finding.code, colour);
}

void writeJson(Kelp::JsonText& json, const std::string& file, const Kelp::Finding& finding) {
  json.beginObject();
  json.key("scene").text(file);
  if (const Kelp::PropertyAST* place = finding.place()) {
    json.key("file").text(Kelp::viewOf(place->file));
    json.key("line").integer(place->line);
  }
  json.key("code").text(finding.code);
  json.key("type").text(Kelp::viewOf(finding.object->type));
  json.key("name").text(Kelp::viewOf(finding.object->name));
  if (finding.property != nullptr) json.key("property").text(Kelp::viewOf(finding.property->name));
  json.key("message").text(finding.message);
  json.endObject();
  json.newLine();
}

class LintCommand final : public Command {
 public:
  LintCommand() : Command("lint", "Find in scenes what is probably a mistake") {
    needsFile = false;
  }

  void declare(CLI::App& app) override {
    addFiles(app, options, "Scenes; - is standard input");
    addJobs(app, options);
    app.add_option("--enable", enabled, "Look for that, too")
        ->type_name("CODE")
        ->allow_extra_args(false);
    app.add_option("--disable", disabled, "Do not look for that")
        ->type_name("CODE")
        ->allow_extra_args(false);
    app.add_flag("--list", listsRules, "Print a table of all codes");
    addJson(app, options);
    addSceneOptions(app, options);
    app.footer(kLintExitCodes);
  }

  void check() override {
    if (!listsRules && options.files.empty() && options.filesFrom.empty()) {
      throw UsageError{"FILE is required"};
    }
    for (const std::string& code : enabled) codes.insert(known(code));
    for (const std::string& code : disabled) codes.erase(known(code));
  }

  ExitCode run() override {
    Output output;
    ExitCode worst = kGood;
    if (listsRules) {
      listRules(output.stream());
    } else {
      const auto work = [this](const std::string& file, Output& out) { return lint(file, out); };
      worst = forEachFile(options, output, work);
    }
    output.finish();
    return worst;
  }

 private:
  // The code as the rules have it.
  static std::string_view known(const std::string& code) {
    std::string all;
    for (const Kelp::LintRule& rule : Kelp::lintRules()) {
      if (rule.code == code) return rule.code;
      all += (all.empty() ? "" : ", ") + std::string(rule.code);
    }
    throw UsageError{fmt::format("there is no code \"{}\" but {}", code, all)};
  }

  // The rules, and whether they are applied with these options.
  void listRules(std::ostream& out) const {
    size_t width = 0;
    for (const auto& rule : Kelp::lintRules()) width = std::max(width, rule.code.size());
    for (const auto& rule : Kelp::lintRules()) {
      out << fmt::format("{:<{}}  {:<3}  {}\n", rule.code, width,
                         codes.contains(rule.code) ? "on" : "off", rule.description);
    }
  }

  ExitCode lint(const std::string& file, Output& output) const {
    const Input input = readScene(file, options.scene);
    if (!input.good()) {
      report(input.error, options.colour);
      return exitCodeOf(input.error);
    }
    Kelp::JsonText json(output.textSink());
    ExitCode result = kGood;
    Kelp::lintProgram(*input.scene->program(), codes, [&](const Kelp::Finding& finding) {
      result = kInvalid;
      if (options.json) {
        writeJson(json, shownName(file), finding);
      } else {
        writeText(output.stream(), shownName(file), finding, options.colour);
      }
    });
    return result;
  }

  std::vector<std::string> enabled;
  std::vector<std::string> disabled;
  bool listsRules = false;
  Kelp::LintCodes codes = Kelp::defaultLintCodes();
};

}  // namespace

std::unique_ptr<Command> lintCommand() { return std::make_unique<LintCommand>(); }

}  // namespace KelpCli
