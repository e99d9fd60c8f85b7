// What becomes of a scene of the corpus, as the .golden files of n_ and i_ scenes say it.
//
//   LINE:COLUMN: MESSAGE    of the token that was not understood, and
//   reader LINE             where the reader stood, one token behind it
//
// Places in a file that the scene includes have its name before the line ("b.inc:2:1"). An accepted
// scene has its objects as S-expressions, one a line.
#pragma once

#include <gtest/gtest.h>

#include <set>
#include <string>

#include "kelp/scene.h"
#include "tests/support/balance.h"
#include "tests/support/corpus.h"
#include "tests/support/smallstack.h"

namespace KelpTest {

/// The words behind a prefix: what parts of the language its scenes are about.
inline std::set<std::string> corpusSubjects(const char* prefix) {
  std::set<std::string> words;
  for (const std::string& name : corpusNames(prefix)) {
    words.insert(name.substr(2, name.find('_', 2) - 2));
  }
  return words;
}

/// The text without the folder of the corpus before its files' names.
inline std::string withoutFolder(std::string text) {
  const std::string folder = corpusPath("", "").string();
  for (size_t at = text.find(folder); at != std::string::npos; at = text.find(folder)) {
    text.erase(at, folder.size());
  }
  return text;
}

inline std::string errorLines(const Kelp::SceneError& error, const std::string& sceneFile) {
  const auto place = [&](const std::string& file, int line) {
    const std::string shown = withoutFolder(file);
    return (shown == sceneFile ? "" : shown + ':') + std::to_string(line);
  };
  const std::string message = error.message.empty() ? "" : ' ' + withoutFolder(error.message);
  return place(error.tokenFile, error.tokenLine) + ':' + std::to_string(error.column) + ':' +
         message + "\nreader " + place(error.file, error.line) + '\n';
}

/// Reads one scene of the corpus; a failure leaves no recorded reference behind.
inline std::string outcomeOf(const std::string& name) {
  Kelp::SceneOptions options;
  options.collectReferences = true;
  const Kelp::Scene scene = Kelp::Scene::fromFile(corpusPath(name, ".scene").string(), options);
  if (scene) return objectLines(*scene.program());
  EXPECT_EQ(scene.parser().referenceNames.count, 0);
  return errorLines(scene.error(), name + ".scene");
}

/// Whether the outcome is that of the .golden file, with pools and heap as they were. Deep nesting
/// is bounded by its count here, in every build.
inline void expectOutcome(const std::string& name) {
  SCOPED_TRACE(name);
  std::string outcome;
  expectBalanced([&] { outcome = outcomeOf(name); });
  EXPECT_EQ(outcome, corpusText(name, ".golden"));
}

inline void expectOutcomes(const std::string& prefix) {
  runOnStackOf(kHugeStack, [&] {
    for (const std::string& name : corpusNames(prefix.c_str())) expectOutcome(name);
  });
}

}  // namespace KelpTest
