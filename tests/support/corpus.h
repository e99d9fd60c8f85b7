// The scenes under tests/corpus: y_NAME is accepted, n_NAME is refused, i_NAME meets a limit.
#pragma once

#include <filesystem>
#include <string>
#include <vector>

#include "kelp/parser/treeparser.h"

namespace KelpTest {

/// The names, without extension, of the scenes whose names begin with `prefix`, sorted.
std::vector<std::string> corpusNames(const char* prefix);

/// The path of the file `stem` + `extension` (".scene", ".golden", ".affix", ...).
std::filesystem::path corpusPath(const std::string& stem, const std::string& extension);

/// The bytes of that file, "" when there is none.
std::string corpusText(const std::string& stem, const std::string& extension);

/// Gives the parser the affix that the file NAME.affix names: "prefix TEXT" or "suffix TEXT".
void setCorpusAffix(Kelp::TreeParser& parser, const std::string& stem);

/// Reader, scanner and parser over one scene of the corpus, affix included.
class CorpusParser {
 public:
  explicit CorpusParser(const std::string& stem);

  Kelp::SourcesReader reader;
  Kelp::Scanner scanner{&reader};
  Kelp::TreeParser parser{&scanner};
};

/// The objects as S-expressions, one a line and in text order, as in the .golden files.
std::string objectLines(const Kelp::ProgramAST& program);

/// objectLines of a scene of the corpus, or "error: TEXT\n" with the recorded text.
std::string corpusTree(const std::string& stem);

}  // namespace KelpTest
