#include "kelp/writers/dotwriter.h"

#include <set>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>

#include "kelp/ast/treetext.h"
#include "kelp/queries/references.h"

namespace Kelp {

namespace {

// Adds a character, or what stands for a byte that belongs to none, and gives its length.
size_t addCharacter(std::string& label, std::string_view text) {
  constexpr const char* kReplacement = "\xEF\xBF\xBD";
  const size_t length = leadingCharacter(text);
  const char first = text[0];
  const bool isControl = static_cast<unsigned char>(first) < 0x20 || first == 0x7F;
  if (first == '"') {
    label += "\\\"";
  } else if (first == '\\') {
    label += "\\\\";
  } else if (first == '&') {
    label += "&amp;";  // labels may hold entities
  } else if (first == '\n') {
    label += "\\n";
  } else if (length == 0 || isControl) {
    label += kReplacement;
  } else {
    label += text.substr(0, length);
  }
  return length > 0 ? length : 1;
}

// What stands between the quotes for a text.
std::string labelOf(const CharString& text) {
  std::string label;
  std::string_view rest = viewOf(text);
  while (!rest.empty()) rest.remove_prefix(addCharacter(label, rest));
  return label;
}

class Graph {
 public:
  Graph(const ProgramAST& shown, const TextSink& textSink) : program(shown), sink(textSink) {}

  void add(const std::string& line) {
    text += line;
    constexpr size_t kPiece = 65536;
    if (text.size() >= kPiece) handOn();
  }

  void handOn() {
    sink(text);
    text.clear();
  }

  void addNode(const ObjectAST& object) {
    const size_t number = nodes.size() + 1;
    nodes.emplace(&object, number);
    const std::string name = labelOf(object.name);
    add("  n" + std::to_string(number) + " [label=\"" + name + (name.empty() ? "" : "\\n") +
        labelOf(object.type) + "\"];\n");
  }

  void addEdges(const ObjectAST& object) {
    const auto from = nodes.find(&object);
    if (from == nodes.end()) return;
    drawn.clear();
    findReferences(object, references);
    for (const Reference& reference : references) {
      const std::string to = targetOf(reference);
      if (to.empty() || !drawn.emplace(viewOf(reference.property->name), to).second) continue;
      add("  n" + std::to_string(from->second) + " -> " + to + " [label=\"" +
          labelOf(reference.property->name) + "\"];\n");
    }
  }

 private:
  // The node that a reference goes to; empty when it is not shown.
  std::string targetOf(const Reference& reference) {
    const ObjectAST* target = reference.resolved(program);
    if (target == nullptr) return danglingNode(*reference.target);
    const auto node = nodes.find(target);
    return node != nodes.end() ? 'n' + std::to_string(node->second) : std::string();
  }

  std::string danglingNode(const CharString& name) {
    const auto [known, isNew] = dangling.emplace(viewOf(name), dangling.size() + 1);
    std::string node = 'd' + std::to_string(known->second);
    if (isNew) add("  " + node + " [label=\"" + labelOf(name) + "\", style=dashed];\n");
    return node;
  }

  const ProgramAST& program;
  const TextSink& sink;
  std::string text;
  std::unordered_map<const ObjectAST*, size_t> nodes;        // numbers from 1
  std::unordered_map<std::string_view, size_t> dangling;     // likewise
  std::vector<Reference> references;                         // of one object
  std::set<std::pair<std::string_view, std::string>> drawn;  // its edges: property and node
};

}  // namespace

void DotWriter::write(const ProgramAST& program) {
  const std::vector<ObjectAST*> objects = objectsInTextOrder(program);
  Graph graph(program, sink);
  graph.add("digraph scene {\n  rankdir=LR;\n  node [shape=box];\n");
  for (const ObjectAST* object : objects) {
    if (isWanted == nullptr || isWanted(*object)) graph.addNode(*object);
  }
  for (const ObjectAST* object : objects) graph.addEdges(*object);
  graph.add("}\n");
  graph.handOn();
}

}  // namespace Kelp
