// Every accepted scene cut, and with each of its tokens deleted, doubled, swapped and replaced:
// whatever comes of it, it is a tree or an error, and nothing is lost.
#include <gtest/gtest.h>

#include "tests/support/corpus.h"
#include "tests/support/dirt.h"
#include "tests/support/figures.h"
#include "tests/support/parsing.h"
#include "tests/support/scanners.h"
#include "tests/support/sexpression.h"

using namespace Kelp;
using namespace KelpTest;

namespace {

using Tokens = std::vector<ListedToken>;

// Nodes of each kind that are dirty before every case: a failure must not follow what they hold.
constexpr int kDirtyNodes = 2;

struct Counts {
  long long cases = 0;
  long long trees = 0;
  long long errors = 0;
};

// In everyday runs one case of about so many.
constexpr uint32_t kSample = 8;

// Chosen by a hash, so that the sample does not keep step with the kinds of change.
bool isWanted(Counts& counts) {
  const auto hash = static_cast<uint32_t>(++counts.cases) * 2654435761U;
  return hasTimeForAll() || hash < UINT32_MAX / kSample;
}

ListedToken stringToken(const std::string& text) {
  return {TOKEN_STRING, text, 0, {reinterpret_cast<uintptr_t>(text.data()), text.size(), 0}};
}

// Every kind of token with a text that it may have and with none, codes that no token has, and
// strings with a record.
const Tokens& replacements() {
  static const std::string text = "text";
  static const std::string longText(1100, 'x');
  static const Tokens tokens = [] {
    Tokens all;
    for (const char* name : {"b", "Vector", "Color", "sin", "List", "ListInt", "interpolate"}) {
      all.push_back({TOKEN_IDENTIFIER, name});
    }
    for (int code = -1; code <= TOKEN_UNKNOWN + 1; ++code) {
      const auto type = static_cast<TOKENTYPE>(code);
      const std::string spelling = tokenSpelling(type);
      all.push_back({type, ""});
      if (type == TOKEN_NUMBER) all.push_back({type, "1.5"});
      if (type == TOKEN_UNKNOWN) all.push_back({type, "?"});
      if (spelling.size() == 1) all.push_back({type, spelling});
    }
    all.push_back(stringToken(text));
    all.push_back(stringToken(longText));
    all.back().overflowCount = static_cast<int32_t>(longText.size()) - 1023;
    return all;
  }();
  return tokens;
}

// A scene of the corpus as tokens, whose records point into its reader.
struct TokenScene {
  explicit TokenScene(const std::string& name) : source(name) {
    Token token;
    for (source.scanner.scan(token); token.type != TOKEN_END; source.scanner.scan(token)) {
      tokens.push_back({token.type,
                        {token.text.data, static_cast<size_t>(token.text.count)},
                        token.overflowCount,
                        {token.overflow[0], token.overflow[1], token.overflow[2]}});
    }
  }

