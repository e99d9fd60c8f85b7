// JsonWriter: a tree as JSON, with nothing lost; docs/json.md describes it.
#pragma once

#include <memory>
#include <string_view>

#include "kelp/program/programast.h"
#include "kelp/writers/textbuffer.h"

namespace Kelp {

/// Writes lines, one for every call. Neither depth nor length of the tree costs stack, and the text
/// is handed on in pieces. The nodes' borrowed texts must be alive. Throws what the sink throws and
/// std::bad_alloc, and is of no further use then.
class JsonWriter {
 public:
  explicit JsonWriter(TextSink sink);
  JsonWriter(const JsonWriter&) = delete;
  JsonWriter& operator=(const JsonWriter&) = delete;
  ~JsonWriter();

  /// All objects, in the order of the text. The name is that of the scene.
  void write(const ProgramAST& program, std::string_view sceneName);

  /// One object or property alone.
  void write(const ObjectAST& object);
  void write(const PropertyAST& property);

 private:
  class Nodes;

  std::unique_ptr<Nodes> nodes;
};

}  // namespace Kelp
