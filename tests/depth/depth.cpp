// How deep may scenes nest on a stack of a given size, and is one level more an error and never a
// crash? Are sums of millions of terms read, walked and released on the smallest of them?
//
//   depth NAME    prints figures under that name; exits with 1 when anything is not as promised
//
// A program of its own, so that the library is compiled as hosts compile it: with and without
// optimisation, with and without sanitizers.

#include <pthread.h>

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "kelp/parser/treeparser.h"
#include "kelp/queries/statistics.h"
#include "kelp/writers/treewriter.h"
#include "tests/support/buildkind.h"

using namespace Kelp;

namespace {

constexpr size_t kKiB = 1024;
constexpr size_t kStacks[] = {128 * kKiB, 1024 * kKiB, 8192 * kKiB};
constexpr size_t kSmallest = kStacks[0];
constexpr size_t kOrdinary = kStacks[2];
constexpr int kPromisedLevels = 10000;  // on an ordinary stack, when optimised
constexpr int kLeastLevels = 20;        // on any stack, in any build
constexpr int kLeastBytesALevel = 128;
constexpr int kTerms = 4000000;
constexpr int kEntries = 1000000;
constexpr const char* kTooDeep = "Expression is nested too deeply";

int failures = 0;

void check(bool good, const std::string& what) {
  if (good) return;
  ++failures;
  std::printf("FAILED: %s\n", what.c_str());
}

// ---- stacks ------------------------------------------------------------------------------------

void* runAct(void* act) {
  (*static_cast<const std::function<void()>*>(act))();
  return nullptr;
}

void runOnStackOf(size_t bytes, std::function<void()> act) {
  pthread_attr_t attributes;
  pthread_t thread;
  const bool started = pthread_attr_init(&attributes) == 0 &&
                       pthread_attr_setstacksize(&attributes, bytes) == 0 &&
                       pthread_create(&thread, &attributes, runAct, &act) == 0;
  check(started, "starting a thread");
  if (started) pthread_join(thread, nullptr);
}

// ---- scenes ------------------------------------------------------------------------------------

struct Form {
  const char* open;
  const char* close;
};

const Form kForms[] = {{"(", ")"},
                       {"-(", ")"},
                       {"1+(", ")"},
                       {"1+2*(", ")*3"},
                       {"List(", ")"},
                       {"List(1,", ",2)"},
                       {"sin(", ")"},
                       {"select(1,2,3,", ")"},
                       {"interpolate((", ",1))"},
                       {"interpolate((1,2),(3,", "))"},
                       {"Vector(", ",1,2)"},
                       {"Color(1,2,", ")"},
                       {"AColor(1,2,3,", ")"},
                       {"Matrix(1,", ",2)"},
                       {"Transform(1,", ")"},
                       {"a.b[", "]"},
                       {"-a.b[1][", "].x"}};
constexpr int kFormCount = sizeof kForms / sizeof kForms[0];

std::string repeated(const std::string& piece, int times) {
  std::string text;
  text.reserve(piece.size() * static_cast<size_t>(times));
  for (int i = 0; i < times; ++i) text += piece;
  return text;
}

std::string scene(const std::string& value) { return "A a { x = " + value + "; }"; }

// Values that nest one form, or all forms in turn (form = kFormCount).
std::string nested(int form, int depth, const std::string& innermost = "1") {
  std::string text;
  const auto formAt = [form](int level) {
    return kForms[form < kFormCount ? form : level * 7 % kFormCount];
  };
  for (int i = 0; i < depth; ++i) text += formAt(i).open;
  text += innermost;
  for (int i = depth; i-- > 0;) text += formAt(i).close;
  return text;
}

std::string nameOf(int form) { return form < kFormCount ? kForms[form].open : "all in turn"; }

// ---- what is done with them --------------------------------------------------------------------

int liveNodes() {
  return NumberExpressionAST::pool.liveCount() + VectorExpressionAST::pool.liveCount() +
         AColorExpressionAST::pool.liveCount() + MatrixExpressionAST::pool.liveCount() +
         TransformExpressionAST::pool.liveCount() + NegatedExpressionAST::pool.liveCount() +
         InterpolateExpressionAST::pool.liveCount() + KeyList::pool.liveCount() +
         ObjectAST::pool.liveCount() + PropertyAST::pool.liveCount() +
         ArrayExpressionAST::pool.liveCount() + BinaryExpressionAST::pool.liveCount() +
         BuiltinFunctionAST::pool.liveCount() + ListExpressionAST::pool.liveCount() +
         ListCell::pool.liveCount() + PropertyReferenceAST::pool.liveCount();
}

struct Reading {
  explicit Reading(const std::string& text, bool readsPlainText = true) {
    reader.openText(text.data(), static_cast<int64_t>(text.size()), "deep.scene");
    parser.maxNestingDepth = 0;
    parser.readsPlainText = readsPlainText;
    program.reset(parser.parseProgram());
  }

  std::string outcome() const {
    return program.get() != nullptr ? "ok" : parser.errorInfo.getErrorText().chars();
  }

