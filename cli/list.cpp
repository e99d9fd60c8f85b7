// kelp list: the objects of a scene as a table.
#include <fmt/format.h>

#include <CLI/CLI.hpp>
#include <algorithm>
#include <array>
#include <vector>

#include "cli/command.h"
#include "cli/diagnostics.h"
#include "cli/objects.h"
#include "cli/output.h"
#include "kelp/writers/jsontext.h"

namespace KelpCli {

namespace {

std::string textOf(const Kelp::CharString& text) {
  return text.isNull() ? std::string() : text.chars();
}

// What is shown of one object. Its place is that of its first property, the first place that the
// tree knows.
struct Row {
  explicit Row(const Kelp::ObjectAST& object)
      : type(textOf(object.type)), name(textOf(object.name)) {
    for (const auto* each = object.firstProperty; each != nullptr; each = each->next) ++properties;
    if (object.firstProperty == nullptr) return;
    file = textOf(object.firstProperty->file);
    line = object.firstProperty->line;
  }

  std::array<std::string, 4> cells() const {
    return {type, name.empty() ? "-" : name, std::to_string(properties),
            line > 0 ? file + ':' + std::to_string(line) : "-"};
  }

  void write(Kelp::JsonText& json) const {
    json.beginObject();
    json.key("type").text(type);
    json.key("name").text(name);
    json.key("properties").integer(properties);
    if (line > 0) {
      json.key("file").text(file);
      json.key("line").integer(line);
    }
    json.endObject();
    json.newLine();
  }

  std::string type;
  std::string name;
  int64_t properties = 0;
  std::string file;
  int line = 0;  // 0: an object without properties
};

// Rows in columns. The first rows are held back to see how wide the columns are; those behind them
// are written as they come, however many there are.
class Table {
 public:
  explicit Table(std::ostream& stream) : out(stream) {
    rows.push_back({"TYPE", "NAME", "PROPERTIES", "PLACE"});
  }

  void add(const Row& row) {
    if (isSettled) return writeRow(row.cells());
    rows.push_back(row.cells());
    if (rows.size() > kHeldBack) settle();
  }

  /// To be called in the end.
  void finish() {
    if (!isSettled) settle();
  }

 private:
  using Cells = std::array<std::string, 4>;
  static constexpr size_t kHeldBack = 1000;

  void settle() {
    for (const Cells& row : rows) {
      for (size_t i = 0; i < row.size(); ++i) widths[i] = std::max(widths[i], row[i].size());
    }
    for (const Cells& row : rows) writeRow(row);
    rows.clear();
    isSettled = true;
  }

  void writeRow(const Cells& cells) {
    out << fmt::format("{:<{}}  {:<{}}  {:>{}}  {}\n", cells[0], widths[0], cells[1], widths[1],
                       cells[2], widths[2], cells[3]);
  }

  std::ostream& out;
  std::vector<Cells> rows;
  std::array<size_t, 4> widths{};
  bool isSettled = false;
};

class ListCommand final : public Command {
 public:
  ListCommand() : Command("list", "Print a table of the objects of a scene") {}

  void declare(CLI::App& app) override {
    addFiles(app, options, "The scene; - is standard input");
    app.add_option("--type", typePattern, "Only objects of types like GLOB")->type_name("GLOB");
    app.add_option("--name", namePattern, "Only objects of names like GLOB")->type_name("GLOB");
    addJson(app, options);
    addOutput(app, options);
    addStreaming(app, options);
    addSceneOptions(app, options);
    app.footer(kExitCodes);
  }

  void check() override { requireOneFile(); }

  ExitCode run() override {
    Output output(options.output);
    Kelp::JsonText json(output.textSink());
    Table table(output.stream());
    const auto show = [&](const Kelp::ObjectAST& object) {
      if (!matches(typePattern, object.type) || !matches(namePattern, object.name)) return;
      const Row row(object);
      if (options.json) {
        row.write(json);
      } else {
        table.add(row);
      }
    };
    const Kelp::SceneError error = forEachObject(options.files.front(), options, show);
    if (!options.json) table.finish();
    if (error.kind == Kelp::SceneError::Kind::kNone) {
      output.finish();
      return kGood;
    }
    if (options.output.empty()) output.flush();  // what was found before the error
    report(error, options.colour);
    return exitCodeOf(error);
  }

 private:
  std::string typePattern;  // of the shell; empty: all
  std::string namePattern;
};

}  // namespace

std::unique_ptr<Command> listCommand() { return std::make_unique<ListCommand>(); }

}  // namespace KelpCli
