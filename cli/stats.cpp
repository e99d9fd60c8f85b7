// kelp stats: what scenes hold.
#include <fmt/format.h>
#include <unistd.h>

#include <CLI/CLI.hpp>
#include <algorithm>
#include <utility>
#include <vector>

#include "cli/command.h"
#include "cli/diagnostics.h"
#include "cli/input.h"
#include "cli/jobs.h"
#include "cli/objects.h"
#include "cli/output.h"
#include "kelp/queries/inventory.h"
#include "kelp/writers/jsontext.h"

namespace KelpCli {

namespace {

using Counts = std::vector<std::pair<std::string, int64_t>>;

// The most frequent first.
template <class Map>
Counts sorted(const Map& map) {
  Counts counts(map.begin(), map.end());
  std::stable_sort(counts.begin(), counts.end(),
                   [](const auto& a, const auto& b) { return a.second > b.second; });
  return counts;
}

Counts sizesOf(const std::vector<Kelp::Inventory::Sized>& objects) {
  Counts sizes;
  for (const auto& [type, name, size] : objects) {
    sizes.emplace_back(name.empty() ? type : type + ' ' + name, size);
  }
  return sizes;
}

// A heading and one line a count, on a terminal with a bar.
void writeCounts(std::ostream& out, const char* heading, const Counts& counts, bool withBars) {
  if (counts.empty()) return;
  constexpr int64_t kLongestBar = 40;
  size_t width = 0;
  for (const auto& [name, count] : counts) width = std::max(width, name.size());
  const int64_t most = std::max<int64_t>(1, counts.front().second);
  out << heading << '\n';
  for (const auto& [name, count] : counts) {
    const auto bar = static_cast<size_t>(count * kLongestBar / most);
    out << fmt::format("  {:<{}} {:>12}", name, width, count);
    if (withBars) out << "  " << std::string(bar, '#');
    out << '\n';
  }
}

void writeText(std::ostream& out, const std::string& name, const Kelp::Inventory& held,
               bool resolved) {
  const bool withBars = isTerminal(STDOUT_FILENO);
  out << fmt::format("{}: {} objects, {} properties ({} repeated), {} list elements, ", name,
                     held.objects, held.properties, held.repeatedProperties, held.listElements);
  out << fmt::format("{} bytes of hexadecimal text, {} references", held.hexBytes, held.references);
  out << (resolved ? fmt::format(" ({} dangling)\n", held.danglingReferences()) : "\n");
  writeCounts(out, "objects by type", sorted(held.types), withBars);
  writeCounts(out, "expressions by kind", sorted(held.expressions), withBars);
  writeCounts(out, "largest objects (nodes, list elements, hexadecimal bytes)",
              sizesOf(held.largest()), withBars);
}

void writeCounts(Kelp::JsonText& json, const char* key, const Counts& counts) {
  json.key(key).beginArray();
  for (const auto& [name, count] : counts) {
    json.beginObject();
    json.key("name").text(name);
    json.key("count").integer(count);
    json.endObject();
  }
  json.endArray();
}

void writeJson(Kelp::JsonText& json, const std::string& name, const Kelp::Inventory& held,
               bool resolved) {
  json.beginObject();
  json.key("file").text(name);
  json.key("objects").integer(held.objects);
  json.key("properties").integer(held.properties);
  json.key("repeatedProperties").integer(held.repeatedProperties);
  json.key("listElements").integer(held.listElements);
  json.key("hexBytes").integer(held.hexBytes);
  json.key("references").integer(held.references);
  if (resolved) json.key("danglingReferences").integer(held.danglingReferences());
  writeCounts(json, "types", sorted(held.types));
  writeCounts(json, "expressions", sorted(held.expressions));
  json.key("largest").beginArray();
  for (const auto& [type, object, size] : held.largest()) {
    json.beginObject();
    json.key("type").text(type);
    json.key("name").text(object);
    json.key("size").integer(size);
    json.endObject();
  }
  json.endArray();
  json.endObject();
  json.newLine();
}

ExitCode count(const std::string& file, const Options& options, Output& output) {
  // All names of a scene that does not fit into memory do not fit either.
  const bool resolved = !isStreamed(file, options);
  Kelp::Inventory held(resolved);
  const Kelp::SceneError error =
      forEachObject(file, options, [&held](const Kelp::ObjectAST& object) { held.add(object); });
  if (error.kind != Kelp::SceneError::Kind::kNone) {
    report(error, options.colour);
  } else if (options.json) {
    Kelp::JsonText json(output.textSink());
    writeJson(json, shownName(file), held, resolved);
  } else {
    writeText(output.stream(), shownName(file), held, resolved);
  }
  return exitCodeOf(error);
}

class StatsCommand final : public Command {
 public:
  StatsCommand() : Command("stats", "Count what scenes hold") {}

  void declare(CLI::App& app) override {
    addFiles(app, options, "Scenes; - is standard input");
    addJobs(app, options);
    addJson(app, options);
    addStreaming(app, options);
    addSceneOptions(app, options);
    app.footer(kExitCodes);
  }

  ExitCode run() override {
    Output output;
    const auto work = [this](const std::string& file, Output& out) {
      return count(file, options, out);
    };
    const ExitCode worst = forEachFile(options, output, work);
    output.finish();
    return worst;
  }
};

}  // namespace

std::unique_ptr<Command> statsCommand() { return std::make_unique<StatsCommand>(); }

}  // namespace KelpCli
