#include "kelp/queries/differences.h"

#include <string_view>
#include <unordered_map>
#include <utility>

#include "kelp/ast/treetext.h"
#include "kelp/queries/equality.h"

namespace Kelp {

namespace {

// In text order, with an index by key. Of several of one key the last one counts, in the place of
// the first.
template <class Key, class Node, class Hash = std::hash<Key>>
class Index {
 public:
  void add(const Key& key, const Node* node) {
    const auto [place, isNew] = places.try_emplace(key, nodes.size());
    if (isNew) {
      nodes.push_back(node);
    } else {
      nodes[place->second] = node;
    }
  }

  const Node* find(const Key& key) const {
    const auto place = places.find(key);
    return place != places.end() ? nodes[place->second] : nullptr;
  }

  const std::vector<const Node*>& all() const { return nodes; }

 private:
  std::vector<const Node*> nodes;
  std::unordered_map<Key, size_t, Hash> places;
};

using ObjectKey = std::pair<std::string_view, std::string_view>;

struct ObjectKeyHash {
  size_t operator()(const ObjectKey& key) const {
    const std::hash<std::string_view> hash;
    return hash(key.first) * 31 + hash(key.second);
  }
};

ObjectKey keyOf(const ObjectAST& object) { return {viewOf(object.type), viewOf(object.name)}; }
std::string_view keyOf(const PropertyAST& property) { return viewOf(property.name); }

using Objects = Index<ObjectKey, ObjectAST, ObjectKeyHash>;
using Properties = Index<std::string_view, PropertyAST>;

Objects objectsOf(const ProgramAST& program) {
  Objects objects;
  for (const ObjectAST* object : objectsInTextOrder(program)) objects.add(keyOf(*object), object);
  return objects;
}

Properties propertiesOf(const ObjectAST& object) {
  Properties properties;
  for (const PropertyAST* property = object.firstProperty; property != nullptr;
       property = property->next) {
    properties.add(keyOf(*property), property);
  }
  return properties;
}

// Most objects that are the same are so in the same order, and need no index.
bool haveSameText(const ObjectAST& a, const ObjectAST& b) {
  const PropertyAST* left = a.firstProperty;
  const PropertyAST* right = b.firstProperty;
  while (left != nullptr && right != nullptr && left->name == right->name &&
         areEqual(left->value, right->value)) {
    left = left->next;
    right = right->next;
  }
  return left == nullptr && right == nullptr;
}

std::vector<PropertyDifference> diffObjects(const ObjectAST& before, const ObjectAST& after) {
  if (haveSameText(before, after)) return {};
  const Properties old = propertiesOf(before);
  const Properties fresh = propertiesOf(after);
  std::vector<PropertyDifference> differences;
  for (const PropertyAST* property : old.all()) {
    const PropertyAST* found = fresh.find(keyOf(*property));
    if (found == nullptr || !areEqual(property->value, found->value)) {
      differences.push_back({property, found});
    }
  }
  for (const PropertyAST* property : fresh.all()) {
    if (old.find(keyOf(*property)) == nullptr) differences.push_back({nullptr, property});
  }
  return differences;
}

}  // namespace

std::vector<ObjectDifference> diffPrograms(const ProgramAST& before, const ProgramAST& after) {
  const Objects old = objectsOf(before);
  const Objects fresh = objectsOf(after);
  std::vector<ObjectDifference> differences;
  for (const ObjectAST* object : old.all()) {
    const ObjectAST* found = fresh.find(keyOf(*object));
    if (found == nullptr) {
      differences.push_back({object, nullptr, {}});
      continue;
    }
    std::vector<PropertyDifference> properties = diffObjects(*object, *found);
    if (!properties.empty()) differences.push_back({object, found, std::move(properties)});
  }
  for (const ObjectAST* object : fresh.all()) {
    if (old.find(keyOf(*object)) == nullptr) differences.push_back({nullptr, object, {}});
  }
  return differences;
}

}  // namespace Kelp
