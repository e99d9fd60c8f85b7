// Filtering and renaming the objects of a parsed program.
#include <algorithm>
#include <vector>

#include "kelp/parser/treeparser.h"
#include "kelp/utils/exclusiveuse.h"

namespace Kelp {

namespace {

using RenameMap = HashMap<CharString, 1, 1024, 0>;

// Moves an object to its new name everywhere but in the references.
void renameObject(ProgramAST* program, ObjectAST* object, const CharString& newName,
                  RenameMap& renames) {
  if (!object->name.isNull()) {
    renames._insert(object->name.chars(), CharString(), nullptr).entry->value = newName;
  }
  // The table borrows the characters of both names: the object drops the old one last, and nothing
  // can fail between the table's taking the new one and the object's.
  program->_moveName(object->name, newName);
  object->name = newName;
}

void renameReferences(const Table<CharString*, 100>& referenceNames, const RenameMap& renames) {
  // A name that stands in the table twice must not follow a chain of renames.
  std::vector<CharString*> names(referenceNames.data, referenceNames.data + referenceNames.count);
  std::sort(names.begin(), names.end());
  names.erase(std::unique(names.begin(), names.end()), names.end());
  for (CharString* name : names) {
    const auto* entry = name->isNull() ? nullptr : renames.find(name->chars());
    if (entry != nullptr) *name = entry->value;
  }
}

}  // namespace

void TreeParser::doFilter(ProgramAST* program, ScenePluginFilter* filter) {
  if (filter == nullptr) return;
  const ExclusiveUse use;
  const ProgramAST::FilterRun run(program);
  RenameMap renames;
  for (ObjectAST* object = program->firstObject; object != nullptr; object = object->next) {
    CharString name = object->name;
    const int accepted = filter->acceptObject(object->type, name, object->extra);
    object->filteredOut = accepted == 0 ? 1 : 0;
    if (!(object->name == name)) renameObject(program, object, name, renames);
  }
  if (renames.count > 0) renameReferences(referenceNames, renames);
}

}  // namespace Kelp
