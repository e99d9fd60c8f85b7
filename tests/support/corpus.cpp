#include "tests/support/corpus.h"

#include <algorithm>
#include <fstream>
#include <sstream>

#include "tests/support/sexpression.h"

namespace KelpTest {

using namespace Kelp;

namespace {

const std::filesystem::path kCorpus = std::filesystem::path(KELP_SOURCE_DIR) / "tests" / "corpus";

}  // namespace

std::vector<std::string> corpusNames(const char* prefix) {
  std::vector<std::string> names;
  for (const auto& entry : std::filesystem::directory_iterator(kCorpus)) {
    const std::string stem = entry.path().stem().string();
    if (entry.path().extension() == ".scene" && stem.starts_with(prefix)) names.push_back(stem);
  }
  std::sort(names.begin(), names.end());
  return names;
}

std::filesystem::path corpusPath(const std::string& stem, const std::string& extension) {
  return kCorpus / (stem + extension);
}

std::string corpusText(const std::string& stem, const std::string& extension) {
  std::ifstream file(corpusPath(stem, extension), std::ios::binary);
  std::ostringstream text;
  text << file.rdbuf();
  return text.str();
}

void setCorpusAffix(TreeParser& parser, const std::string& stem) {
  std::ifstream file(corpusPath(stem, ".affix"));
  std::string side;
  std::string affix;
  if (!(file >> side >> affix)) return;
  parser.nameAffix = affix.c_str();
  parser.affixIsSuffix = side == "suffix";
}

CorpusParser::CorpusParser(const std::string& stem) {
  reader.openFile(corpusPath(stem, ".scene").c_str());
  setCorpusAffix(parser, stem);
}

std::string objectLines(const ProgramAST& program) {
  std::string lines;
  for (const ObjectAST* object : objectsInTextOrder(program)) lines += sexpression(*object) + '\n';
  return lines;
}

std::string corpusTree(const std::string& stem) {
  CorpusParser source(stem);
  const auto_ast<ProgramAST> program(source.parser.parseProgram());
  if (program.get() != nullptr) return objectLines(*program.get());
  const CharString& text = source.parser.errorInfo.getErrorText();
  return std::string("error: ") + (text.isNull() ? "<null>" : text.chars()) + '\n';
}

}  // namespace KelpTest
