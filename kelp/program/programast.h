// ProgramAST: the root of a parsed scene, the table of its objects.
#pragma once

#include <string_view>
#include <vector>

#include "kelp/ast/objects.h"
#include "kelp/program/hashmap.h"

namespace Kelp {

/// The key function of typed objects: writes type, one tab and name into the buffer, cut to
/// bufferSize - 1 chars. An absent type or name counts as empty. Writes the final NUL whatever
/// bufferSize is.
void getNameTypeKey(ObjectAST* const& object, char* buffer, int bufferSize);

/// All objects that a scene defines, each pair of type and name once. The program owns its objects
/// and borrows their names: while an object is in a program nobody else changes its type or name.
/// A program belongs to one thread at a time.
///
/// Memory can run out in every operation that adds (ExceptionMsg or std::bad_alloc); what the
/// program holds then is destroyed with it as usual.
///
/// While a filter runs over the program, addObject, mergeProgram and updateName throw ExceptionMsg
/// and change nothing.
class ProgramAST final : public AST {
 public:
  using ObjectMap = HashMap<ObjectAST*, 0, 1024, 0>;

  ProgramAST() = default;

  /// Adds an object and takes ownership of it. When an object of that type and name is there, the
  /// newcomer's properties are merged into it (t1 and t2 go to ObjectAST::merge), the newcomer is
  /// released and the older object appended to `mergedObjects` (may be null). When this throws, the
  /// program owns the object if it is firstObject, else it is still the caller's.
  /// Requires: the object is in no program already.
  void addObject(ObjectAST* object, double t1, double t2, Table<ObjectAST*, 100>* mergedObjects);

  /// Moves all objects of `other` here, newest first, each as addObject would. The other program
  /// stays alive and empty. When this throws, every object is owned by exactly one of the two, and
  /// the maps of the other know none that has left it, nor all that are left. Merging a program
  /// into itself does nothing.
  void mergeProgram(ProgramAST* other, double t1, double t2, Table<ObjectAST*, 100>* mergedObjects);

  /// Makes the object known as oldName known as newName to getObject; the object's own name is
  /// the caller's business. An unknown oldName changes nothing. When newName is taken its holder
  /// keeps it, and the renamed object can no longer be found. The program shares newName until it
  /// is released, so the caller may drop its own handle.
  void updateName(const CharString& oldName, CharString& newName);

  /// As updateName, for a newName whose characters stay alive and unchanged without the program.
  void _moveName(const CharString& oldName, const CharString& newName);

  // ---- for ObjectQueue ----

  /// Where an object belongs in the two maps.
  struct Hashes {
    uint32_t typed;
    uint32_t name;
  };
  /// Throws std::bad_alloc.
  Hashes _hashesOf(const ObjectAST& object);

  /// Let memory fetch what adding an object of these hashes will read, each what the one before
  /// it has found.
  void _fetchBuckets(Hashes hashes) const;
  void _fetchEntries(Hashes hashes) const;
  void _fetchObjects(Hashes hashes) const;
  void _fetchNames(Hashes hashes) const;

  /// addObject, with the object's hashes in hand.
  void _addHashed(ObjectAST* object, Hashes hashes, double t1, double t2,
                  Table<ObjectAST*, 100>* mergedObjects);

  /// The first object added under that name, still the program's; null when there is none or
  /// `name` is null.
  ObjectAST* getObject(const char* name) const;

  /// Releases the program and all its objects; while a filter runs over it, at the end of that run.
  void deleteThis() override;

  /// A filter's run over a program; it lasts as long as this lives.
  class FilterRun {
   public:
    /// Throws ExceptionMsg when a filter runs over that program already.
    explicit FilterRun(ProgramAST* filtered);
    FilterRun(const FilterRun&) = delete;
    FilterRun& operator=(const FilterRun&) = delete;
    ~FilterRun();

   private:
    ProgramAST* program;
  };

  ObjectMap typedObjects;            ///< by type and name
  ObjectMap namedObjects;            ///< by name, borrowed from the objects; the first holder only
  ObjectAST* firstObject = nullptr;  ///< newest first, linked through ObjectAST::next
  int32_t numObjects = 0;            ///< objects added as new

 private:
  struct TypedSearch;

  size_t _writeTypedKey(std::string_view type, std::string_view name);
  TypedSearch _searchTyped(const ObjectAST& object, uint32_t hash);
  void _refuseDuringFilter(const char* operation) const;
  bool _isListed(const ObjectAST* object) const;

  std::vector<CharString> sharedNames;  // keeps the names given to updateName alive
  bool isFiltered = false;              // a filter runs over the program
  bool isReleasedAfterFilter = false;   // deleteThis was called during that run
};

/// The objects of a program in the order of the text: oldest first. They stay the program's.
std::vector<ObjectAST*> objectsInTextOrder(const ProgramAST& program);

}  // namespace Kelp
