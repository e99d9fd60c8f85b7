#include "kelp/queries/lint.h"

#include <utility>
#include <vector>

#include "kelp/ast/treetext.h"
#include "kelp/queries/lintcheck.h"

namespace Kelp {

namespace {

// What the text calls an object, as far as it can be told apart.
std::string nameOf(const ObjectAST& object) {
  return std::string(viewOf(object.name.isEmpty() ? object.type : object.name));
}

// The checks of a run, and whom to tell what they find.
class LintRun {
 public:
  LintRun(const ProgramAST& program, const LintCodes& codes,
          const std::function<void(const Finding&)>& findingSink)
      : sink(findingSink) {
    for (const LintRule& rule : lintRules()) {
      if (!codes.contains(rule.code)) continue;
      checks.emplace_back(rule.code, rule.make());
      checks.back().second->begin(program);
    }
  }
  LintRun(const LintRun&) = delete;
  LintRun& operator=(const LintRun&) = delete;

  void see(const ObjectAST& object) {
    current.object = &object;
    current.property = nullptr;
    for (const auto& [code, check] : checks) {
      current.code = code;
      check->checkObject(object, report);
    }
    for (const PropertyAST* property = object.firstProperty; property != nullptr;
         property = property->next) {
      see(*property);
    }
  }

 private:
  void see(const PropertyAST& property) {
    current.property = &property;
    for (const auto& [code, check] : checks) {
      current.code = code;
      check->checkProperty(property, report);
    }
  }

  void tell(const std::string& message) {
    current.message = '"' + nameOf(*current.object);
    if (current.property != nullptr) {
      current.message += '.' + std::string(viewOf(current.property->name));
    }
    current.message += "\" " + message;
    sink(current);
  }

  const std::function<void(const Finding&)>& sink;
  const LintCheck::Report report = [this](const std::string& message) { tell(message); };
  std::vector<std::pair<std::string_view, std::unique_ptr<LintCheck>>> checks;
  Finding current;  // what is being looked at
};

}  // namespace

LintCodes defaultLintCodes() {
  LintCodes codes;
  for (const LintRule& rule : lintRules()) {
    if (rule.isDefault) codes.insert(rule.code);
  }
  return codes;
}

void lintProgram(const ProgramAST& program, const LintCodes& codes,
                 const std::function<void(const Finding&)>& sink) {
  LintRun run(program, codes, sink);
  for (const ObjectAST* object : objectsInTextOrder(program)) run.see(*object);
}

}  // namespace Kelp
