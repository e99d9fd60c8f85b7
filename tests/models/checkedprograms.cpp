#include "tests/models/checkedprograms.h"

#include <algorithm>

#include "tests/support/nodes.h"

namespace KelpTest {

using namespace Kelp;

namespace {

// None and empty, few enough to collide, some with the mark between type and name inside, two that
// differ only behind the length at which keys are cut.
const std::vector<MaybeText>& chosenNames() {
  static const std::vector<MaybeText> names = [] {
    std::vector<MaybeText> all = {MaybeText(), "", "a", "b", "c", "x\ty", "y", "\t"};
    all.emplace_back(std::string(1100, 'n') + "1");
    all.emplace_back(std::string(1100, 'n') + "2");
    while (all.size() < 48) all.emplace_back("name" + std::to_string(all.size()));
    return all;
  }();
  return names;
}

const std::vector<MaybeText>& chosenTypes() {
  static const std::vector<MaybeText> types = {MaybeText(), "",      "P", "Q",
                                               "P\tx",      "Thing", "R", "S"};
  return types;
}

const MaybeText& chosen(Choices& choices, const std::vector<MaybeText>& from) {
  return from[choices.below(static_cast<uint32_t>(from.size()))];
}

std::string typedKey(const MaybeText& type, const MaybeText& name) {
  return type.value_or("") + '\t' + name.value_or("");
}

}  // namespace

CheckedPrograms::Program::Program(CheckedPrograms& owner)
    : real(new ProgramAST),
      typed([this, &owner](ObjectAST* object) {
        const Fields& own = owner.fields.at(object);
        key = typedKey(own.type, own.name);
        if (key.size() >= keyBufferSize) key.resize(keyBufferSize - 1);
        return key.c_str();
      }),
      named([](const Named& entry) { return charsOf(entry.key); }) {}

/// Decides by the choices and writes down what it decided.
class CheckedPrograms::Filter final : public ScenePluginFilter {
 public:
  explicit Filter(Choices& source) : choices(source) {}

  int acceptObject(const CharString&, CharString& name, void*) override {
    const bool kept = !choices.oneIn(4);
    if (choices.oneIn(3)) {
      const MaybeText& other = chosen(choices, chosenNames());
      name = charsOf(other);
    } else if (choices.oneIn(8)) {
      name = charsOf(textOf(name));
    }
    decisions.push_back({kept, textOf(name)});
    return kept ? 1 : 0;
  }

  std::vector<Decision> decisions;

