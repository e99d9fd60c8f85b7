#include "kelp/ast/builtinfunctions.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstring>
#include <string_view>

#include "kelp/utils/wordtable.h"

namespace Kelp {

namespace {

constexpr BuiltinFunction kFunctions[] = {
    {"abs", 1, 1},        {"acos", 7, 1},        {"asin", 6, 1},    {"atan", 8, 1},
    {"atan2", 9, 2},      {"ceil", 16, 1},       {"clamp", 20, 3},  {"cos", 4, 1},
    {"cross", 29, 2},     {"degrees", 31, 1},    {"dot", 28, 2},    {"exp", 13, 1},
    {"floor", 15, 1},     {"frame", 25, 0},      {"length", 27, 1}, {"lerp", 21, 3},
    {"log", 14, 1},       {"max", 19, 2},        {"min", 18, 2},    {"mod", 23, 2},
    {"normalize", 30, 1}, {"pi", 26, 0},         {"pow", 11, 2},    {"radians", 32, 1},
    {"random", 2, 2},     {"randomInt", 12, 2},  {"round", 17, 1},  {"select", 24, 4},
    {"sin", 3, 1},        {"smoothstep", 22, 3}, {"sqrt", 10, 1},   {"tan", 5, 1},
};

constexpr WordTable<std::size(kFunctions)> kNames([] {
  std::array<std::string_view, std::size(kFunctions)> names;
  for (size_t i = 0; i < names.size(); ++i) names[i] = kFunctions[i].name;
  return names;
}());

consteval bool doArgumentsFit() {
  return std::all_of(
      std::begin(kFunctions), std::end(kFunctions), [](const BuiltinFunction& function) {
        return function.numArgs >= 0 && function.numArgs <= BuiltinFunctionAST::kMaxArgs;
      });
}

static_assert(doArgumentsFit(),
              "a call has no room for more arguments, and the parser does not ask");

}  // namespace

constinit RandomGenerator BuiltinFunctionAST::rndGen;

float RandomGenerator::drawSeed() {
  // Unsigned arithmetic wraps; the shift is arithmetic on the signed value.
  state = static_cast<int64_t>(static_cast<uint64_t>(state) * 0x5DEECE66DU + 0xBU);
  lastSine = std::sin(static_cast<double>(state >> 16));
  uint64_t sineBits;
  std::memcpy(&sineBits, &lastSine, sizeof sineBits);
  state = static_cast<int64_t>((static_cast<uint64_t>(state) + (sineBits >> 32)) & 0xFFFFFFFFFFFFU);
  return static_cast<float>(static_cast<double>(state >> 18) * 9.313225746154785e-10);  // 2^-30
}

int BuiltinFunctionAST::getBuiltinFunctionID(const char* name, int* numArgs) {
  const BuiltinFunction* function = findFunction(name);
  if (function == nullptr) return 0;
  *numArgs = function->numArgs;
  return function->id;
}

const BuiltinFunction* BuiltinFunctionAST::findFunction(std::string_view name) {
  const int place = kNames.find(name);
  return place >= 0 ? &kFunctions[place] : nullptr;
}

std::span<const BuiltinFunction> BuiltinFunctionAST::functions() { return kFunctions; }

const BuiltinFunction* BuiltinFunctionAST::findFunction(int id) {
  for (const BuiltinFunction& function : kFunctions) {
    if (function.id == id) return &function;
  }
  return nullptr;
}

}  // namespace Kelp
