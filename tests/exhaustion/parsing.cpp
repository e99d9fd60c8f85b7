#include "tests/exhaustion/parsing.h"

#include <gtest/gtest.h>

#include <memory>

#include "tests/support/parsing.h"
#include "tests/support/sexpression.h"

namespace KelpTest {

using namespace Kelp;

namespace {

void setUp(TextParser& source) {
  source.parser.collectReferenceNames = 1;
  source.reader.readerParam1 = 1.0;
  source.reader.readerParam2 = 2.0;
}

std::string outcomeOf(const ProgramAST* program, const TreeParser& parser) {
  if (program != nullptr) return sexpression(*program);
  const CharString& text = parser.errorInfo.getErrorText();
  return std::string("error: ") + (text.isNull() ? "<null>" : text.chars());
}

// Every reference in the table must still be readable.
void expectReadable(const Table<CharString*, 100>& references) {
  for (int i = 0; i < references.count; ++i) EXPECT_GE(references.data[i]->length(), 0);
}

// A scene and what comes out of it, its tree or its error.
struct KnownScene {
  explicit KnownScene(const NamedScene& named) : scene(named) {
    restartSeeds();
    TextParser source(scene.text, scene.name.c_str());
    setUp(source);
    const auto_ast<ProgramAST> program(source.parser.parseProgram());
    outcome = outcomeOf(program.get(), source.parser);
  }
  NamedScene scene;
  std::string outcome;
};

class ParseOperation final : public Operation {
 public:
  explicit ParseOperation(const KnownScene& knownScene)
      : known(knownScene), source(known.scene.text, known.scene.name.c_str()) {
    setUp(source);
    restartSeeds();
  }

  void act() override { program.reset(source.parser.parseProgram()); }

  void check(bool completed) override {
    if (completed) {
      EXPECT_EQ(outcomeOf(program.get(), source.parser), known.outcome);
      expectReadable(source.parser.referenceNames);
      return;
    }
    EXPECT_EQ(program.get(), nullptr);
    EXPECT_EQ(source.parser.referenceNames.count, 0);
    EXPECT_TRUE(source.parser.errorInfo.getErrorText().isNull());
    EXPECT_TRUE(source.parser.errorInfo.getErrorFile().isNull());
  }

 private:
  const KnownScene& known;
  TextParser source;
  auto_ast<ProgramAST> program{nullptr};
};

// A rule that is driven alone, behind a reference that an earlier rule has recorded.
class RuleOperation final : public Operation {
 public:
  explicit RuleOperation(const RuleText& parsedRule) : rule(parsedRule), source(rule.text) {
    setUp(source);
    restartSeeds();
    source.started().referenceNames += &earlier;
  }
  ~RuleOperation() override {
    if (read != nullptr) read->deleteThis();
  }

  void act() override {
    switch (rule.rule) {
      case RuleText::Rule::kObject:
        read = source.parser.parseObject();
        break;
      case RuleText::Rule::kProperty:
        read = source.parser.parseProperty();
        break;
      case RuleText::Rule::kExpression:
        read = source.parser.parseExpression();
        break;
    }
  }

  void check(bool completed) override {
    EXPECT_EQ(read != nullptr, completed);
    if (completed) {
      EXPECT_TRUE(source.parser._at(TOKEN_END));
      expectReadable(source.parser.referenceNames);
    } else if (rule.rule != RuleText::Rule::kExpression) {
      // Expressions leave it to their property to take recorded references back.
      EXPECT_EQ(source.parser.referenceNames.count, 1);
    }
  }

 private:
  const RuleText& rule;
  TextParser source;
  CharString earlier{"earlier"};
  AST* read = nullptr;
};

}  // namespace

void restartSeeds() { BuiltinFunctionAST::rndGen.reset(); }

std::vector<Workload> parsesOf(const std::vector<NamedScene>& scenes) {
  std::vector<Workload> parses;
  for (const NamedScene& scene : scenes) {
    const auto known = std::make_shared<const KnownScene>(scene);
    const auto size = static_cast<int64_t>(scene.text.size());
    parses.push_back(
        {scene.name, size, size, [known] { return std::make_unique<ParseOperation>(*known); }});
  }
  return parses;
}

const std::vector<RuleText>& ruleTexts() {
  using enum RuleText::Rule;
  static const std::vector<RuleText> rules = {
      {kExpression, "1 + 2 * -Vector(a.b[1], c, 2)"},
      {kExpression, "(a - (b)) / \"text\""},
      {kExpression, "select(a, -b.c, List(1), d::e)"},
      {kExpression, "random(a.b.x, randomInt(1, c))"},
      {kExpression, "List(a, -b, List(c.d, \"e\"))"},
      {kExpression, "interpolate((a, -b), (c.d[e], List(f)))"},
      {kExpression, "a.b[c.d[1]].x"},
      {kExpression, "a.b[-c.d[e::f]].alpha[1]"},
      {kExpression, "Color(a, -b, c.d)"},
      {kExpression, "AColor(a, -b, c.d, \"e\")"},
      {kExpression, "Matrix(Vector(a, b, c), d, -e)"},
      {kExpression, "Transform(Matrix(a, b, c), -Vector(d, e, f))"},
      {kExpression, "-TransformHex(\"0011\") + a.b"},
      {kExpression, "-ListVectorHex(\"00\") + ListIntHex(\"11\") + ListFloatHex(\"22\")"},
      {kExpression, "-ListVector(Vector(1, 2, 3), Vector(4, 5, 6))"},
      {kExpression, "-ListColor(Color(1, 2, 3))"},
      {kExpression, "-ListInt(1, -2, 3,)"},
      {kExpression, "-ListFloat(1.5, +2e3)"},
      {kExpression, "-ListString(\"a string that is too long to be kept inside its node\", \"b\")"},
      {kProperty, "x = a + b.c[1] * -d::e;"},
      {kProperty, "\"a name\" = List(a, b);"},
      {kObject, "Type name { x = a; y = -b.c; z = d::e; }"},
      {kObject, "Type { x = interpolate((a, b)); }"},
  };
  return rules;
}

std::vector<Workload> parsesOfRules() {
  std::vector<Workload> parses;
  for (const RuleText& rule : ruleTexts()) {
    const auto size = static_cast<int64_t>(std::string(rule.text).size());
    parses.push_back(
        {rule.text, size, size, [&] { return std::make_unique<RuleOperation>(rule); }});
  }
  return parses;
}

}  // namespace KelpTest
