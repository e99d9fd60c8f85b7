// kelp diff: what two scenes mean differently.
#include <fmt/format.h>
#include <unistd.h>

#include <CLI/CLI.hpp>
#include <array>
#include <limits>
#include <utility>

#include "cli/command.h"
#include "cli/diagnostics.h"
#include "cli/input.h"
#include "cli/output.h"
#include "kelp/ast/treetext.h"
#include "kelp/queries/differences.h"
#include "kelp/writers/jsontext.h"
#include "kelp/writers/scenetextwriter.h"

namespace KelpCli {

namespace {

using Kelp::ObjectDifference;
using Kelp::PropertyDifference;

// "+" for what only the second scene has, "-" for the first, " " for what both have.
template <class Difference>
char markOf(const Difference& difference) {
  if (difference.before == nullptr) return '+';
  return difference.after == nullptr ? '-' : ' ';
}

const char* wordOf(char mark) {
  if (mark == ' ') return "changed";
  return mark == '+' ? "added" : "removed";
}

// ---- for reading -------------------------------------------------------------------------------

// Lines that begin with a mark, in its colour.
class MarkedLines {
 public:
  MarkedLines(std::ostream& stream, bool withColours) : out(stream), coloured(withColours) {}

  void add(char mark, std::string_view line) {
    const bool colours = coloured && mark != ' ';
    if (colours) out << (mark == '+' ? "\x1b[32m" : "\x1b[31m");
    out << mark << ' ' << line;
    if (colours) out << "\x1b[0m";
    out << '\n';
  }

 private:
  std::ostream& out;
  const bool coloured;
};

struct Enough {};

// A property as scene text, of which no more than so many lines are shown.
class PropertyLines {
 public:
  PropertyLines(MarkedLines& markedLines, char lineMark, int most)
      : lines(markedLines), mark(lineMark), left(most) {}

  void write(const Kelp::PropertyAST& property) {
    try {
      Kelp::SceneTextWriter writer([this](std::string_view piece) { take(piece); });
      writer.write(property);
      writer.finish();
    } catch (const Enough&) {
      lines.add(mark, "    ...");
    }
  }

 private:
  void take(std::string_view piece) {
    rest += piece;
    size_t start = 0;
    for (size_t end = 0; (end = rest.find('\n', start)) != std::string::npos; start = end + 1) {
      if (left-- == 0) throw Enough();
      lines.add(mark, std::string_view(rest).substr(start, end - start));
    }
    rest.erase(0, start);
  }

  MarkedLines& lines;
  const char mark;
  int left;
  std::string rest;
};

std::string headline(const Kelp::ObjectAST& object) {
  std::string line(Kelp::viewOf(object.type));
  if (!object.name.isEmpty()) line += fmt::format(" {}", Kelp::viewOf(object.name));
  return line;
}

void writeText(MarkedLines& lines, const ObjectDifference& difference, int mostLines) {
  const auto& object = difference.before != nullptr ? *difference.before : *difference.after;
  lines.add(markOf(difference), headline(object));
  for (const auto& [before, after] : difference.properties) {
    if (before != nullptr) PropertyLines(lines, '-', mostLines).write(*before);
    if (after != nullptr) PropertyLines(lines, '+', mostLines).write(*after);
  }
}

// ---- JSON --------------------------------------------------------------------------------------

void writeValue(Kelp::JsonText& json, const char* key, const Kelp::PropertyAST* property) {
  if (property == nullptr) return;
  std::string text;
  Kelp::SceneTextWriter writer([&text](std::string_view piece) { text += piece; });
  writer.write(*property->value);
  writer.finish();
  text.pop_back();  // the end of the line
  json.key(key).text(text);
}

void writeJson(Kelp::JsonText& json, const ObjectDifference& difference) {
  const auto& object = difference.before != nullptr ? *difference.before : *difference.after;
  json.beginObject();
  json.key("change").text(wordOf(markOf(difference)));
  json.key("type").text(Kelp::viewOf(object.type));
  json.key("name").text(Kelp::viewOf(object.name));
  json.key("properties").beginArray();
  for (const PropertyDifference& each : difference.properties) {
    const auto& property = each.before != nullptr ? *each.before : *each.after;
    json.beginObject();
    json.key("change").text(wordOf(markOf(each)));
    json.key("name").text(Kelp::viewOf(property.name));
    writeValue(json, "before", each.before);
    writeValue(json, "after", each.after);
    json.endObject();
  }
  json.endArray();
  json.endObject();
  json.newLine();
}

// ---- the command -------------------------------------------------------------------------------

class DiffCommand final : public Command {
 public:
  DiffCommand() : Command("diff", "Say what two scenes mean differently") {}

  void declare(CLI::App& app) override {
    addFiles(app, options, "The two scenes; - is standard input");
    CLI::Option* quiet = app.add_flag("-q,--quiet", isQuiet, "Print nothing: the exit code tells");
    CLI::Option* full = app.add_flag("--full", isFull, "Print long values whole");
    addJson(app, options);
    quiet->excludes(full)->excludes("--json");
    full->excludes("--json");
    addOutput(app, options);
    addSceneOptions(app, options);
    app.footer(
        "Order does not count, and of several values of a property only the last one does.\n"
        "Exit codes: 0 the scenes mean the same, 1 they differ, 2 one cannot be read, the output\n"
        "cannot be written or the usage is wrong.");
  }

  void check() override {
    if (options.files.size() != 2) throw UsageError{"diff takes two FILEs"};
    if (options.files[0] == "-" && options.files[1] == "-") {
      throw UsageError{"standard input cannot be both scenes"};
    }
  }

  ExitCode run() override {
    const std::array<Input, 2> scenes{readScene(options.files[0], options.scene),
                                      readScene(options.files[1], options.scene)};
    for (const Input& scene : scenes) {
      if (!scene.good()) report(scene.error, options.colour);
    }
    if (!scenes[0].good() || !scenes[1].good()) return kTrouble;
    const std::vector<ObjectDifference> differences =
        Kelp::diffPrograms(*scenes[0].scene->program(), *scenes[1].scene->program());
    if (!isQuiet) write(differences);
    return differences.empty() ? kGood : kInvalid;
  }

 private:
  void write(const std::vector<ObjectDifference>& differences) const {
    Output output(options.output);
    Kelp::JsonText json(output.textSink());
    const bool toTerminal = options.output.empty() && wantsColours(options.colour, STDOUT_FILENO);
    MarkedLines lines(output.stream(), toTerminal);
    constexpr int kFewLines = 5;
    for (const ObjectDifference& difference : differences) {
      if (options.json) {
        writeJson(json, difference);
      } else {
        writeText(lines, difference, isFull ? std::numeric_limits<int>::max() : kFewLines);
      }
    }
    output.finish();
  }

  bool isQuiet = false;
  bool isFull = false;
};

}  // namespace

std::unique_ptr<Command> diffCommand() { return std::make_unique<DiffCommand>(); }

}  // namespace KelpCli
