// Whole scenes read after others have left every pool dirty.
#include <gtest/gtest.h>

#include "tests/support/richscenes.h"
#include "tests/support/sexpression.h"
#include "tests/support/trees.h"

using namespace Kelp;
using namespace KelpTest;

namespace {

// Fields that the tree's text does not show.
std::string hiddenFields(const ProgramAST& program) {
  std::string text;
  for (const ObjectAST* object : objectsInTextOrder(program)) {
    text += object->extra != nullptr ? "extra " : "";
    text += object->filteredOut != 0 ? "filtered " : "";
    for (const PropertyAST* p = object->firstProperty; p != nullptr; p = p->next) {
      text += std::string(p->file.chars()) + ":" + std::to_string(p->line) + " ";
      text += p->extra != nullptr ? "extra " : "";
      text += p->records != nullptr ? "records " : "";
      text += p->next == nullptr && p != object->lastProperty ? "wrong end " : "";
    }
  }
  return text;
}

std::string described(const std::string& scene) {
  const ParsedScene parsed(scene);
  if (parsed.program.get() == nullptr) return "error";
  return sexpression(*parsed.program.get()) + hiddenFields(*parsed.program.get());
}

// Reads a scene, fills in what hosts fill in, and lets it all go again.
void leaveDirt(const std::string& scene) {
  static int host = 0;
  TextParser source(scene, "dirt/dirt.scene");
  source.reader.readerParam1 = 1.0;
  source.reader.readerParam2 = 2.0;
  const auto_ast<ProgramAST> program(source.parser.parseProgram());
  ASSERT_NE(program.get(), nullptr);
  for (ObjectAST* object = program->firstObject; object != nullptr; object = object->next) {
    object->extra = &host;
    object->filteredOut = 1;
    for (PropertyAST* p = object->firstProperty; p != nullptr; p = p->next) p->extra = &host;
  }
}

}  // namespace

TEST(DirtyPool, ScenesReadTheSameAfterAnyOther) {
  std::vector<std::string> clean;
  for (const std::string& scene : richScenes()) clean.push_back(described(scene));
  for (const std::string& dirt : richScenes()) {
    for (size_t i = 0; i < richScenes().size(); ++i) {
      leaveDirt(dirt);
      EXPECT_EQ(described(richScenes()[i]), clean[i]) << "after " << dirt;
    }
  }
}
