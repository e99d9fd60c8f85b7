// Scenes with a token too few or too many, at every token.
#include <gtest/gtest.h>

#include "tests/support/balance.h"
#include "tests/support/richscenes.h"
#include "tests/support/scanners.h"

using namespace Kelp;
using namespace KelpTest;

namespace {

using Tokens = std::vector<ListedToken>;

// The tokens of a scene. Their records point into the reader.
Tokens tokensOf(SourcesReader& reader, const std::string& scene) {
  reader.openText(scene.data(), static_cast<int64_t>(scene.size()), "scenes/test.scene");
  Scanner scanner(&reader);
  Tokens tokens;
  for (Token token; scanner.scan(token), token.type != TOKEN_END;) {
    tokens.push_back({token.type,
                      std::string(token.text.data, static_cast<size_t>(token.text.count)),
                      token.overflowCount,
                      {token.overflow[0], token.overflow[1], token.overflow[2]}});
  }
  return tokens;
}

void expectTreeOrRecord(SourcesReader& reader, const Tokens& tokens) {
  expectBalanced([&] {
    ListedScanner scanner(&reader, tokens);
    TreeParser parser(&scanner);
    parser.collectReferenceNames = 1;
    const auto_ast<ProgramAST> program(parser.parseProgram());
    if (program.get() != nullptr) return;
    EXPECT_EQ(parser.referenceNames.count, 0);
    EXPECT_FALSE(parser.errorInfo.getErrorText().isNull());
  });
}

// Gives `change` the tokens of every scene and a number of one of them.
template <class Change>
void changeEveryToken(const Change& change) {
  for (const std::string& scene : richScenes()) {
    SCOPED_TRACE(scene);
    SourcesReader reader;
    const Tokens tokens = tokensOf(reader, scene);
    for (size_t k = 0; k < tokens.size(); ++k) {
      SCOPED_TRACE(k);
      Tokens changed = tokens;
      change(changed, changed.begin() + static_cast<std::ptrdiff_t>(k));
      expectTreeOrRecord(reader, changed);
    }
  }
}

}  // namespace

TEST(Failure, AtAnEndBehindAnyTokenLeavesNothing) {
  changeEveryToken([](Tokens& tokens, Tokens::iterator at) { tokens.erase(at, tokens.end()); });
}

TEST(Failure, AtAnyMissingTokenLeavesNothing) {
  changeEveryToken([](Tokens& tokens, Tokens::iterator at) { tokens.erase(at); });
}

TEST(Failure, AtAnyRepeatedTokenLeavesNothing) {
  changeEveryToken(
      [](Tokens& tokens, Tokens::iterator at) { tokens.insert(at, ListedToken(*at)); });
}

TEST(Failure, AtAnyTokenOfAnotherKindLeavesNothing) {
  for (const TOKENTYPE type : {TOKEN_SEMICOLON, TOKEN_RPAREN, TOKEN_IDENTIFIER, TOKEN_STRING,
                               TOKEN_NUMBER, TOKEN_LPAREN, TOKEN_COMMA, TOKEN_UNKNOWN}) {
    changeEveryToken([type](Tokens&, Tokens::iterator at) { at->type = type; });
  }
}

TEST(Failure, TheWholeScenesAreGood) {
  for (const std::string& scene : richScenes()) {
    TextParser source(scene);
    const auto_ast<ProgramAST> program(source.parser.parseProgram());
    EXPECT_NE(program.get(), nullptr) << scene;
  }
}
