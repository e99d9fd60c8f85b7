#include "kelp/queries/references.h"

#include <algorithm>

#include "kelp/ast/treewalk.h"

namespace Kelp {

namespace {

class ReferenceWalk final : public TreeWalk {
 public:
  explicit ReferenceWalk(std::vector<Reference>& found) : references(found) {}

  void addReferencesOf(const PropertyAST& holder) {
    property = &holder;
    const auto before = static_cast<std::ptrdiff_t>(references.size());
    walk(holder.value);
    // The walk takes the last child first.
    std::reverse(references.begin() + before, references.end());
  }

  using TreeWalk::visit;
  void visit(ObjectReferenceAST& node) override {
    references.push_back({Reference::Kind::kObject, &node, property, &node.name, nullptr});
  }
  void visit(PropertyReferenceAST& node) override {
    references.push_back(
        {Reference::Kind::kProperty, &node, property, &node.objectName, &node.propertyName});
  }
  void visit(RuntimeValueAST& node) override {
    references.push_back(
        {Reference::Kind::kRuntimeValue, &node, property, &node.objectName, &node.valueName});
  }

 private:
  std::vector<Reference>& references;
  const PropertyAST* property = nullptr;
};

}  // namespace

void findReferences(const PropertyAST& property, std::vector<Reference>& references) {
  references.clear();
  ReferenceWalk(references).addReferencesOf(property);
}

void findReferences(const ObjectAST& object, std::vector<Reference>& references) {
  references.clear();
  ReferenceWalk walk(references);
  for (const PropertyAST* property = object.firstProperty; property != nullptr;
       property = property->next) {
    walk.addReferencesOf(*property);
  }
}

Resolution resolveReferences(ProgramAST& program) {
  Resolution resolution;
  std::vector<Reference> references;
  for (const ObjectAST* object : objectsInTextOrder(program)) {
    findReferences(*object, references);
    for (const Reference& reference : references) {
      ObjectAST* target = reference.resolved(program);
      if (reference.kind == Reference::Kind::kObject) {
        static_cast<ObjectReferenceAST*>(reference.node)->object = target;
      }
      if (target != nullptr) {
        ++resolution.resolved;
      } else {
        resolution.dangling.push_back({object, reference});
      }
    }
  }
  return resolution;
}

}  // namespace Kelp