  SourcesReader reader;
  Scanner scanner{&reader};
  TreeParser parser{&scanner};
  auto_ast<ProgramAST> program{nullptr};
};

// Reads and releases. The whole reading is heap memory, as the stack is what is measured.
std::string outcomeOf(const std::string& text, bool readsPlainText = true) {
  const int live = liveNodes();
  auto reading = std::make_unique<Reading>(text, readsPlainText);
  std::string outcome = reading->outcome();
  reading.reset();
  check(liveNodes() == live, "no node is left of a " + outcome);
  return outcome;
}

void walk(const ProgramAST& program) {
  check(countProgram(program).properties == 1, "counting");
  size_t characters = 0;
  TreeWriter writer([&characters](std::string_view piece) { characters += piece.size(); });
  writer.write(program);
  check(characters > 0, "listing");
}

// ---- nesting -----------------------------------------------------------------------------------

// The most levels that are read on the calling thread's stack, by tokens or straight from the text.
int deepest(int form, size_t stack, bool readsPlainText) {
  int good = 0;
  int bad = static_cast<int>(stack / kLeastBytesALevel);
  check(outcomeOf(scene(nested(form, bad)), readsPlainText) == kTooDeep,
        nameOf(form) + ": far too deep");
  while (bad - good > 1) {
    const int depth = good + (bad - good) / 2;
    const std::string outcome = outcomeOf(scene(nested(form, depth)), readsPlainText);
    check(outcome == "ok" || outcome == kTooDeep, nameOf(form) + " gives " + outcome);
    (outcome == "ok" ? good : bad) = depth;
  }
  return good;
}

// The text may end, or go wrong, anywhere at full depth.
void failAtDepth(int form, int depth) {
  const auto fails = [form](const std::string& text) {
    const std::string outcome = outcomeOf(text);
    check(outcome != "ok" && outcome != kTooDeep, nameOf(form) + " fails with " + outcome);
  };
  fails(scene(nested(form, depth, ";")));
  fails(scene(nested(form, depth) + "}"));
  fails(scene(nested(form, depth) + " 1"));
  fails("A a { x = " + nested(form, depth, "\"unended"));
  std::string text = scene(nested(form, depth));
  text.resize(text.size() - 1);
  fails(text);
}

// What a large stack has read, the smallest walks and releases.
void passOn(const std::string& text) {
  const int live = liveNodes();
  std::unique_ptr<Reading> reading;
  runOnStackOf(kOrdinary, [&] { reading = std::make_unique<Reading>(text); });
  check(reading->outcome() == "ok", "reading on a large stack: " + reading->outcome());
  if (reading->program.get() == nullptr) return;
  runOnStackOf(kSmallest, [&] {
    walk(*reading->program.get());
    reading.reset();
  });
  check(liveNodes() == live, "what was passed on is released");
}

// The least of the levels that each form reaches.
int levelsOn(size_t stack) {
  int least = INT32_MAX;
  runOnStackOf(stack, [&] {
    for (int form = 0; form <= kFormCount; ++form) {
      // What is wrong is read by tokens in the end, whose rules may take more of the stack.
      const int depth = std::min(deepest(form, stack, true), deepest(form, stack, false));
      least = std::min(least, depth);
      // The first frames of a thread, and of a caller, differ a little from another's.
      const int safe = depth - depth / 100 - 2;
      failAtDepth(form, safe);
      if (stack == kOrdinary) passOn(scene(nested(form, safe)));
    }
  });
  return least;
}

std::string checkNesting() {
  std::string figure;
  for (const size_t stack : kStacks) {
    const int levels = levelsOn(stack);
    const bool promised = stack == kOrdinary && KelpTest::kOptimized && !KelpTest::kSanitized;
    check(levels >= (promised ? kPromisedLevels : kLeastLevels), "levels that are read");
    figure += (figure.empty() ? "" : ", ") + std::to_string(levels) + " on " +
              std::to_string(stack / kKiB) + " KiB";
  }
  return figure;
}

// ---- length ------------------------------------------------------------------------------------

void checkLength(const char* name, const std::string& text) {
  runOnStackOf(kSmallest, [&] {
    const int live = liveNodes();
    auto reading = std::make_unique<Reading>(scene(text));
    check(reading->outcome() == "ok", name + (": " + reading->outcome()));
    if (reading->program.get() != nullptr) walk(*reading->program.get());
    reading.reset();
    check(liveNodes() == live, std::string(name) + " is released");
    check(outcomeOf(scene(text + " 1")) != "ok", std::string(name) + " fails at the last token");
  });
}

void checkLengths() {
  checkLength("sum", "1" + repeated("+1", kTerms - 1));
  checkLength("product", "1" + repeated("*1", kTerms - 1));
  checkLength("mixed operators", "1" + repeated("-2*3/-4+5", kTerms / 4));
  checkLength("sum of sums", "1" + repeated("+(1+2)", kTerms / 2));
  checkLength("list", "List(1" + repeated(",1", kEntries - 1) + ")");
  checkLength("interpolation", "interpolate((1,2)" + repeated(",(1,2)", kEntries - 1) + ")");
  checkLength("indices", "a.b" + repeated("[1]", kEntries));
}

}  // namespace

int main(int argc, char** argv) {
  const char* build = argc > 1 ? argv[1] : "depth";
  const std::string levels = checkNesting();
  std::printf("FIGURE|depth|%s: levels %s\n", build, levels.c_str());
  checkLengths();
  std::printf("FIGURE|depth|%s: %d terms, %d entries on %zu KiB; %d failures\n", build, kTerms,
              kEntries, kSmallest / kKiB, failures);
  return failures == 0 ? 0 : 1;
}
