// Filters for doFilter, and scenes to use them on.
#pragma once

#include <functional>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include "kelp/parser/scenepluginfilter.h"
#include "tests/support/trees.h"

namespace KelpTest {

/// Asks a function.
class FunctionFilter final : public Kelp::ScenePluginFilter {
 public:
  using Function = std::function<int(const Kelp::CharString&, Kelp::CharString&, void*)>;

  explicit FunctionFilter(Function accept) : function(std::move(accept)) {}

  int acceptObject(const Kelp::CharString& type, Kelp::CharString& name, void* extra) override {
    return function(type, name, extra);
  }

 private:
  Function function;
};

/// A scene whose references were recorded.
struct FilteredScene : ParsedScene {
  explicit FilteredScene(std::string_view text) : FilteredScene(text, [](Kelp::TreeParser&) {}) {}
  template <class Prepare>
  FilteredScene(std::string_view text, const Prepare& prepare)
      : ParsedScene(text, [&](Kelp::TreeParser& parser) {
          parser.collectReferenceNames = 1;
          prepare(parser);
        }) {}

  void filter(FunctionFilter& asked) { source.parser.doFilter(program.get(), &asked); }

  /// Keeps all objects and gives those in the map their new names.
  void rename(const std::map<std::string, std::string>& names) {
    FunctionFilter renaming([&](const Kelp::CharString&, Kelp::CharString& name, void*) {
      const auto found = names.find(name.chars());
      if (found != names.end()) name = found->second.c_str();
      return 1;
    });
    filter(renaming);
  }

  /// The recorded references as they read now.
  std::vector<std::string> references() const {
    std::vector<std::string> names;
    for (int i = 0; i < source.parser.referenceNames.count; ++i) {
      names.emplace_back(source.parser.referenceNames.data[i]->chars());
    }
    return names;
  }
};

}  // namespace KelpTest
