// Tokens that no text gives: settings, then the tokens that a scanner hands to the parser.
#include "tests/fuzz/checks.h"
#include "tests/fuzz/targets.h"
#include "tests/models/mismatch.h"
#include "tests/support/scanners.h"
#include "tests/support/sexpression.h"

namespace KelpTest {

using namespace Kelp;

namespace {

// Spellings that the grammar knows, and a few that it does not. Some are of the wrong type for
// their text most of the time.
constexpr const char* kSpellings[] = {
    "",
    "a",
    "b",
    "List",
    "interpolate",
    "Vector",
    "Color",
    "AColor",
    "Matrix",
    "Transform",
    "TransformHex",
    "ListVector",
    "ListVectorHex",
    "ListInt",
    "ListIntHex",
    "ListString",
    "ListFloat",
    "ListFloatHex",
    "ListColor",
    "ListColorHex",
    "sin",
    "random",
    "select",
    "frame",
    "x",
    "alpha",
    "offset",
    "1",
    "2.5e3",
    "nan",
    "1.#INF",
    "0e400",
};

constexpr TOKENTYPE kTypes[] = {
#define KELP_TOKEN(code, enumerator, spelling) enumerator,
#include "kelp/source/tokens.def"
#undef KELP_TOKEN
};

/// What a scanner may throw that the parser knows nothing of.
struct ScanStopped {};

/// Hands out listed tokens until it throws.
class FailingScanner final : public Scanner {
 public:
  FailingScanner(SourcesReader* source, std::vector<ListedToken> tokens, int failingToken,
                 bool known)
      : Scanner(source), inner(source, std::move(tokens)), left(failingToken), knownKind(known) {}

  void scan(Token& token) override {
    countDown();
    inner.scan(token);
  }
  void skipScan(Token& token) override {
    countDown();
    inner.skipScan(token);
  }

 private:
  void countDown() {
    if (left == 0 || --left > 0) return;
    left = 1;
    if (!knownKind) throw ScanStopped();
    throw InvalidSourceFile("no more");
  }

  ListedScanner inner;
  int left;  // 0: never
  bool knownKind;
};

struct Settings {
  bool collecting, filtered, knownException, suffix;
  const char* affix;
  int failingToken;
  int depth;
};

Settings readSettings(ByteChoices& input) {
  const uint8_t bits = input.byte();
  Settings settings{};
  settings.collecting = (bits & 1U) != 0;
  settings.filtered = (bits & 2U) != 0;
  settings.knownException = (bits & 4U) != 0;
  settings.suffix = (bits & 8U) != 0;
  settings.affix = (bits & 16U) != 0 ? "affix_" : nullptr;
  settings.failingToken = input.byte();
  settings.depth = input.byte();
  return settings;
}

// One byte says the type and whether a record comes with the token, the next ones the text.
ListedToken readToken(ByteChoices& input, const std::string& recorded) {
  const uint8_t kind = input.byte();
  ListedToken token{kTypes[(kind & 31U) % std::size(kTypes)], "", 0, {0, 0, 0}};
  if ((kind & 32U) != 0) {
    token.overflow[0] = reinterpret_cast<uint64_t>(recorded.data());
    token.overflow[1] = recorded.size();
  }
  if ((kind & 64U) != 0) {
    uint32_t count = 0;
    for (int i = 0; i < 4; ++i) count = count << 8U | input.byte();
    token.overflowCount = static_cast<int>(count);
  }
  if ((kind & 128U) != 0) token.type = static_cast<TOKENTYPE>(input.byte() - 3);
  const uint8_t text = input.byte();
  token.text =
      text < std::size(kSpellings) ? kSpellings[text] : input.take(text - std::size(kSpellings));
  return token;
}

void parse(TreeParser& parser, auto_ast<ProgramAST>& program) {
  try {
    program.reset(parser.parseProgram());
  } catch (const InvalidSourceFile&) {
  } catch (const ScanStopped&) {
  }
}

std::string parsedTokens(const std::vector<ListedToken>& tokens, const Settings& settings,
                         Shortage& shortage) {
  SourcesReader reader;
  reader.openText("", 0, "scenes/none.scene");
  FailingScanner scanner(&reader, tokens, settings.failingToken, settings.knownException);
  TreeParser parser(&scanner);
  parser.collectReferenceNames = settings.collecting ? 1 : 0;
  parser.affixIsSuffix = settings.suffix;
  parser.nameAffix = settings.affix;
  parser.maxNestingDepth = settings.depth == 0 ? 1000 : settings.depth;
  auto_ast<ProgramAST> program(nullptr);
  shortage.run([&] { parse(parser, program); });
  if (program.get() == nullptr) {
    expectSame("references recorded by a failed parse", 0, parser.referenceNames.count);
    return "";
  }
  if (settings.filtered) shortage.run([&] { filterByName(parser, program.get()); });
  return sexpression(*program.get());
}

}  // namespace

int fuzzTokens(const uint8_t* data, size_t size) {
  takeDownGoodScenes();
  ByteChoices input(data, size);
  Shortage shortage(input);
  const Settings settings = readSettings(input);
  const std::string recorded = "a text that the scanner recorded";
  std::vector<ListedToken> tokens;
  while (!input.atEnd()) tokens.push_back(readToken(input, recorded));
  const NodeBalance balance;
  std::string trees[2];
  for (std::string& tree : trees) {
    tree = parsedTokens(tokens, settings, shortage);
    balance.expectRestored(shortage);
  }
  if (shortage.hasStruck()) {
    expectGoodSceneToParse(size);
  } else {
    expectSame("the second parse", trees[0], trees[1]);
  }
  return 0;
}

}  // namespace KelpTest
