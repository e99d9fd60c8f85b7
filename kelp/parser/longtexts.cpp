#include "kelp/parser/longtexts.h"

#include <cstring>

#include "kelp/ast/treewalk.h"

namespace Kelp {

namespace {

class LongTexts final : public TreeWalk {
 public:
  explicit LongTexts(SourcesReader& owner) : reader(owner) {}

  using TreeWalk::visit;
  void visit(StringExpressionAST& node) override {
    if (node.ownsText == 0) keep(node.span);
  }
  void visit(TransformHexExpressionAST& node) override { keep(node.textRef); }
  void visit(ListTypeExpressionAST<Vector>& node) override { keepHex(node); }
  void visit(ListTypeExpressionAST<int>& node) override { keepHex(node); }
  void visit(ListTypeExpressionAST<Color>& node) override { keepHex(node); }
  void visit(ListTypeExpressionAST<float>& node) override { keepHex(node); }

 private:
  template <class T>
  void keepHex(ListTypeExpressionAST<T>& node) {
    if (node.parsedForm == 0) keep(node.textRef);
  }

  // The argument of a hexadecimal form need not be a string, and then has no text.
  void keep(uint64_t (&record)[3]) {
    if (record[0] == 0) return;
    char* copy = reader.keepText(record[1]);
    std::memcpy(copy, reinterpret_cast<const char*>(record[0]), record[1]);
    record[0] = reinterpret_cast<uintptr_t>(copy);
    record[2] = reinterpret_cast<uintptr_t>(&reader.sceneText());
  }

  SourcesReader& reader;
};

}  // namespace

void keepLongTexts(const ObjectAST& object, SourcesReader& reader) {
  LongTexts texts(reader);
  for (const PropertyAST* property = object.firstProperty; property != nullptr;
       property = property->next) {
    texts.walk(property->value);
  }
}

}  // namespace Kelp
