// kelp check: can these scenes be read?
#include <fmt/format.h>

#include <algorithm>

#include "cli/commands.h"
#include "cli/diagnostics.h"
#include "cli/input.h"
#include "cli/jsonwriter.h"
#include "cli/output.h"
#include "kelp/source/sourcesreader.h"
#include "kelp/writers/statistics.h"

namespace KelpCli {

namespace {

struct Figures {
  Kelp::Statistics held;
  int64_t bytes = 0;  // of the file and all that it includes
  double seconds = 0.0;
  double megabytesPerSecond = 0.0;
};

Figures figuresOf(const Input& input) {
  constexpr double kClockTick = 1e-9;
  constexpr double kMegabyte = 1e6;
  Figures figures;
  figures.held = Kelp::countProgram(*input.scene->program());
  figures.bytes = input.scene->reader().bytesRead();
  figures.seconds = std::max(input.seconds, kClockTick);
  figures.megabytesPerSecond = static_cast<double>(figures.bytes) / kMegabyte / figures.seconds;
  return figures;
}

std::string statsLine(const std::string& name, const Figures& figures) {
  return fmt::format(
      "{}: {} bytes, {} objects, {} properties, {} expression nodes, {} list elements, "
      "{:.6f} seconds, {:.1f} MB/s\n",
      name, figures.bytes, figures.held.objects, figures.held.properties,
      figures.held.expressionNodes, figures.held.listElements, figures.seconds,
      figures.megabytesPerSecond);
}

void writeFigures(JsonWriter& json, const Figures& figures) {
  json.key("bytes").integer(figures.bytes);
  json.key("objects").integer(figures.held.objects);
  json.key("properties").integer(figures.held.properties);
  json.key("expressionNodes").integer(figures.held.expressionNodes);
  json.key("listElements").integer(figures.held.listElements);
  json.key("seconds").number(figures.seconds);
  json.key("megabytesPerSecond").number(figures.megabytesPerSecond);
}

void writeError(JsonWriter& json, const Kelp::SceneError& error) {
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
  }
  json.endObject();
}

void writeJson(JsonWriter& json, const std::string& name, const Input& input) {
  json.beginObject();
  json.key("file").text(name);
  json.key("good").boolean(input.good());
  if (input.good()) {
    writeFigures(json, figuresOf(input));
  } else {
    writeError(json, input.error);
  }
  json.endObject();
  json.newLine();
}

}  // namespace

ExitCode runCheck(const Options& options) {
  Output output;
  JsonWriter json(output.stream());
  ExitCode worst = kGood;
  for (const std::string& file : options.files) {
    const Input input = readScene(file, options.scene);
    worst = std::max(worst, exitCodeOf(input.error));
    if (options.json) {
      writeJson(json, shownName(file), input);
    } else if (!input.good()) {
      report(input.error, options.colour);
    } else if (options.stats) {
      output.stream() << statsLine(shownName(file), figuresOf(input));
    }
    // What goes to the two outputs stays in order, and results of long runs are seen early.
    output.flush();
  }
  output.finish();
  return worst;
}

}  // namespace KelpCli