  CorpusParser source;
  Tokens tokens;
};

// Calls `act` with the tokens cut before each of them and with every single change to them.
template <class Act>
void forEachDerivation(const Tokens& tokens, const Act& act) {
  for (size_t i = 0; i < tokens.size(); ++i) {
    const auto at = static_cast<Tokens::difference_type>(i);
    act(Tokens(tokens.begin(), tokens.begin() + at));
    Tokens changed = tokens;
    changed.erase(changed.begin() + at);
    act(changed);
    changed.insert(changed.begin() + at, 2, tokens[i]);
    act(changed);
    changed.erase(changed.begin() + at);
    if (i + 1 < tokens.size()) {
      std::swap(changed[i], changed[i + 1]);
      act(changed);
      std::swap(changed[i], changed[i + 1]);
    }
    for (const ListedToken& replacement : replacements()) {
      changed[i] = replacement;
      act(changed);
    }
  }
}

std::string shown(const Tokens& tokens) {
  std::string text;
  for (const ListedToken& token : tokens)
    text += std::to_string(token.type) + ":" + token.text + " ";
  return text;
}

// What is wrong with a program and the references recorded for it; "" when nothing is.
std::string wrongWith(const ProgramAST& program, const Table<CharString*, 100>& references) {
  const std::string tree = sexpression(program);
  for (int i = 0; i < references.count; ++i) {
    const CharString& name = *references.data[i];
    if (tree.find(name.isNull() ? "null" : name.chars()) == std::string::npos) {
      return "a recorded reference is not in the tree";
    }
  }
  return "";
}

// Parses to the end and says what is wrong with what came of it: it has to be a tree, or an error
// that left no recorded reference.
std::string parse(TreeParser& parser, Counts& counts) {
  parser.collectReferenceNames = 1;
  leaveDirtInPools(kDirtyNodes);
  try {
    const auto_ast<ProgramAST> program(parser.parseProgram());
    if (program.get() != nullptr) {
      ++counts.trees;
      return wrongWith(*program.get(), parser.referenceNames);
    }
    if (parser.errorInfo.getErrorText().isNull()) return "there is neither a tree nor an error";
  } catch (const InvalidSourceFile&) {
  }
  ++counts.errors;
  return parser.referenceNames.count == 0 ? "" : "references of a failed parse are left";
}

// The first thing that is wrong after a parse has gone; "" when nothing is.
std::string wrongAfterwards(int liveBefore) {
  if (livePoolElements() != liveBefore) return "pool elements are lost";
  const bool good = parsedScene("A a { x = Vector(1, b.c[2], \"t\"); }") ==
                    "(scene (obj \"A\" \"a\" (= \"x\" (vec 1 (idx (prop \"b\" \"c\") 2) \"t\"))))";
  return good ? "" : "a good scene is not read any more";
}

void expectNothingLost(const Tokens& tokens, const TokenScene& scene, Counts& counts) {
  const int live = livePoolElements();
  std::string wrong;
  {
    SourcesReader reader;
    ListedScanner scanner(&reader, tokens);
    TreeParser parser(&scanner);
    parser.nameAffix = scene.source.parser.nameAffix;
    parser.affixIsSuffix = scene.source.parser.affixIsSuffix;
    wrong = parse(parser, counts);
  }
  wrong += wrongAfterwards(live);
  EXPECT_EQ(wrong, "") << shown(tokens);
}

void expectNothingLostInText(std::string_view text, const std::string& name, Counts& counts) {
  const int live = livePoolElements();
  std::string wrong;
  {
    TextParser source(text, corpusPath(name, ".scene").c_str());
    setCorpusAffix(source.parser, name);
    wrong = parse(source.parser, counts);
  }
  wrong += wrongAfterwards(live);
  EXPECT_EQ(wrong, "") << text;
}

std::string figure(const Counts& counts) {
  return grouped(counts.trees + counts.errors) + " of " + grouped(counts.cases) + " cases, " +
         grouped(counts.trees) + " trees and " + grouped(counts.errors) +
         " errors on dirty pools, live counts back";
}

}  // namespace

TEST(DerivedNegatives, EveryChangeOfATokenGivesATreeOrAnError) {
  Counts counts;
  for (const std::string& name : corpusNames("y_")) {
    const TokenScene scene(name);
    forEachDerivation(scene.tokens, [&](const Tokens& tokens) {
      if (isWanted(counts)) expectNothingLost(tokens, scene, counts);
    });
  }
  EXPECT_GE(counts.trees + counts.errors, 90000);
  EXPECT_GT(counts.trees, 0);
  EXPECT_GT(counts.errors, 0);
  reportFigure("derived negatives", figure(counts));
}

TEST(DerivedNegatives, EveryCutOfATextGivesATreeOrAnError) {
  Counts counts;
  for (const std::string& name : corpusNames("y_")) {
    const std::string text = corpusText(name, ".scene");
    for (size_t length = 0; length < text.size(); ++length) {
      if (!isWanted(counts)) continue;
      expectNothingLostInText(std::string_view(text).substr(0, length), name, counts);
    }
  }
  EXPECT_GT(counts.trees, 0);
  EXPECT_GT(counts.errors, 0);
  reportFigure("derived negatives, text cut", figure(counts));
}
