// Programs and the names in them side by side with a model.
#pragma once

#include <array>
#include <map>
#include <memory>
#include <string>
#include <unordered_map>
#include <vector>

#include "kelp/parser/treeparser.h"
#include "tests/models/chainsmodel.h"
#include "tests/models/choices.h"
#include "tests/models/shortage.h"

namespace KelpTest {

/// Some programs that are filled, merged, renamed and released, with a parser that has recorded
/// their references. After a shortage of memory has struck the model is left behind, and only what
/// holds of every program is checked.
class CheckedPrograms {
 public:
  CheckedPrograms(Choices& source, Shortage& memory);
  CheckedPrograms(const CheckedPrograms&) = delete;
  CheckedPrograms& operator=(const CheckedPrograms&) = delete;
  ~CheckedPrograms();

  /// One operation. Throws Mismatch.
  void step();

  /// Compares all programs, and all recorded references.
  void compareAll();

 private:
  static constexpr size_t kPrograms = 3;

  struct Fields {
    MaybeText type;
    MaybeText name;
    int filteredOut = 0;
    int properties = 0;
  };
  struct Named {
    MaybeText key;
    Kelp::ObjectAST* object;
  };
  struct Program {
    explicit Program(CheckedPrograms& owner);

    Kelp::ProgramAST* real;
    std::vector<Kelp::ObjectAST*> objects;  // oldest first
    ChainsModel<Kelp::ObjectAST*> typed;
    ChainsModel<Named> named;
    size_t keyBufferSize = 0;
    std::string key;  // where the keys of `typed` are built
  };
  struct Decision {
    bool kept;
    MaybeText name;
  };
  class Filter;

  void addObject(Program& program);
  void merge(Program& into, Program& from);
  void updateName(Program& program);
  void filter(Program& program);
  void lookUp(Program& program);
  void release(std::unique_ptr<Program>& program);

  Kelp::ObjectAST* madeObject();
  void recordReference(Kelp::ObjectAST* object);
  void forgetReferences(const Kelp::ObjectAST* object);
  void addToModel(Program& program, Kelp::ObjectAST* object, std::vector<Kelp::ObjectAST*>& merged);
  Kelp::ObjectAST* findTyped(Program& program, const Fields& fields);
  void renameInModel(Program& program, Kelp::ObjectAST* object, const MaybeText& name,
                     std::map<std::string, MaybeText>& renames);
  void moveNameInModel(Program& program, const MaybeText& oldName, const MaybeText& newName);
  void compare(Program& program);
  void checkSafe(const Kelp::ProgramAST& program) const;

  Choices& choices;
  Shortage& shortage;
  Kelp::TreeParser parser{nullptr};
  bool exact = true;  // false: the model was left behind
  std::unordered_map<const Kelp::ObjectAST*, Fields> fields;
  std::map<const Kelp::CharString*, MaybeText> references;
  std::array<std::unique_ptr<Program>, kPrograms> programs;
};

}  // namespace KelpTest
