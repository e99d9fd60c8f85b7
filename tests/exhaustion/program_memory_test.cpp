// Operations on programs that run out of memory, at every heap request and at every entry of the
// maps: every object has one owner afterwards, and the program is sound.
#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <utility>
#include <vector>

#include "tests/exhaustion/operation.h"
#include "tests/exhaustion/soundprogram.h"
#include "tests/support/failures.h"
#include "tests/support/filters.h"
#include "tests/support/nodes.h"

using namespace Kelp;
using namespace KelpTest;

namespace {

// Of nobody's family but the test's.
struct Foreign {};

constexpr int64_t kNodes = 500;  // more than any of these programs has

// How many entries the maps of a program still have in their pools.
struct EntriesLeft {
  int typed = 1000;
  int named = 1000;

  void applyTo(ProgramAST& program) const {
    take(program.typedObjects.entryPool, typed);
    take(program.namedObjects.entryPool, named);
  }

 private:
  // What is taken goes with the pool's blocks.
  template <class EntryPool>
  static void take(EntryPool& pool, int left) {
    while (1000 * pool.blockCount() - pool.liveCount() > left) pool.newElement();
  }
};

// Adds an object of that name to 0..9, which makes the maps grow, or merges it into one of them.
class AddOperation final : public Operation {
 public:
  explicit AddOperation(const std::string& name, const EntriesLeft& left = {})
      : newcomer(object("P", name.c_str())) {
    left.applyTo(*program.get());
    newcomer->addProperty(property("y", number(1)), 0, 0);
  }
  ~AddOperation() override {
    if (!isTaken()) newcomer->deleteThis();
  }

  void act() override {
    program->addObject(newcomer, 1, 2, &merged);
    added = true;
  }

  void check(bool completed) override {
    EXPECT_EQ(added, completed);
    expectSound(*program.get());
    for (int i = 0; i < 10; ++i) EXPECT_NE(program->getObject(std::to_string(i).c_str()), nullptr);
    EXPECT_EQ(listLength(*program.get()) + merged.count, isTaken() ? 11 : 10);
    if (!isTaken()) {
      EXPECT_NE(newcomer->findProperty("y"), nullptr);
    }
  }

 private:
  // Whoever adds finds out by the head of the list whether the program has taken the object.
  bool isTaken() const { return added || program->firstObject == newcomer; }

  ObjectAST* newcomer;
  auto_ast<ProgramAST> program{programOf(0, 10)};
  Table<ObjectAST*, 100> merged;
  bool added = false;
};

// Merges 0..11 into 6..26: some objects are new there, also while the maps grow, some are merged.
class MergeOperation final : public Operation {
 public:
  explicit MergeOperation(bool targetGoesFirst, const EntriesLeft& left = {}, int reportsLeft = 0)
      : targetFirst(targetGoesFirst) {
    left.applyTo(*target.get());
    if (reportsLeft > 0) merged.data = new ObjectAST*[static_cast<size_t>(reportsLeft)];
    merged.capacity = reportsLeft;
    for (ObjectAST* o = source->firstObject; o != nullptr; o = o->next) handed.push_back(o);
  }
  ~MergeOperation() override {
    (targetFirst ? target : source).reset(nullptr);
    (targetFirst ? source : target).reset(nullptr);
  }

  void act() override { target->mergeProgram(source.get(), 1, 2, &merged); }

  void check(bool completed) override {
    expectSound(*target.get());
    expectSound(*source.get());
    for (const ObjectAST* o : handed) {
      EXPECT_FALSE(isListed(*source.get(), o) && isListed(*target.get(), o));
    }
    const int left = listLength(*source.get());
    EXPECT_EQ(left + listLength(*target.get()) + merged.count, 33);
    if (completed) {
      EXPECT_EQ(left, 0);
    }
  }

 private:
  const bool targetFirst;
  auto_ast<ProgramAST> target{programOf(6, 27)};
  auto_ast<ProgramAST> source{programOf(0, 12)};
  std::vector<ObjectAST*> handed;
  Table<ObjectAST*, 100> merged;
};

// Renames one of six objects in a map that is large enough to shrink.
class UpdateNameOperation final : public Operation {
 public:
  UpdateNameOperation() { program->namedObjects._resize_table(29, nullptr); }

  void act() override {
    program->updateName(oldName, newName);
    program->updateName(newName, newest);
  }

  void check(bool completed) override {
    newName.freeMem();
    newest.freeMem();
    expectSound(*program.get());
    EXPECT_EQ(listLength(*program.get()), 6);
    for (const char* name : {"0", "1", "2", "4", "5"}) EXPECT_NE(program->getObject(name), nullptr);
    if (completed) {
      EXPECT_NE(program->getObject("newest"), nullptr);
    }
  }

 private:
  auto_ast<ProgramAST> program{programOf(0, 6)};
  const CharString oldName{"3"};
  CharString newName{"a new name that is long enough for a block of its own"};
  CharString newest{"newest"};
};

// Clears a map that has grown.
class ClearOperation final : public Operation {
 public:
  void act() override { program->namedObjects.clear(); }

  void check(bool completed) override {
    expectSound(*program.get());
    EXPECT_EQ(program->namedObjects.count, completed ? 0 : 40);
    EXPECT_EQ(program->getObject("7") == nullptr, completed);
  }

 private:
  auto_ast<ProgramAST> program{programOf(0, 40)};
};

// Renames all objects of a scene and what refers to them.
class FilterOperation final : public Operation {
 public:
  static constexpr int kObjects = 40;

  // `before` is done before each object, which is told its number.
  explicit FilterOperation(std::function<void(int)> before = [](int) {})
      : scene(text()), beforeObject(std::move(before)) {}

