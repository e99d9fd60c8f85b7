// The builtin functions of scene expressions: their names and argument counts, the node of a call,
// and the generator behind the seeds of the random ones.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>

#include "kelp/ast/ast.h"
#include "kelp/ast/noderooms.h"

namespace Kelp {

struct BuiltinFunction {
  const char* name;
  int id;       ///< never 0
  int numArgs;  ///< 0 to BuiltinFunctionAST::kMaxArgs
};

/// The draw of one seed feeds the next, so that the same text gives the same seeds whenever the
/// generator starts from the same state.
struct RandomGenerator {
  double lastSine = 0.0;  ///< the sine drawn last
  int64_t state = 0;      ///< 48 bits after a draw

  /// Back to the state of a fresh process.
  void reset() {
    lastSine = 0.0;
    state = 0;
  }

  /// Advances the state: a 48-bit linear congruential step (the multiplier and increment of
  /// drand48), whose state is then mixed with the bits of a sine. The result lies in [0, 1], the
  /// bound 1 being what the largest states round to.
  float drawSeed();
};

/// A call of a builtin function.
class BuiltinFunctionAST final : public ExpressionAST {
 public:
  static NodeRooms<BuiltinFunctionAST>& pool;
  static void* operator new(size_t bytes);
  static void* operator new(size_t, void* place) noexcept { return place; }
  static void operator delete(void* node) noexcept;

  static constexpr int kMaxArgs = 4;
  static constexpr int kRandom = 2;
  static constexpr int kRandomInt = 12;

  /// The id of the function of that name and, through numArgs, how many arguments it takes;
  /// 0 for an unknown name, and then numArgs is left alone.
  static int getBuiltinFunctionID(const char* name, int* numArgs);

  /// The function of that name, null when there is none. Lives for ever.
  static const BuiltinFunction* findFunction(std::string_view name);

  /// The table row of an id, null for an unknown one. Lives for ever.
  static const BuiltinFunction* findFunction(int id);

  /// All of them. Lives for ever.
  static std::span<const BuiltinFunction> functions();

  /// Shared by all parsers of the process and advanced without a lock.
  static RandomGenerator rndGen;

  void deleteThis() override;
  void visit(Visitor& visitor) override;
  ExpressionAST* getIth(int i) override;

  int32_t numArgs = 0;  ///< arguments in use
  ExpressionAST* args[kMaxArgs] = {nullptr, nullptr, nullptr, nullptr};
  int32_t funcID = 0;
  float seed = 0.0F;  ///< drawn for random and randomInt when the call was read, else 0
};

}  // namespace Kelp
