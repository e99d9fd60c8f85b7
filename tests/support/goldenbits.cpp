#include "tests/support/goldenbits.h"

#include <bit>
#include <cmath>
#include <fstream>
#include <sstream>
#include <stdexcept>

#include "kelp/ast/builtinfunctions.h"
#include "tests/support/scanners.h"

namespace KelpTest {

using namespace Kelp;

namespace {

constexpr uint64_t kFnvPrime = 0x100000001B3U;

std::vector<std::string> linesOf(const std::string& path) {
  std::ifstream file(path);
  std::vector<std::string> lines;
  for (std::string line; std::getline(file, line);) {
    if (line[0] != '#') lines.push_back(line);
  }
  if (lines.empty()) throw std::runtime_error("cannot read " + path);
  return lines;
}

template <class Bits>
Bits readBits(std::istringstream& row) {
  std::string digits;
  row >> digits;
  return digits == "nan" ? ~Bits{0} : static_cast<Bits>(std::stoull(digits, nullptr, 16));
}

uint64_t bitsOfNumber(double value) {
  return std::isnan(value) ? ~uint64_t{0} : std::bit_cast<uint64_t>(value);
}

uint32_t bitsOfNumber(float value) {
  return std::isnan(value) ? ~uint32_t{0} : std::bit_cast<uint32_t>(value);
}

// Signs are tokens of their own, and so is any text a number: the converter must cope with it.
void addTokens(const std::string& literal, std::vector<ListedToken>& tokens) {
  size_t begin = 0;
  for (; literal[begin] == '-' || literal[begin] == '+'; ++begin) {
    tokens.push_back({literal[begin] == '-' ? TOKEN_MINUS : TOKEN_PLUS, {literal[begin]}});
  }
  tokens.push_back({TOKEN_NUMBER, literal.substr(begin)});
}

// A parser that stands before the tokens.
struct TokenParser {
  explicit TokenParser(std::vector<ListedToken> tokens) : scanner(&reader, std::move(tokens)) {
    parser.scanAheadToken(false);
  }

  SourcesReader reader;
  ListedScanner scanner;
  TreeParser parser{&scanner};
};

template <class T>
std::vector<T> parsedList(const char* keyword, const std::vector<GoldenLiteral>& literals) {
  std::vector<ListedToken> tokens = {{TOKEN_IDENTIFIER, keyword}, {TOKEN_LPAREN, "("}};
  for (const GoldenLiteral& literal : literals) {
    addTokens(literal.text, tokens);
    tokens.push_back({TOKEN_COMMA, ","});
  }
  tokens.push_back({TOKEN_RPAREN, ")"});
  TokenParser source(std::move(tokens));
  const auto_ast<ExpressionAST> list(source.parser.parseExpression());
  const auto& elements = dynamic_cast<ListTypeExpressionAST<T>&>(*list.get()).elements;
  return {elements.data, elements.data + literals.size()};
}

std::vector<double> parsedNumbers(const std::vector<GoldenLiteral>& literals) {
  std::vector<ListedToken> tokens;
  for (const GoldenLiteral& literal : literals) addTokens(literal.text, tokens);
  TokenParser source(std::move(tokens));
  std::vector<double> values;
  for (size_t i = 0; i < literals.size(); ++i) values.push_back(source.parser.parseSimpleNumber());
  return values;
}

void addToDigest(uint64_t word, uint64_t& digest) { digest = (digest ^ word) * kFnvPrime; }

}  // namespace

std::vector<GoldenLiteral> goldenLiterals(const std::string& path) {
  std::vector<GoldenLiteral> literals;
  for (const std::string& line : linesOf(path)) {
    std::istringstream row(line);
    GoldenLiteral literal;
    row >> literal.text;
    literal.bits.asDouble = readBits<uint64_t>(row);
    literal.bits.asFloat = readBits<uint32_t>(row);
    row >> literal.bits.asInt;
    if (!row) throw std::runtime_error("not a row of literals: " + line);
    literals.push_back(literal);
  }
  return literals;
}

std::vector<LiteralBits> parsedLiterals(const std::vector<GoldenLiteral>& literals) {
  const std::vector<double> numbers = parsedNumbers(literals);
  const std::vector<float> floats = parsedList<float>("ListFloat", literals);
  const std::vector<int> ints = parsedList<int>("ListInt", literals);
  std::vector<LiteralBits> bits;
  for (size_t i = 0; i < literals.size(); ++i) {
    bits.push_back({bitsOfNumber(numbers[i]), bitsOfNumber(floats[i]), ints[i]});
  }
  return bits;
}

GoldenSeeds goldenSeeds(const std::string& path) {
  GoldenSeeds seeds;
  for (const std::string& line : linesOf(path)) {
    std::istringstream row(line);
    if (line.starts_with("digest ")) {
      row.ignore(7);
      row >> std::hex >> seeds.digest;
    } else {
      GoldenDraw draw{};
      row >> draw.number >> std::hex >> draw.state >> draw.seed;
      seeds.draws.push_back(draw);
    }
    if (!row) throw std::runtime_error("not a row of draws: " + line);
  }
  return seeds;
}

GoldenSeeds drawnSeeds(const GoldenSeeds& golden) {
  GoldenSeeds drawn;
  RandomGenerator generator;
  int64_t number = 0;
  for (const GoldenDraw& wanted : golden.draws) {
    GoldenDraw draw{};
    while (number < wanted.number) {
      draw.seed = std::bit_cast<uint32_t>(generator.drawSeed());
      addToDigest(static_cast<uint64_t>(generator.state), drawn.digest);
      addToDigest(draw.seed, drawn.digest);
      ++number;
    }
    draw.number = number;
    draw.state = generator.state;
    drawn.draws.push_back(draw);
  }
  return drawn;
}

}  // namespace KelpTest