  void act() override {
    int number = 0;
    FunctionFilter renaming([&](const CharString&, CharString& name, void*) {
      beforeObject(number++);
      name = makeCharString("a new name that is long enough for the heap ", name.chars(), nullptr);
      return 0;
    });
    scene.filter(renaming);
  }

  void check(bool completed) override {
    expectSound(*scene.program.get());
    EXPECT_EQ(listLength(*scene.program.get()), kObjects);
    for (const std::string& name : scene.references()) {
      EXPECT_EQ(name.starts_with("a new name"), completed);
    }
  }

  const ProgramAST& program() const { return *scene.program.get(); }

 private:
  static std::string text() {
    std::string objects;
    for (int i = 0; i < kObjects; ++i) {
      const std::string n = std::to_string(i);
      objects += (i % 3 == 0 ? "Q o" : "P o") + n + " { x = o" + n + ".y; }";
    }
    return objects;
  }

  FilteredScene scene;
  std::function<void(int)> beforeObject;
};

std::vector<Workload> additions() {
  return {workload<AddOperation>("add a short name", kNodes, "new"),
          workload<AddOperation>("add a long name", kNodes, std::string(2000, 'n')),
          workload<AddOperation>("add a name that is there", kNodes, "5")};
}

std::vector<Workload> otherOperations() {
  return {workload<MergeOperation>("merge, target released first", kNodes, true),
          workload<MergeOperation>("merge, source released first", kNodes, false),
          workload<UpdateNameOperation>("update a name", kNodes),
          workload<FilterOperation>("filter", kNodes)};
}

}  // namespace

TEST(ProgramMemory, EveryRequestThatFailsLeavesOneOwnerOfEverything) {
  Points points;
  for (const Workload& addition : additions()) points += failEveryRequest(addition);
  for (const Workload& operation : otherOperations()) points += failEveryRequest(operation);
  points += failEveryRequest(workload<ClearOperation>("clear", kNodes));
  points.report("memory A, programs", "heap requests of program operations");
}

TEST(ProgramMemory, EveryBlockThatIsRefusedLeavesOneOwnerOfEverything) {
  Points points;
  points += failEveryBlock(workload<FilterOperation>("filter", kNodes));
  for (const EntriesLeft left : {EntriesLeft{0, 1}, EntriesLeft{1, 0}, EntriesLeft{0, 0}}) {
    points += failEveryBlock(workload<AddOperation>("add", kNodes, "new", left));
  }
  // Six objects are new to the program that they are merged into.
  for (int k = 0; k < 6; ++k) {
    for (const EntriesLeft left : {EntriesLeft{k, 6}, EntriesLeft{6, k}, EntriesLeft{k, k}}) {
      for (const bool targetFirst : {false, true}) {
        points += failEveryBlock(
            workload<MergeOperation>("merge, entries left", kNodes, targetFirst, left));
      }
    }
  }
  points.report("memory B, programs", "entries of a program's maps");
}

// The report of a merge is its only step that can fail; here it does at the k-th of them.
TEST(ProgramMemory, EveryMergeThatCannotBeReportedLeavesOneOwnerOfEverything) {
  constexpr int kMerged = 6;
  Points points;
  for (int k = 0; k < kMerged; ++k) {
    for (const bool targetFirst : {false, true}) {
      const auto merge =
          workload<MergeOperation>("merge, reports left", kNodes, targetFirst, EntriesLeft(), k);
      points += failEveryRequest(merge);
    }
  }
  points.report("memory D, merges", "requests of merges whose report runs full");
}

// Alone: the same filter comes through the next time.
TEST(ProgramFailure, EveryObjectThatTheFilterThrowsAtLeavesAUsableProgram) {
  Points points;
  const Workload unharmed = workload<FilterOperation>("filter", kNodes);
  unharmed.make()->act();  // blocks of nodes stay
  for (int k = 0; k < FilterOperation::kObjects; ++k) {
    for (const bool persistent : {false, true}) {
      SCOPED_TRACE(k);
      expectLeavesNothing(unharmed, [&] {
        bool thrown = false;
        FilterOperation filter([&](int number) {
          if (number != k || (thrown && !persistent)) return;
          thrown = true;
          throw Foreign();
        });
        EXPECT_THROW(filter.act(), Foreign);
        filter.check(false);
        if (persistent) {
          EXPECT_THROW(filter.act(), Foreign);
        } else {
          filter.act();
        }
        expectSound(filter.program());
      });
      ++points.failures;
    }
  }
  points.report("memory D, filters", "objects that the filter threw at");
}

// The record of the frames is what adding a property can fail in.
TEST(ProgramFailure, EveryPropertyThatCannotBeAddedIsReleasedAndTheOthersStay) {
  constexpr int kProperties = 200;
  Points points;
  for (const bool persistent : {false, true}) {
    const int live = livePoolElements();
    const auto_ast<ObjectAST> holder(object("P", "a"));
    int added = 0;
    for (int i = 0; i < kProperties; ++i) {
      PropertyAST* refused = property("refused", binary(number(i), negated(number(2))));
      const auto addRefused = [&] { holder->addProperty(refused, 1, 2); };
      EXPECT_TRUE(runsOutOfMemory(1, addRefused, persistent));
      ++points.failures;
      holder->addProperty(property(std::to_string(i).c_str(), number(i)), 1, 2);
      ++added;
      EXPECT_EQ(livePoolElements(), live + 1 + 2 * added);
      EXPECT_EQ(holder->lastProperty->name.chars(), std::to_string(i));
      EXPECT_EQ(holder->findProperty("refused"), nullptr);
    }
  }
  points.report("memory D, properties", "properties that could not be added");
}