 private:
  Choices& choices;
};

CheckedPrograms::CheckedPrograms(Choices& source, Shortage& memory)
    : choices(source), shortage(memory) {
  for (auto& program : programs) program = std::make_unique<Program>(*this);
}

CheckedPrograms::~CheckedPrograms() {
  for (auto& program : programs) {
    if (program != nullptr) program->real->deleteThis();
  }
}

void CheckedPrograms::step() {
  std::unique_ptr<Program>& program = programs[choices.below(kPrograms)];
  const uint32_t kind = choices.below(64);
  if (kind < 40) {
    addObject(*program);
  } else if (kind < 48) {
    updateName(*program);
  } else if (kind < 58) {
    lookUp(*program);
  } else if (kind < 60) {
    filter(*program);
  } else if (kind < 63) {
    merge(*program, *programs[choices.below(kPrograms)]);
  } else {
    release(program);
  }
}

void CheckedPrograms::compareAll() {
  for (auto& program : programs) {
    checkSafe(*program->real);
    if (exact) compare(*program);
  }
  if (!exact) return;
  for (const auto& [name, text] : references) expectSame("a reference", text, textOf(*name));
}

// ---- the operations ----------------------------------------------------------------------------

void CheckedPrograms::addObject(Program& program) {
  ObjectAST* object = madeObject();
  Table<ObjectAST*, 100> merged;
  const bool reported = choices.below(2) != 0;
  if (!shortage.run([&] { program.real->addObject(object, 0, 0, reported ? &merged : nullptr); })) {
    exact = false;
    if (program.real->firstObject == object) return;
    forgetReferences(object);
    object->deleteThis();
    return;
  }
  if (!exact) return;
  std::vector<ObjectAST*> expected;
  addToModel(program, object, expected);
  if (!reported) expected.clear();
  expectThat("the objects reported as merged",
             std::equal(expected.begin(), expected.end(), merged.data, merged.data + merged.count));
}

void CheckedPrograms::merge(Program& into, Program& from) {
  Table<ObjectAST*, 100> merged;
  if (!shortage.run([&] { into.real->mergeProgram(from.real, 0, 0, &merged); })) exact = false;
  if (!exact || &into == &from) return;
  from.typed.clear();
  from.named.clear();
  from.keyBufferSize = 0;
  std::vector<ObjectAST*> expected;
  while (!from.objects.empty()) {
    ObjectAST* object = from.objects.back();
    from.objects.pop_back();
    addToModel(into, object, expected);
  }
  expectThat("the objects reported as merged",
             std::equal(expected.begin(), expected.end(), merged.data, merged.data + merged.count));
}

void CheckedPrograms::updateName(Program& program) {
  const MaybeText& oldName = chosen(choices, chosenNames());
  const MaybeText& newName = chosen(choices, chosenNames());
  const CharString oldString(charsOf(oldName));
  CharString newString(charsOf(newName));
  if (!shortage.run([&] { program.real->updateName(oldString, newString); })) exact = false;
  if (exact) moveNameInModel(program, oldName, newName);
}

void CheckedPrograms::filter(Program& program) {
  Filter deciding(choices);
  if (!shortage.run([&] { parser.doFilter(program.real, &deciding); })) exact = false;
  if (!exact) return;
  expectSame("objects asked about", program.objects.size(), deciding.decisions.size());
  std::map<std::string, MaybeText> renames;
  for (size_t i = 0; i < deciding.decisions.size(); ++i) {
    ObjectAST* object = program.objects[program.objects.size() - 1 - i];
    fields.at(object).filteredOut = deciding.decisions[i].kept ? 0 : 1;
    renameInModel(program, object, deciding.decisions[i].name, renames);
  }
  for (auto& [name, text] : references) {
    const auto renamed = text ? renames.find(*text) : renames.end();
    if (renamed != renames.end()) text = renamed->second;
  }
  compareAll();
}

void CheckedPrograms::lookUp(Program& program) {
  const MaybeText& name = chosen(choices, chosenNames());
  const ObjectAST* found = program.real->getObject(charsOf(name));
  if (!exact) return;
  const auto* expected = name ? program.named.find(charsOf(name)) : nullptr;
  expectThat("the object of a name",
             found == (expected != nullptr ? expected->content.object : nullptr));
}

void CheckedPrograms::release(std::unique_ptr<Program>& program) {
  for (ObjectAST* object = program->real->firstObject; object != nullptr; object = object->next) {
    forgetReferences(object);
    fields.erase(object);
  }
  program->real->deleteThis();
  program->real = nullptr;
  program = std::make_unique<Program>(*this);
}

// ---- objects and references --------------------------------------------------------------------

ObjectAST* CheckedPrograms::madeObject() {
  const MaybeText& type = chosen(choices, chosenTypes());
  const MaybeText& name = chosen(choices, chosenNames());
  ObjectAST* made = object(charsOf(type), charsOf(name));
  fields[made] = Fields{type, name};
  for (uint32_t left = choices.below(3); left > 0; --left) recordReference(made);
  return made;
}

// Now and then one name stands in the table twice.
void CheckedPrograms::recordReference(ObjectAST* owner) {
  const MaybeText& target = chosen(choices, chosenNames());
  ObjectReferenceAST* reference = ObjectReferenceAST::pool.newElement();
  reference->name = charsOf(target);
  reference->object = nullptr;
  owner->addProperty(property("p", reference), 0, 0);
  ++fields.at(owner).properties;
  references[&reference->name] = target;
  parser.referenceNames += &reference->name;
  if (choices.oneIn(8)) parser.referenceNames += &reference->name;
}

void CheckedPrograms::forgetReferences(const ObjectAST* owner) {
  Table<CharString*, 100>& table = parser.referenceNames;
  for (PropertyAST* p = owner->firstProperty; p != nullptr; p = p->next) {
    CharString* name = &static_cast<ObjectReferenceAST*>(p->value)->name;
    references.erase(name);
    table.count =
        static_cast<int>(std::remove(table.data, table.data + table.count, name) - table.data);
  }
}

// ---- the model ---------------------------------------------------------------------------------

ObjectAST* CheckedPrograms::findTyped(Program& program, const Fields& own) {
  const std::string key = typedKey(own.type, own.name);
  program.keyBufferSize = std::max({program.keyBufferSize, key.size() + 1, size_t{1024}});
  const auto* entry = program.typed.find(key.c_str());
  if (entry == nullptr) return nullptr;
  const Fields& other = fields.at(entry->content);
  return other.type == own.type && other.name == own.name ? entry->content : nullptr;
}

void CheckedPrograms::addToModel(Program& program, ObjectAST* object,
                                 std::vector<ObjectAST*>& merged) {
  const Fields own = fields.at(object);
  if (ObjectAST* existing = findTyped(program, own)) {
    fields.at(existing).properties += own.properties;
    fields.erase(object);
    merged.push_back(existing);
    return;
  }
  program.objects.push_back(object);
  const std::string key = typedKey(own.type, own.name);
  program.typed.insertSomewhere(key.c_str(), object);
  program.named.insertSomewhere(charsOf(own.name), Named{own.name, object});
}

void CheckedPrograms::moveNameInModel(Program& program, const MaybeText& oldName,
                                      const MaybeText& newName) {
  const auto* entry = program.named.find(charsOf(oldName));
  if (entry == nullptr) return;
  ObjectAST* object = entry->content.object;
  program.named.erase(charsOf(oldName));
  program.named.insertSomewhere(charsOf(newName), Named{newName, object});
}

void CheckedPrograms::renameInModel(Program& program, ObjectAST* object, const MaybeText& name,
                                    std::map<std::string, MaybeText>& renames) {
  MaybeText& own = fields.at(object).name;
  if (own == name) return;
  if (own) renames[*own] = name;
  moveNameInModel(program, own, name);
  own = name;
}

// ---- comparing ---------------------------------------------------------------------------------

void CheckedPrograms::compare(Program& program) {
  const ProgramAST& real = *program.real;
  expectSame("objects counted", program.objects.size(), static_cast<size_t>(real.numObjects));
  const ObjectAST* object = real.firstObject;
  for (size_t i = program.objects.size(); i-- > 0; object = object->next) {
    expectThat("the object on the list", object == program.objects[i]);
    const Fields& own = fields.at(object);
    expectSame("a type", own.type, textOf(object->type));
    expectSame("a name", own.name, textOf(object->name));
    expectSame("a filter's verdict", own.filteredOut, object->filteredOut);
    int properties = 0;
    for (PropertyAST* p = object->firstProperty; p != nullptr; p = p->next) ++properties;
    expectSame("properties", own.properties, properties);
  }
  expectThat("the list ends", object == nullptr);
  expectSame("the key buffers", program.keyBufferSize,
             static_cast<size_t>(real.typedObjects.keyBufferSize));
  program.typed.compareAll(real.typedObjects, [](const auto& entry, ObjectAST* expected) {
    expectThat("the object of a type and a name", entry.value == expected);
    expectThat("no key is stored", entry.key == nullptr);
  });
  program.named.compareAll(real.namedObjects, [](const auto& entry, const Named& expected) {
    expectSame("the name", expected.key, entry.key != nullptr ? MaybeText(entry.key) : MaybeText());
    expectThat("the object of a name", entry.value == expected.object);
  });
}

// What holds after failures, too: the maps lead to objects of the program only, and every key of
// theirs can be read.
void CheckedPrograms::checkSafe(const ProgramAST& program) const {
  std::vector<const ObjectAST*> objects;
  for (const ObjectAST* o = program.firstObject; o != nullptr; o = o->next) objects.push_back(o);
  std::sort(objects.begin(), objects.end());
  size_t keyCharacters = 0;
  for (const ProgramAST::ObjectMap* map : {&program.typedObjects, &program.namedObjects}) {
    for (int i = 0; i < map->buckets.count; ++i) {
      for (const auto* entry = map->buckets.data[i]; entry != nullptr; entry = entry->next) {
        expectThat("a map knows only objects of its program",
                   std::binary_search(objects.begin(), objects.end(), entry->value));
        if (entry->key != nullptr) keyCharacters += std::strlen(entry->key);
      }
    }
  }
  expectThat("keys are not endless", keyCharacters < size_t{1} << 30U);
}

}  // namespace KelpTest
