#include "cli/filenames.h"

#include "cli/input.h"

namespace KelpCli {

std::optional<std::string> FileNames::next() {
  std::optional<std::string> name;
  if (given < options.files.size()) {
    name = options.files[given++];
  } else if (!options.filesFrom.empty()) {
    do name = _nextLine();
    while (name == "");
  }
  if (name == "-" && options.filesFrom == "-") {
    throw UsageError{"--files-from: standard input cannot be the list and a scene"};
  }
  return name;
}

std::optional<std::string> FileNames::_nextLine() {
  const char separator = options.nulSeparated ? '\0' : '\n';
  std::string line;
  while (at < block.size() || _readBlock()) {
    const size_t end = block.find(separator, at);
    if (end != std::string::npos) {
      line.append(block, at, end - at);
      at = end + 1;
      return line;
    }
    line.append(block, at);
    at = block.size();
  }
  if (line.empty()) return std::nullopt;
  return line;
}

bool FileNames::_readBlock() {
  if (!list.read) {
    list =
        options.filesFrom == "-" ? standardInput() : Kelp::TextInput::fromFile(options.filesFrom);
  }
  constexpr size_t kBlock = 65536;
  block.resize(kBlock);
  at = 0;
  block.resize(list.read(block.data(), kBlock));
  return !block.empty();
}

}  // namespace KelpCli
