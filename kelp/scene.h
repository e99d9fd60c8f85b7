// Scene: the front door for programs that read scenes.
//
//     Kelp::Scene scene = Kelp::Scene::fromFile("kitchen.scene");
//     if (!scene) { std::cerr << scene.error() << '\n'; return 1; }
//     for (const Kelp::ObjectAST& object : scene.objects()) ...
//
// Scenes share the static pools of the tree's nodes: use all scenes of a process on one thread at
// a time.
#pragma once

#include <cstdint>
#include <iosfwd>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "kelp/ast/visitor.h"
#include "kelp/parser/treeparser.h"

namespace Kelp {

/// How to read a scene.
struct SceneOptions {
  std::vector<std::string> includePaths;  ///< looked up after the including file's own directory
  std::string nameAffix;                  ///< joined to the names of all objects and references
  bool affixIsSuffix = false;             ///< false: before the name, true: behind it
  double firstFrame = 0.0;                ///< with lastFrame the frames that the text describes;
  double lastFrame = 0.0;                 ///< both 0: it holds for all frames
  bool collectReferences = false;         ///< record references, so that filter() can rename them
  int maxNestingDepth = 10000;            ///< of brackets in expressions; 0: only the stack counts
  bool mapFiles = false;                  ///< map files instead of reading them
  SourceLimits limits;                    ///< on bytes, includes and where those may lie
  int64_t maxObjects = 0;                 ///< in the text; 0: no limit
};

/// Why a scene could not be read.
struct SceneError {
  enum class Kind {
    kNone,        ///< it could
    kUnreadable,  ///< the scene's own file cannot be read
    kInvalid,     ///< the text breaks a rule of the language, or a file it includes is unusable
  };

  Kind kind = Kind::kNone;
  std::string message;  ///< may be empty: some rules fail without a word
  std::string file;     ///< where the reader stood, one token behind the one not understood
  int line = 0;         ///< likewise; from 1, 0 when the file could not be read

  std::string tokenFile;   ///< file of the token that was not understood
  int tokenLine = 0;       ///< its line, from 1
  int column = 0;          ///< its column, from 1, in characters of UTF-8
  std::string sourceLine;  ///< that line, without its end
  int lineColumn = 1;      ///< column of the first character in sourceLine, from 1: of a long line
                           ///< of a stream, it may be a part

  struct Include {
    std::string file;
    int line = 0;  ///< of the #include, from 1
  };
  /// How the reader came to tokenFile, innermost first; empty when that is the scene's own file.
  std::vector<Include> includedFrom;

  /// What may have been meant, fit for a terminal: a builtin function or a type that is spelled
  /// much like the one that was not recognized; empty when nothing comes close.
  std::string suggestion() const;

  /// "file:line:column" of the token, or just the file when it could not be read; fit for a
  /// terminal.
  std::string position() const;

  /// The source line (a part of it, when it is long) and a line with a caret under the token,
  /// with control characters made visible; empty when the file could not be read.
  std::string excerpt() const;

  /// The message, fit for a terminal and never empty.
  std::string describe() const;
};

/// "file:line:column: message", the excerpt and the #include lines that led there; nothing when
/// there was no error.
std::ostream& operator<<(std::ostream& out, const SceneError& error);

/// A scene that was read, with everything its tree refers to; or the reason why it could not be.
class Scene {
 public:
  /// Reads a file. The scene is false and error() says why when the file or its text is no good.
  /// Throws ExceptionMsg or std::bad_alloc when memory runs out.
  static Scene fromFile(const std::string& path, const SceneOptions& options = {});

  /// Reads a text in memory, of which it keeps a copy. The name stands in messages, and includes
  /// are looked up beside it. Throws as fromFile does.
  static Scene fromText(std::string_view text, const std::string& name,
                        const SceneOptions& options = {});
  static Scene fromText(std::string_view text, const SceneOptions& options = {});

  /// As fromText, without a copy: the text stays the caller's, unchanged, as long as the scene
  /// lives, and SourcesReader::kPadding zero bytes follow it.
  static Scene fromBorrowedText(std::string_view text, const std::string& name,
                                const SceneOptions& options = {});

  /// No scene yet: false, without an error and without objects.
  Scene() noexcept;
  Scene(Scene&& other) noexcept;
  Scene& operator=(Scene&& other) noexcept;
  ~Scene();

  /// True when the scene was read without an error. A scene that was moved from is as if new.
  explicit operator bool() const;
  /// Why it could not be read. Lives as long as the scene.
  const SceneError& error() const;

  class Objects;
  /// The objects in the order of the text; none after an error. The range lives as long as the
  /// scene; a call after objects were added to the program makes it anew.
  const Objects& objects() const;

  /// The first object of that name, null when there is none.
  const ObjectAST* find(const std::string& name) const;

  /// Marks and renames objects as TreeParser::doFilter does. Nothing after an error.
  void filter(ScenePluginFilter& filter);

  /// The program, still the scene's; null after an error.
  ProgramAST* program() const;

  /// The parser and the reader behind the scene, for what is not offered here.
  /// Requires: something was read.
  TreeParser& parser() const;
  SourcesReader& reader() const;

  // For the library itself.
  struct Parts;
  explicit Scene(std::unique_ptr<Parts> sceneParts);

 private:
  template <class Open>
  static Scene _read(const SceneOptions& options, const std::string& name, Open open);

  std::unique_ptr<Parts> parts;
};

/// A range of objects: for (const ObjectAST& object : scene.objects()).
class Scene::Objects {
 public:
  class Iterator {
   public:
    using value_type = const ObjectAST;
    using difference_type = std::ptrdiff_t;

    Iterator() = default;
    explicit Iterator(ObjectAST* const* place) : at(place) {}
    const ObjectAST& operator*() const { return **at; }
    const ObjectAST* operator->() const { return *at; }
    Iterator& operator++() {
      ++at;
      return *this;
    }
    Iterator operator++(int) { return Iterator(at++); }
    bool operator==(const Iterator& other) const = default;

   private:
    ObjectAST* const* at = nullptr;
  };

  Objects() = default;
  explicit Objects(std::vector<ObjectAST*> inTextOrder) : list(std::move(inTextOrder)) {}
  Iterator begin() const { return Iterator(list.data()); }
  Iterator end() const { return Iterator(list.data() + list.size()); }
  size_t size() const { return list.size(); }
  bool empty() const { return list.empty(); }
  const ObjectAST& operator[](size_t i) const { return *list[i]; }

 private:
  std::vector<ObjectAST*> list;
};

}  // namespace Kelp
