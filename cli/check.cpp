// kelp check: can these scenes be read?
#include <fmt/format.h>

#include <CLI/CLI.hpp>
#include <algorithm>

#include "cli/command.h"
#include "cli/diagnostics.h"
#include "cli/input.h"
#include "cli/jobs.h"
#include "cli/objects.h"
#include "cli/output.h"
#include "kelp/queries/statistics.h"
#include "kelp/source/sourcesreader.h"
#include "kelp/utils/exceptions.h"
#include "kelp/writers/jsontext.h"

namespace KelpCli {

namespace {

struct Figures {
  Kelp::Statistics held;
  int64_t bytes = 0;  // of the file and all that it includes
  double seconds = 0.0;
  double megabytesPerSecond = 0.0;
};

// What a scene holds and how long it took to read it; or why it cannot be read.
struct Checked {
  Figures figures;
  Kelp::SceneError error;

  bool good() const { return error.kind == Kelp::SceneError::Kind::kNone; }
};

void setTime(Figures& figures, int64_t bytes, double seconds) {
  constexpr double kClockTick = 1e-9;
  constexpr double kMegabyte = 1e6;
  figures.bytes = bytes;
  figures.seconds = std::max(seconds, kClockTick);
  figures.megabytesPerSecond = static_cast<double>(bytes) / kMegabyte / figures.seconds;
}

Checked checkWhole(const std::string& file, const Options& options, bool counts) {
  Checked checked;
  const Input input = readScene(file, options.scene);
  checked.error = input.error;
  if (input.good() && counts) {
    checked.figures.held = Kelp::countProgram(*input.scene->program());
    setTime(checked.figures, input.scene->reader().bytesRead(), input.seconds);
  }
  return checked;
}

Checked checkStream(const std::string& file, const Options& options, bool counts) {
  Checked checked;
  const StreamedInput input = streamScene(file, options.scene, [&](const Kelp::ObjectAST& object) {
    if (counts) Kelp::countObject(object, checked.figures.held);
    return Kelp::ObjectFate::kDrop;
  });
  checked.error = input.error;
  setTime(checked.figures, input.bytes, input.seconds);
  return checked;
}

Checked check(const std::string& file, const Options& options, bool counts) {
  return isStreamed(file, options) ? checkStream(file, options, counts)
                                   : checkWhole(file, options, counts);
}

std::string statsLine(const std::string& name, const Figures& figures) {
  return fmt::format(
      "{}: {} bytes, {} objects, {} properties, {} expression nodes, {} list elements, "
      "{:.6f} seconds, {:.1f} MB/s\n",
      name, figures.bytes, figures.held.objects, figures.held.properties,
      figures.held.expressionNodes, figures.held.listElements, figures.seconds,
      figures.megabytesPerSecond);
}

void writeFigures(Kelp::JsonText& json, const Figures& figures) {
  json.key("bytes").integer(figures.bytes);
  json.key("objects").integer(figures.held.objects);
  json.key("properties").integer(figures.held.properties);
  json.key("expressionNodes").integer(figures.held.expressionNodes);
  json.key("listElements").integer(figures.held.listElements);
  json.key("seconds").number(figures.seconds);
  json.key("megabytesPerSecond").number(figures.megabytesPerSecond);
}

void writeIncludes(Kelp::JsonText& json, const std::vector<Kelp::SceneError::Include>& includes) {
  if (includes.empty()) return;
  json.key("includedFrom").beginArray();
  for (const auto& [file, line] : includes) {
    json.beginObject();
    json.key("file").text(file);
    json.key("line").integer(line);
    json.endObject();
  }
  json.endArray();
}

void writeError(Kelp::JsonText& json, const Kelp::SceneError& error) {
  const bool unreadable = error.kind == Kelp::SceneError::Kind::kUnreadable;
  json.key("error").beginObject();
  json.key("kind").text(unreadable ? "unreadable" : "invalid");
  json.key("message").text(error.describe());
  if (!unreadable) {
    json.key("file").text(error.tokenFile);
    json.key("line").integer(error.tokenLine);
    json.key("column").integer(error.column);
    json.key("sourceLine").text(error.sourceLine);
    json.key("readerFile").text(error.file);
    json.key("readerLine").integer(error.line);
    writeIncludes(json, error.includedFrom);
    if (const std::string suggestion = error.suggestion(); !suggestion.empty()) {
      json.key("suggestion").text(suggestion);
    }
  }
  json.endObject();
}

void writeJson(Kelp::JsonText& json, const std::string& name, const Checked& checked) {
  json.beginObject();
  json.key("file").text(name);
  json.key("good").boolean(checked.good());
  if (checked.good()) {
    writeFigures(json, checked.figures);
  } else {
    writeError(json, checked.error);
  }
  json.endObject();
  json.newLine();
}

ExitCode checkFile(const std::string& file, const Options& options, bool stats, Output& output) {
  const Checked checked = check(file, options, stats || options.json);
  if (options.json) {
    Kelp::JsonText json(output.textSink());
    writeJson(json, shownName(file), checked);
  } else if (!checked.good()) {
    report(checked.error, options.colour);
  } else if (stats) {
    output.stream() << statsLine(shownName(file), checked.figures);
  }
  return exitCodeOf(checked.error);
}

class CheckCommand final : public Command {
 public:
  CheckCommand() : Command("check", "Say whether scenes can be read") {}

  void declare(CLI::App& app) override {
    addFiles(app, options, "Scenes; - is standard input");
    addJobs(app, options);
    addStreaming(app, options);
    app.add_flag("--stats", stats, "Print what every scene holds and how fast it is read");
    addJson(app, options);
    addSceneOptions(app, options);
    app.footer(kExitCodes);
  }

  ExitCode run() override {
    Output output;
    const auto work = [this](const std::string& file, Output& out) {
      return checkFile(file, options, stats, out);
    };
    const ExitCode worst = forEachFile(options, output, work);
    output.finish();
    return worst;
  }

 private:
  bool stats = false;
};

}  // namespace

std::unique_ptr<Command> checkCommand() { return std::make_unique<CheckCommand>(); }

}  // namespace KelpCli
