// kelp dump: the tree of a scene.
#include "cli/commands.h"
#include "cli/diagnostics.h"
#include "cli/input.h"
#include "cli/output.h"
#include "cli/treejson.h"
#include "kelp/writers/treelisting.h"

namespace KelpCli {

ExitCode runDump(const Options& options) {
  const std::string& file = options.files.front();
  const Input input = readScene(file, options.scene);
  if (!input.good()) {
    report(input.error, options.colour);
    return exitCodeOf(input.error);
  }
  Output output(options.output);
  if (options.format == Format::kJson) {
    writeTreeJson(output.stream(), shownName(file), *input.scene->program());
  } else {
    Kelp::writeTreeListing(output.stream(), *input.scene->program());
  }
  output.finish();
  return kGood;
}

}  // namespace KelpCli
