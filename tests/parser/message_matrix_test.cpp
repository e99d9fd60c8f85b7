// The matrix of messages: how its tables are tried, and that no message is without a place.
#include "tests/parser/message_matrix.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <set>
#include <sstream>

#include "kelp/scene.h"
#include "tests/support/balance.h"
#include "tests/support/figures.h"
#include "tests/support/scanners.h"
#include "tests/support/temporaryfiles.h"

using namespace Kelp;

namespace KelpTest {

namespace {

// One token of each kind.
constexpr const char* kTokens[] = {"5", "\"s\"", "(", ")", ".", "id", "{", "}", ";", "=",
                                   "+", "-",     "*", "/", ",", "[",  "]", ":", "@", kEndOfInput};

// Something to give back: an object with all kinds of references, before the place.
constexpr const char* kBefore = "P p { r = q; s = q.t[1]; u = -q::v; }\n";
constexpr const char* kFile = "rows/matrix.scene";

// What a value may stand in.
const std::vector<std::string> kContexts = {
    "", "1 + ", "1 * ", "(", "List(1, ", "Vector(1, ", "pow(1, ", "b.c[", "interpolate((0, "};

bool isAmong(const std::string& token, const std::string& list) {
  std::istringstream words(list);
  std::string word;
  while (words >> word) {
    if (word == token) return true;
  }
  return false;
}

std::string replaced(std::string text, const std::string& part, const std::string& by) {
  const size_t at = text.find(part);
  return at == std::string::npos ? text : text.replace(at, part.size(), by);
}

SceneOptions optionsOf(const MessagePlace& place) {
  SceneOptions options;
  options.collectReferences = true;
  options.maxNestingDepth = place.maxNestingDepth;
  options.maxObjects = place.maxObjects;
  return options;
}

std::string messageAt(const MessagePlace& place, const std::string& token) {
  return replaced(place.text, "%", token == kEndOfInput ? "" : token);
}

// The token and the one behind it, on a line of its own so that the reader's line tells.
std::string tokensAt(const MessagePlace& place, const std::string& token) {
  return token == kEndOfInput ? "" : token + '\n' + place.next;
}

struct ExpectedError {
  std::string message;
  std::string tokenFile;
  int tokenLine;
  int column;
  std::string readerFile;
  int readerLine;
};

int lineBehind(const std::string& text) {
  return 1 + static_cast<int>(std::count(text.begin(), text.end(), '\n'));
}

int columnBehind(const std::string& text) {
  const size_t newline = text.rfind('\n');
  return static_cast<int>(text.size() - (newline == std::string::npos ? 0 : newline + 1)) + 1;
}

void expectError(const SceneError& error, const ExpectedError& expected) {
  EXPECT_EQ(error.kind, SceneError::Kind::kInvalid);
  EXPECT_EQ(error.message, expected.message);
  EXPECT_EQ(error.tokenFile, expected.tokenFile);
  EXPECT_EQ(error.tokenLine, expected.tokenLine);
  EXPECT_EQ(error.column, expected.column);
  EXPECT_EQ(error.file, expected.readerFile);
  EXPECT_EQ(error.line, expected.readerLine);
}

// How often a message was raised, and which texts.
struct Tally {
  long long places = 0;
  std::set<std::string> texts;
};

Tally& tally() {
  static Tally all;
  return all;
}

void expectRefused(const MessagePlace& place, const std::string& before, const std::string& token) {
  const std::string text = before + tokensAt(place, token);
  SCOPED_TRACE(text);
  const int live = livePoolElements();
  {
    const Scene scene = Scene::fromText(text, kFile, optionsOf(place));
    const int line = lineBehind(before);
    const int readerLine = token == kEndOfInput ? line : line + 1;
    expectError(scene.error(),
                {messageAt(place, token), kFile, line, columnBehind(before), kFile, readerLine});
    EXPECT_EQ(scene.parser().referenceNames.count, 0);
  }
  EXPECT_EQ(livePoolElements(), live);
  ++tally().places;
  tally().texts.insert(messageAt(place, token));
}

// The error, if any, lies elsewhere.
void expectAccepted(const MessagePlace& place, const std::string& before,
                    const std::string& token) {
  const std::string text = before + tokensAt(place, token);
  const Scene scene = Scene::fromText(text, kFile, optionsOf(place));
  if (scene) return;
  const bool here =
      scene.error().tokenLine == lineBehind(before) && scene.error().column == columnBehind(before);
  EXPECT_FALSE(here) << scene.error().message << " for a token that may stand there: " << text;
}

void expectEachToken(const MessagePlace& place, const std::string& before,
                     const std::string& accepted) {
  if (!place.only.empty()) return expectRefused(place, before, place.only);
  for (const char* token : kTokens) {
    if (isAmong(token, accepted)) {
      expectAccepted(place, before, token);
    } else {
      expectRefused(place, before, token);
    }
  }
}

std::string tokenNotAccepted(const MessagePlace& place, const std::string& accepted) {
  if (!place.only.empty()) return place.only;
  for (const char* token : kTokens) {
    if (!isAmong(token, accepted)) return token;
  }
  return kEndOfInput;
}

// The token ends an included file, so that the reader stands in the file that includes it.
void expectInTwoFiles(const MessagePlace& place, const std::string& before,
                      const std::string& accepted) {
  static const TemporaryFiles files;
  const std::string token = tokenNotAccepted(place, accepted);
  if (token == kEndOfInput) return;
  // Removed first: writing over a file has some systems bring the old one to the disk.
  std::filesystem::remove(files.path("part.inc"));
  const std::string included = files.write("part.inc", before + token);
  const std::string main = "\n\n#include \"part.inc\"\n" + place.next;
  SCOPED_TRACE(before + token);
  const std::string name = files.path("main.scene");
  expectError(
      Scene::fromText(main, name, optionsOf(place)).error(),
      {messageAt(place, token), included, lineBehind(before), columnBehind(before), name, 4});
}

// Names recorded before the parse stay, the parse's own go; the heap is as it was.
void expectNothingLeft(const MessagePlace& place, const std::string& before,
                       const std::string& accepted) {
  const std::string text = before + tokensAt(place, tokenNotAccepted(place, accepted));
  SCOPED_TRACE(text);
  expectBalanced([&] {
    CharString recordedBefore("b");
    TextParser source(text, kFile);
    source.parser.collectReferenceNames = 1;
    source.parser.maxNestingDepth = place.maxNestingDepth;
    source.parser.maxObjects = place.maxObjects;
    source.parser.referenceNames += &recordedBefore;
    try {
      EXPECT_EQ(source.parser.parseProgram(), nullptr);
    } catch (const InvalidSourceFile&) {
      ADD_FAILURE() << "the tokens of the matrix can all be read";
    }
    ASSERT_EQ(source.parser.referenceNames.count, 1);
    EXPECT_EQ(source.parser.referenceNames.data[0], &recordedBefore);
  });
}

void expectEverywhere(const MessagePlace& place, const std::string& before,
                      const std::string& accepted) {
  expectEachToken(place, before, accepted);
  expectInTwoFiles(place, before, accepted);
  expectNothingLeft(place, before, accepted);
}

// Behind one operand, or, where there is time, behind all kinds.
void expectBehindOperands(const MessagePlace& place, const std::string& before) {
  const size_t kinds = hasTimeForAll() ? operands().size() : 1;
  for (size_t i = 0; i < kinds; ++i) {
    const Operand& operand = operands()[i];
    const std::string accepted = place.accepted + ' ' + kOperators + ' ' + operand.accepted;
    expectEverywhere(place, before + operand.text + ' ', accepted);
  }
}

void expectInValue(const MessagePlace& place) {
  const size_t contexts = hasTimeForAll() && place.maxNestingDepth > 10 ? kContexts.size() : 1;
  for (size_t i = 0; i < contexts; ++i) {
    const std::string before = std::string(kBefore) + "A a { x = " + kContexts[i] + place.scene;
    if (place.kind == MessagePlace::Kind::kBehindOperand) {
      expectBehindOperands(place, before);
    } else {
      expectEverywhere(place, before, place.accepted);
    }
  }
}

}  // namespace

const std::vector<Operand>& operands() {
  static const std::vector<Operand> list = {
      {"1", ""},        {"\"s\"", ""}, {"b", ". : ("}, {"b.c", ". ["},          {"b.c[0]", ". ["},
      {"b.c.x", ". ["}, {"b::c", ""},  {"(1)", ""},    {"sin(1)", ""},          {"List()", ""},
      {"-1", ""},       {"1 + 2", ""}, {"1 * 2", ""},  {"Vector(1, 2, 3)", ""}, {"ListInt(1)", ""}};
  return list;
}

void expectMessages(const MessagePlaces& places) {
  for (const MessagePlace& place : places) {
    if (place.text.find('%') == std::string::npos) {
      const char* word = place.word.empty() ? nullptr : place.word.c_str();
      EXPECT_EQ(place.text, messageText(place.message, word).chars());
    }
    switch (place.kind) {
      case MessagePlace::Kind::kFirst:
        expectEverywhere(place, place.scene, place.accepted);
        break;
      case MessagePlace::Kind::kScene:
        expectEverywhere(place, kBefore + place.scene, place.accepted);
        break;
      case MessagePlace::Kind::kValue:
      case MessagePlace::Kind::kBehindOperand:
        expectInValue(place);
        break;
    }
  }
}

void expectMessage(const BracketPlace& place) {
  const std::string before = std::string(kBefore) + "A a { x = " + place.form;
  const std::string text = before + "(\n;";
  SCOPED_TRACE(text);
  EXPECT_EQ(place.text,
            messageText(place.message, place.word.empty() ? nullptr : place.word.c_str()).chars());
  expectBalanced([&] {
    SourcesReader reader;
    reader.openText(text.data(), static_cast<int64_t>(text.size()), kFile);
    WatchedScanner scanner(&reader);
    TreeParser parser(&scanner);
    parser.collectReferenceNames = 1;
    scanner.before = [&parser](int) {
      Token& token = parser._currentToken();
      if (token.type == TOKEN_LPAREN) token.type = TOKEN_UNKNOWN;
    };
    ASSERT_EQ(parser.parseProgram(), nullptr);
    EXPECT_EQ(parser.errorInfo.getErrorText().chars(), place.text);
    EXPECT_EQ(parser.errorInfo.getErrorLine(), lineBehind(before) + 1);
    EXPECT_STREQ(parser.errorInfo.getErrorFile().chars(), kFile);
    EXPECT_EQ(scanner.locate(1).line, lineBehind(before));
    EXPECT_EQ(scanner.locate(1).column, columnBehind(before));
    EXPECT_EQ(parser.referenceNames.count, 0);
  });
  ++tally().places;
  tally().texts.insert(place.text);
}

namespace {

const std::map<Message, std::string> kAllMessages = {
#define KELP_MESSAGE(identifier, before, after) {Message::identifier, #identifier},
#include "kelp/parser/messages.def"
#undef KELP_MESSAGE
};

struct WordsOfMessage {
  Message message;
  std::set<std::string> words;
};
// Every word that each message can have inserted; of a token or a functor any.
const WordsOfMessage kWords[] = {
    {Message::kValueBegin,
     {"Vector", "Color", "AColor", "Matrix", "ListVector", "ListVectorHex", "ListInt", "ListIntHex",
      "ListString", "ListFloat", "ListFloatHex", "ListColor", "ListColorHex"}},
    {Message::kValueComma, {"Vector", "Color", "AColor", "Matrix", "Transform"}},
    {Message::kValueEnd,
     {"Vector", "Color", "AColor", "Matrix", "TransformHex", "ListVectorHex", "ListIntHex",
      "ListFloatHex", "ListColorHex"}},
    {Message::kTransformBegin, {"Transform", "TransformHex"}},
    {Message::kTransformEnd, {"Transform"}},
    {Message::kElementBegin, {"Vector", "Color"}},
};

std::vector<const MessagePlaces*> tables() {
  return {&programPlaces(), &expressionPlaces(), &callPlaces(),
          &valuePlaces(),   &listPlaces(),       &nestingPlaces()};
}

std::map<Message, std::set<std::string>> wordsInMatrix() {
  std::map<Message, std::set<std::string>> words;
  for (const MessagePlaces* table : tables()) {
    for (const MessagePlace& place : *table) words[place.message].insert(place.word);
  }
  for (const BracketPlace& place : bracketPlaces()) words[place.message].insert(place.word);
  return words;
}

}  // namespace

TEST(MessageMatrix, HasAPlaceForEveryMessage) {
  const std::map<Message, std::set<std::string>> words = wordsInMatrix();
  for (const auto& [message, name] : kAllMessages) {
    EXPECT_TRUE(words.contains(message)) << name << " is raised nowhere in the matrix";
  }
}

TEST(MessageMatrix, HasAPlaceForEveryWordThatAMessageInserts) {
  const std::map<Message, std::set<std::string>> words = wordsInMatrix();
  for (const auto& [message, inserted] : kWords) {
    EXPECT_EQ(words.at(message), inserted) << kAllMessages.at(message);
  }
}

TEST(MessageMatrix, EveryMessageArisesAtEveryPlace) {
  for (const MessagePlaces* table : tables()) expectMessages(*table);
  for (const BracketPlace& place : bracketPlaces()) expectMessage(place);
  reportFigure("message matrix", grouped(static_cast<long long>(tally().texts.size())) +
                                     " texts of " +
                                     grouped(static_cast<long long>(kAllMessages.size())) +
                                     " messages at " + grouped(tally().places) + " places");
}

}  // namespace KelpTest
