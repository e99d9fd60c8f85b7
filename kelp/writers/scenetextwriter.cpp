#include "kelp/writers/scenetextwriter.h"

#include <algorithm>
#include <functional>
#include <string_view>
#include <unordered_map>
#include <unordered_set>
#include <utility>
#include <vector>

#include "kelp/ast/treetext.h"
#include "kelp/writers/valuewriter.h"

namespace Kelp {

namespace {

// Of equal type and name, as the key of a program says it.
bool areSame(const ObjectAST& a, const ObjectAST& b) {
  return viewOf(a.type) == viewOf(b.type) && viewOf(a.name) == viewOf(b.name);
}

// An object that another one of the same type and name stands beside; null when there is none.
const ObjectAST* findDoubled(const std::vector<ObjectAST*>& objects) {
  struct Entry {
    size_t hash;
    const ObjectAST* object;
  };
  std::vector<Entry> entries;
  entries.reserve(objects.size());
  for (const ObjectAST* object : objects) {
    const std::hash<std::string_view> hash;
    entries.push_back({hash(viewOf(object->type)) * 31 + hash(viewOf(object->name)), object});
  }
  std::sort(entries.begin(), entries.end(), [](const Entry& a, const Entry& b) {
    if (a.hash != b.hash) return a.hash < b.hash;
    const int types = viewOf(a.object->type).compare(viewOf(b.object->type));
    return types != 0 ? types < 0 : viewOf(a.object->name) < viewOf(b.object->name);
  });
  const auto found =
      std::adjacent_find(entries.begin(), entries.end(), [](const Entry& a, const Entry& b) {
        return a.hash == b.hash && areSame(*a.object, *b.object);
      });
  return found != entries.end() ? found->object : nullptr;
}

using Properties = std::unordered_set<const PropertyAST*>;

// The properties that one further behind assigns anew.
Properties findOverridden(const ObjectAST& object) {
  Properties overridden;
  std::unordered_map<std::string_view, const PropertyAST*> last;
  for (const PropertyAST* property = object.firstProperty; property != nullptr;
       property = property->next) {
    const auto [place, isFirst] = last.try_emplace(viewOf(property->name), property);
    if (isFirst) continue;
    overridden.insert(place->second);
    place->second = property;
  }
  return overridden;
}

}  // namespace

SceneTextWriter::SceneTextWriter(TextSink sink)
    : values(std::make_unique<ValueWriter>(std::move(sink))) {}
SceneTextWriter::~SceneTextWriter() = default;

void SceneTextWriter::write(const ProgramAST& program) {
  std::vector<ObjectAST*> objects = objectsInTextOrder(program);
  if (leaveOutFiltered) {
    std::erase_if(objects, [](const ObjectAST* object) { return object->filteredOut != 0; });
  }
  values->object = findDoubled(objects);
  if (values->object != nullptr) values->fail("there is another one of that type and name");
  for (const ObjectAST* object : objects) write(*object);
}

void SceneTextWriter::write(const ObjectAST& object) {
  LineFiller& filler = values->filler;
  values->object = &object;
  values->requireIdentifier(object.type, "its type");
  const bool named = !object.name.isEmpty();
  if (named) values->requireIdentifier(object.name, "its name");
  const std::string_view type = viewOf(object.type);
  // Some identifiers would be taken for a byte order mark at the very start.
  if (filler.isAtStart() && type.starts_with("\xEF\xBB\xBF")) values->sink("\n");
  filler.startLine(0, true);
  filler.add(type);
  if (named) filler.add(viewOf(object.name), Gap::kSpace);
  filler.add("{", Gap::kSpace);
  const auto overridden = leaveOutOverridden ? findOverridden(object) : Properties();
  for (const PropertyAST* property = object.firstProperty; property != nullptr;
       property = property->next) {
    if (!overridden.contains(property)) write(*property);
  }
  if (object.firstProperty != nullptr) {
    filler.startLine(0);
    filler.add("}");
  } else {
    filler.add("}", Gap::kSpace);
  }
  values->object = nullptr;
}

void SceneTextWriter::write(const PropertyAST& property) {
  values->property = &property;
  values->constants = constants;
  values->filler.startLine(LineFiller::kIndent);
  const std::string_view name = viewOf(property.name);
  if (ValueWriter::isIdentifier(name)) {
    values->filler.add(name);
  } else {
    values->quote(name);
  }
  values->filler.add("=", Gap::kSpace);
  values->writeValue(property.value, Gap::kSpace);
  values->filler.add(";");
  values->property = nullptr;
}

void SceneTextWriter::write(ExpressionAST& value) {
  values->constants = constants;
  values->filler.startLine(0);
  values->writeValue(&value, Gap::kNone);
}

void SceneTextWriter::finish() { values->filler.finish(); }

int64_t SceneTextWriter::approximatedNumbers() const { return values->approximated; }

}  // namespace Kelp
