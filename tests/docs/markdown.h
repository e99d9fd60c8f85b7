// The fenced blocks of the documents, for tests that hold them to what they say.
#pragma once

#include <fstream>
#include <sstream>
#include <string>
#include <string_view>
#include <vector>

namespace KelpTest {

/// The contents of a file of the project, by its path from the root; empty when there is none.
inline std::string projectFile(const std::string& path) {
  const std::ifstream file(KELP_SOURCE_DIR "/" + path, std::ios::binary);
  std::ostringstream text;
  text << file.rdbuf();
  return text.str();
}

struct Block {
  int line;  ///< of the document, where the block's text begins
  std::string text;
};

/// All blocks of a document that are fenced as ```language.
inline std::vector<Block> blocksOf(const std::string& document, std::string_view language) {
  std::vector<Block> blocks;
  std::istringstream lines(document);
  std::string line;
  bool inside = false;
  bool wanted = false;
  for (int number = 1; std::getline(lines, line); ++number) {
    if (line.starts_with("```")) {
      inside = !inside;
      wanted = inside && line.substr(3) == language;
      if (wanted) blocks.push_back({number + 1, ""});
    } else if (wanted) {
      blocks.back().text += line + '\n';
    }
  }
  return blocks;
}

}  // namespace KelpTest
