// Elements come back from their pools as they were left; whoever takes one sets every field.
#include <gtest/gtest.h>

#include <string>

#include "tests/support/nodes.h"
#include "tests/support/parsing.h"

using namespace Kelp;
using namespace KelpTest;

namespace {

const uint64_t kDirt = 0xD1D1D1D1D1D1D1D1;

NumberExpressionAST strayNode;
ExpressionAST* const kStray = &strayNode;

// Gives a fresh or reused element back with all fields as `dirty` sets them.
template <class Node, class Dirty>
Node* freedAfter(Dirty dirty) {
  Node* node = Node::pool.newElement();
  dirty(*node);
  Node::pool.freeElement(node);
  return node;
}

// The next expression parsed must sit in the element that was just freed.
class Reused {
 public:
  explicit Reused(std::string_view text)
      : source(text), expression(source.started().parseExpression()) {}
  template <class Node>
  Node& as(const Node* expected) {
    EXPECT_EQ(expression.get(), static_cast<const ExpressionAST*>(expected));
    return *static_cast<Node*>(expression.get());
  }

 private:
  TextParser source;
  auto_ast<ExpressionAST> expression;
};

TEST(Reuse, Number) {
  const auto* freed = freedAfter<NumberExpressionAST>([](auto& n) { n.value = 77; });
  Reused reused("5");
  EXPECT_EQ(reused.as(freed).value, 5);
}

StringExpressionAST* dirtyString() {
  return freedAfter<StringExpressionAST>([](auto& n) {
    n.directory = "old directory";
    n.text = "old text";
    n.span[0] = n.span[1] = n.span[2] = kDirt;
    n.spanLength = 77;
    n.ownsText = 77;
  });
}

TEST(Reuse, ShortString) {
  const auto* freed = dirtyString();
  Reused reused("\"abc\"");
  const StringExpressionAST& node = reused.as(freed);
  EXPECT_STREQ(node.directory.chars(), "scenes");
  EXPECT_STREQ(node.text.chars(), "abc");
  for (const uint64_t word : node.span) EXPECT_EQ(word, 0U);
  EXPECT_EQ(node.spanLength, 0);
  EXPECT_EQ(node.ownsText, 1);
}

TEST(Reuse, LongString) {
  const auto* freed = dirtyString();
  const std::string text(2000, 'x');
  Reused reused("\"" + text + "\"");
  const StringExpressionAST& node = reused.as(freed);
  EXPECT_STREQ(node.directory.chars(), "scenes");
  EXPECT_TRUE(node.text.isNull());
  for (const uint64_t word : node.span) EXPECT_NE(word, kDirt);
  EXPECT_EQ(std::string(reinterpret_cast<const char*>(node.span[0]), node.span[1]), text);
  EXPECT_EQ(node.spanLength, 2000);
  EXPECT_EQ(node.ownsText, 0);
}

TEST(Reuse, VectorAndColor) {
  for (const char* keyword : {"Vector", "Color"}) {
    const auto* freed = freedAfter<VectorExpressionAST>([](auto& n) {
      for (ExpressionAST*& component : n.components) component = kStray;
      n.kind = VALUE_TYPE{77};
    });
    Reused reused(std::string(keyword) + "(1,2,3)");
    const VectorExpressionAST& node = reused.as(freed);
    for (int i = 0; i < 3; ++i) EXPECT_EQ(valueOf(node.components[i]), i + 1);
    EXPECT_EQ(node.kind, keyword[0] == 'V' ? VALUE_VECTOR : VALUE_COLOR);
  }
}

TEST(Reuse, FourComponentsRowsAndTransform) {
  const auto* color = freedAfter<AColorExpressionAST>([](auto& n) {
    for (ExpressionAST*& component : n.components) component = kStray;
  });
  Reused reusedColor("AColor(1,2,3,4)");
  for (int i = 0; i < 4; ++i) EXPECT_EQ(valueOf(reusedColor.as(color).components[i]), i + 1);
  const auto* matrix = freedAfter<MatrixExpressionAST>([](auto& n) {
    for (ExpressionAST*& row : n.rows) row = kStray;
  });
  Reused reusedMatrix("Matrix(1,2,3)");
  for (int i = 0; i < 3; ++i) EXPECT_EQ(valueOf(reusedMatrix.as(matrix).rows[i]), i + 1);
  const auto* transform =
      freedAfter<TransformExpressionAST>([](auto& n) { n.matrix = n.offset = kStray; });
  Reused reusedTransform("Transform(1,2)");
  EXPECT_EQ(valueOf(reusedTransform.as(transform).matrix), 1);
  EXPECT_EQ(valueOf(reusedTransform.as(transform).offset), 2);
}

TEST(Reuse, TransformHex) {
  const auto* freed = freedAfter<TransformHexExpressionAST>([](auto& n) {
    n.count = 77;
    n.textRef[0] = n.textRef[1] = n.textRef[2] = kDirt;
    n.textLength = 77;
  });
  Reused reused("TransformHex(\"abcde\")");
  const TransformHexExpressionAST& node = reused.as(freed);
  EXPECT_EQ(node.count, 1);
  for (const uint64_t word : node.textRef) EXPECT_NE(word, kDirt);
  EXPECT_EQ(node.textRef[1], 5U);
  EXPECT_EQ(node.textLength, 5);
}

TEST(Reuse, ObjectReference) {
  const auto* freed = freedAfter<ObjectReferenceAST>([](auto& n) {
    n.name = "old";
    n.object = reinterpret_cast<ObjectAST*>(kStray);
  });
  Reused reused("lamp");
  EXPECT_STREQ(reused.as(freed).name.chars(), "lamp");
  EXPECT_EQ(reused.as(freed).object, nullptr);
}

TEST(Reuse, Negation) {
  const auto* freed = freedAfter<NegatedExpressionAST>([](auto& n) { n.operand = kStray; });
  Reused reused("-5");
  EXPECT_EQ(valueOf(reused.as(freed).operand), 5);
}

TEST(Reuse, InterpolationAndItsPairs) {
  for (int round = 0; round < 2; ++round) {
    const auto* table = freedAfter<InterpolateExpressionAST>([](auto& n) {
      n.first = n.last = reinterpret_cast<KeyList*>(kStray);
      n.count = 77;
    });
    const auto* pair = freedAfter<KeyList>([](auto& n) {
      n.key = n.value = kStray;
      n.next = reinterpret_cast<KeyList*>(kStray);
    });
    Reused reused("interpolate((1,2))");
    const InterpolateExpressionAST& node = reused.as(table);
    EXPECT_EQ(node.count, 1);
    EXPECT_EQ(node.first, pair);
    EXPECT_EQ(node.last, pair);
    EXPECT_EQ(valueOf(pair->key), 1);
    EXPECT_EQ(valueOf(pair->value), 2);
    EXPECT_EQ(pair->next, nullptr);
  }
}

ObjectAST* dirtyObject() {
  return freedAfter<ObjectAST>([](auto& n) {
    n.firstProperty = n.lastProperty = reinterpret_cast<PropertyAST*>(kStray);
    n.type = "old type";
    n.name = "old name";
    n.next = reinterpret_cast<ObjectAST*>(kStray);
    n.extra = kStray;
    n.filteredOut = 77;
  });
}

TEST(Reuse, Object) {
  for (const char* text : {"Box {}", "Box lid {}"}) {
    const auto* freed = dirtyObject();
    TextParser source(text);
    const auto_ast<ObjectAST> node(source.started().parseObject());
    EXPECT_EQ(node.get(), freed);
    EXPECT_EQ(node->firstProperty, nullptr);
    EXPECT_EQ(node->lastProperty, nullptr);
    EXPECT_STREQ(node->type.chars(), "Box");
    EXPECT_STREQ(node->name.chars(), text[4] == 'l' ? "lid" : "");
    EXPECT_EQ(node->next, nullptr);
    EXPECT_EQ(node->extra, nullptr);
    EXPECT_EQ(node->filteredOut, 0);
  }
}

TEST(Reuse, ObjectThatFailsAtOnceDropsWhatItWas) {
  const auto* freed = dirtyObject();
  const int live = livePoolElements();
  TextParser source("= {}");
  EXPECT_THROW(source.started().parseObject(), InvalidSyntaxException);
  EXPECT_EQ(livePoolElements(), live);
  EXPECT_EQ(freed->firstProperty, nullptr);
  EXPECT_TRUE(freed->name.isNull());
}

TEST(Reuse, Property) {
  const auto* freed = freedAfter<PropertyAST>([](auto& n) {
    n.name = "old name";
    n.value = kStray;
    n.file = "old file";
    n.line = 77;
    n.next = reinterpret_cast<PropertyAST*>(kStray);
    n.extra = kStray;
    n.records = reinterpret_cast<PropertyRecord*>(kStray);
  });
  TextParser source("width = 5;");
  const auto_ast<PropertyAST> node(source.started().parseProperty());
  EXPECT_EQ(node.get(), freed);
  EXPECT_STREQ(node->name.chars(), "width");
  EXPECT_EQ(valueOf(node->value), 5);
  EXPECT_STREQ(node->file.chars(), "scenes/test.scene");
  EXPECT_EQ(node->line, 1);
  EXPECT_EQ(node->next, nullptr);
  EXPECT_EQ(node->extra, nullptr);
  EXPECT_EQ(node->records, nullptr);
}

template <int Kind, class T>
void expectReusedEntryIsSet(const T& oldValue, const T& newValue) {
  HashMap<T, Kind> map;
  auto* entry = map._insert("old key", oldValue, nullptr).entry;
  entry->next = nullptr;
  map.erase("old key");
  const auto inserted = map._insert("new key", newValue, nullptr);
  EXPECT_EQ(inserted.entry, entry);
  EXPECT_STREQ(inserted.entry->key, "new key");
  EXPECT_TRUE(inserted.entry->value == newValue);
  EXPECT_EQ(inserted.entry->next, nullptr);
}

TEST(Reuse, MapEntries) {
  expectReusedEntryIsSet<0, int>(1, 2);
  expectReusedEntryIsSet<1, CharString>(CharString("old"), CharString("new"));
  expectReusedEntryIsSet<1, CharString>(CharString("old"), CharString());
}

}  // namespace
