// deleteThis: what goes where, in which order, and how deep it may go.
#include <gtest/gtest.h>

#include <vector>

#include "kelp/ast/expressions.h"
#include "tests/support/allocations.h"
#include "tests/support/nodes.h"
#include "tests/support/parsing.h"
#include "tests/support/smallstack.h"

using namespace Kelp;
using namespace KelpTest;

namespace {

// Children are expected back in the order first, second, ...: the last one is handed out first.
void expectNumbersFreedInOrder(const std::vector<ExpressionAST*>& freed) {
  const auto next = nextElements<NumberExpressionAST>(static_cast<int>(freed.size()));
  for (size_t i = 0; i < freed.size(); ++i) {
    EXPECT_EQ(static_cast<ExpressionAST*>(next[i]), freed[freed.size() - 1 - i]) << i;
  }
}

TEST(Release, VectorWithoutSecondComponentFreesTheOtherTwo) {
  const int live = livePoolElements();
  ExpressionAST* first = number(1);
  ExpressionAST* third = number(3);
  VectorExpressionAST* node = vector(first, nullptr, third);
  node->deleteThis();
  EXPECT_EQ(livePoolElements(), live);
  expectNumbersFreedInOrder({first, third});
  EXPECT_EQ(nextElements<VectorExpressionAST>(1)[0], node);
  for (const ExpressionAST* component : node->components) EXPECT_EQ(component, nullptr);
}

TEST(Release, FourComponentsAndThreeRowsGoInOrder) {
  const int live = livePoolElements();
  std::vector<ExpressionAST*> parts{number(0), number(1), number(2), number(3)};
  AColorExpressionAST* color = AColorExpressionAST::pool.newElement();
  for (size_t i = 0; i < 4; ++i) color->components[i] = parts[i];
  color->deleteThis();
  expectNumbersFreedInOrder(parts);
  for (const ExpressionAST* component : color->components) EXPECT_EQ(component, nullptr);
  parts = {number(0), number(1), number(2)};
  MatrixExpressionAST* matrix = MatrixExpressionAST::pool.newElement();
  for (size_t i = 0; i < 3; ++i) matrix->rows[i] = parts[i];
  matrix->deleteThis();
  expectNumbersFreedInOrder(parts);
  for (const ExpressionAST* row : matrix->rows) EXPECT_EQ(row, nullptr);
  EXPECT_EQ(livePoolElements(), live);
}

TEST(Release, TransformFreesMatrixThenOffset) {
  const int live = livePoolElements();
  ExpressionAST* matrix = number(1);
  ExpressionAST* offset = number(2);
  TransformExpressionAST* node = TransformExpressionAST::pool.newElement();
  node->matrix = matrix;
  node->offset = offset;
  node->deleteThis();
  expectNumbersFreedInOrder({matrix, offset});
  EXPECT_EQ(node->matrix, nullptr);
  EXPECT_EQ(node->offset, nullptr);
  node = TransformExpressionAST::pool.newElement();
  node->offset = number(2);
  node->deleteThis();
  EXPECT_EQ(livePoolElements(), live);
}

TEST(Release, TransformHexClearsItsCountOnly) {
  TransformHexExpressionAST* node = TransformHexExpressionAST::pool.newElement();
  node->count = 1;
  node->textRef[0] = 7;
  node->textLength = 8;
  node->deleteThis();
  EXPECT_EQ(node->count, 0);
  EXPECT_EQ(node->textRef[0], 7U);
  EXPECT_EQ(node->textLength, 8);
}

TEST(Release, StringsKeepTheirBuffersUntilReuse) {
  const CharString text("text");
  StringExpressionAST* string = StringExpressionAST::pool.newElement();
  string->text = text;
  string->deleteThis();
  ObjectReferenceAST* reference = ObjectReferenceAST::pool.newElement();
  reference->name = text;
  reference->deleteThis();
  EXPECT_EQ(text.buffer->referenceCount, 3);
  StringExpressionAST::pool.newElement()->text.freeMem();
  ObjectReferenceAST::pool.newElement()->name.freeMem();
  EXPECT_EQ(text.buffer->referenceCount, 1);
  string->deleteThis();
  reference->deleteThis();
}

TEST(Release, NegationsGoInnermostFirst) {
  const int live = livePoolElements();
  NegatedExpressionAST* inner = negated(number(1));
  NegatedExpressionAST* middle = negated(inner);
  NegatedExpressionAST* outer = negated(middle);
  outer->deleteThis();
  EXPECT_EQ(livePoolElements(), live);
  const auto next = nextElements<NegatedExpressionAST>(3);
  EXPECT_EQ(next, (std::vector<NegatedExpressionAST*>{outer, middle, inner}));
  for (const NegatedExpressionAST* node : next) EXPECT_EQ(node->operand, nullptr);
  negated(nullptr)->deleteThis();
}

TEST(Release, NegationsOfTheHostsOwnClassAreAsked) {
  struct HostNegation : NegatedExpressionAST {
    void deleteThis() override { ++released; }
    ExpressionAST* getIth(int i) override {
      asked.push_back(i);
      return nullptr;
    }
    int released = 0;
    std::vector<int> asked;
  } host;
  NegatedExpressionAST* node = negated(&host);
  EXPECT_EQ(node->getIth(2), nullptr);
  EXPECT_EQ(host.asked, std::vector<int>{2});
  const int live = livePoolElements();
  node->deleteThis();
  EXPECT_EQ(host.released, 1);
  EXPECT_EQ(livePoolElements(), live - 1);
}

TEST(Release, SumsGoLeftRightAndThenThemselves) {
  std::vector<ExpressionAST*> terms;
  for (int i = 0; i < 5; ++i) terms.push_back(number(i));
  BinaryExpressionAST* right = binary(terms[3], terms[4]);
  ExpressionAST* sum = binary(binary(binary(terms[0], terms[1]), terms[2]), right);
  const int sums = BinaryExpressionAST::pool.liveCount();
  sum->deleteThis();
  EXPECT_EQ(BinaryExpressionAST::pool.liveCount(), sums - 4);
  expectNumbersFreedInOrder(terms);
}

TEST(Release, SumsWithoutAnOperandAreReleased) {
  const int live = livePoolElements();
  const int64_t heap = liveAllocations();
  binary(nullptr, nullptr)->deleteThis();
  binary(nullptr, number(1))->deleteThis();
  binary(number(1), nullptr)->deleteThis();
  EXPECT_EQ(livePoolElements(), live);
  EXPECT_EQ(liveAllocations(), heap);
}

TEST(Release, InterpolationReturnsThreePairsFirstOneLast) {
  const int live = livePoolElements();
  const int pairs = KeyList::pool.liveCount();
  InterpolateExpressionAST* node = interpolation(3);
  KeyList* first = node->first;
  KeyList* second = first->next;
  KeyList* third = second->next;
  std::vector<ExpressionAST*> numbers;
  for (KeyList* pair = first; pair != nullptr; pair = pair->next) {
    numbers.push_back(pair->key);
    numbers.push_back(pair->value);
  }
  EXPECT_EQ(KeyList::pool.liveCount(), pairs + 3);
  node->deleteThis();
  EXPECT_EQ(KeyList::pool.liveCount(), pairs);
  EXPECT_EQ(livePoolElements(), live);
  EXPECT_EQ(nextElements<KeyList>(3), (std::vector<KeyList*>{first, third, second}));
  EXPECT_EQ(nextElements<InterpolateExpressionAST>(1)[0], node);
  expectNumbersFreedInOrder(numbers);
  EXPECT_EQ(node->first, nullptr);
  EXPECT_EQ(node->last, nullptr);
  for (const KeyList* pair : {first, second, third}) {
    EXPECT_EQ(pair->key, nullptr);
    EXPECT_EQ(pair->value, nullptr);
    EXPECT_EQ(pair->next, nullptr);
  }
}

TEST(Release, InterpolationWithoutPairsOrWithHalfOne) {
  const int live = livePoolElements();
  interpolation(0)->deleteThis();
  InterpolateExpressionAST* half = interpolation(1);
  half->first->value->deleteThis();
  half->first->value = nullptr;
  half->deleteThis();
  EXPECT_EQ(livePoolElements(), live);
}

TEST(Release, TypedListFreesElementsAndDirectory) {
  const CharString directory("scenes");
  const int64_t heap = liveAllocations();
  auto* list = new ListTypeExpressionAST<CharString>;
  list->sourceDir = directory;
  list->elements.allocArray(3);
  list->elements[1] = "text";
  const PtrArray<CharString> sharing(list->elements);
  list->deleteThis();
  EXPECT_EQ(directory.buffer->referenceCount, 1);
  EXPECT_STREQ(sharing[1].chars(), "text");
  EXPECT_EQ(liveAllocations(), heap + 2);
}

void releaseNodesWithTextsAndVectors() {
  auto* call = new BuiltinFunctionAST;
  for (call->numArgs = 0; call->numArgs < 4; ++call->numArgs) {
    call->args[call->numArgs] = number(call->numArgs);
  }
  auto* list = new ListExpressionAST;
  list->head = list->tail = new ListCell{call, nullptr};
  auto* reference = new PropertyReferenceAST;
  reference->objectName = "object";
  reference->propertyName = "property";
  auto* array = new ArrayExpressionAST;
  array->base = reference;
  array->indices = {list, number(1)};
  auto* value = new RuntimeValueAST;
  value->objectName = "object";
  value->valueName = "value";
  binary(array, value)->deleteThis();
}

TEST(Release, NodesOfTheirOwnMemoryGiveEverythingBack) {
  releaseNodesWithTextsAndVectors();  // blocks of nodes stay
  const int live = livePoolElements();
  const int64_t heap = liveAllocations();
  releaseNodesWithTextsAndVectors();
  EXPECT_EQ(livePoolElements(), live);
  EXPECT_EQ(liveAllocations(), heap);
}

TEST(ReleaseDeep, FourMillionTermsOnASmallStack) {
  ExpressionAST* sum = nullptr;
  for (int i = 1; i < 4'000'000; ++i) sum = binary(sum, nullptr);
  const int live = BinaryExpressionAST::pool.liveCount();
  runOnStackOf(256 * 1024, [&] { sum->deleteThis(); });
  EXPECT_EQ(BinaryExpressionAST::pool.liveCount(), live - 3'999'999);
}

TEST(ReleaseDeep, MillionNegationsAreIndexedAndReleasedOnASmallStack) {
  const int live = livePoolElements();
  ExpressionAST* node = vector(number(1), number(2), number(3));
  ExpressionAST* innermost = node;
  for (int i = 0; i < 1'000'000; ++i) node = negated(node);
  ExpressionAST* component = nullptr;
  runOnStackOf(64 * 1024, [&] {
    component = node->getIth(1);
    node->deleteThis();
  });
  EXPECT_NE(component, nullptr);
  EXPECT_NE(component, innermost);
  EXPECT_EQ(livePoolElements(), live);
}

TEST(ReleaseDeep, MillionPairsAndCellsOnASmallStack) {
  const int live = livePoolElements();
  ExpressionAST* table = interpolation(1'000'000);
  auto* list = new ListExpressionAST;
  for (int i = 0; i < 1'000'000; ++i) {
    list->head = new ListCell{number(i), list->head};
  }
  runOnStackOf(64 * 1024, [&] {
    table->deleteThis();
    list->deleteThis();
  });
  EXPECT_EQ(livePoolElements(), live);
}

}  // namespace
