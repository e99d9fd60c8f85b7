// What a Scene consists of.
#pragma once

#include <string>

#include "kelp/scene.h"

namespace Kelp {

// Members are destroyed from the last to the first: the program before the texts that it borrows.
struct Scene::Parts {
  SourcesReader reader;
  Scanner scanner{&reader};
  TreeParser parser{&scanner};
  auto_ast<ProgramAST> program{nullptr};
  SceneError error;
  Objects objects;  // as of objectsUpTo
  const ObjectAST* objectsUpTo = nullptr;

  void apply(const SceneOptions& options);

  /// Reads all of the opened text into `program`, or notes an error.
  void parse();

  /// The error that the parser has recorded, with its place.
  SceneError invalidText();

  static SceneError unreadable(const CharString& message, const std::string& name);
};

}  // namespace Kelp
