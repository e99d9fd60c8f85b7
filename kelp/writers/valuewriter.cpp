#include "kelp/writers/valuewriter.h"

#include <algorithm>
#include <vector>

#include "kelp/source/characterclass.h"
#include "kelp/utils/exceptions.h"

namespace Kelp {

namespace {

bool isSum(const BinaryExpressionAST& node) {
  return node.op == BinaryExpressionAST::kPlus || node.op == BinaryExpressionAST::kMinus;
}

}  // namespace

bool ValueWriter::isIdentifier(std::string_view text) {
  if (text.empty() || text == "nan" || classOf(text[0]) != CharacterClass::kIdentifier)
    return false;
  return std::all_of(text.begin(), text.end(), isInIdentifier);
}

void ValueWriter::requireIdentifier(const CharString& name, const char* what) const {
  if (!isIdentifier(viewOf(name))) fail(std::string(what) + " is no identifier");
}

// ---- values ------------------------------------------------------------------------------------

void ValueWriter::perform(const Step& step) {
  switch (step.kind) {
    case Step::kValue:
      if (step.node == nullptr) fail("a value is null");
      current = step;
      return step.node->visit(*this);
    case Step::kText:
      return filler.add(step.text, step.gap, step.level);
    case Step::kCells:
      return performCells(step);
    case Step::kPairs:
      return performPairs(step);
  }
}

// One element, then the others: a list of any length holds one step.
void ValueWriter::performCells(const Step& step) {
  if (step.cell == nullptr) return filler.add(")");
  add(step.cell->expr, step.gap, step.level);
  if (step.cell->next != nullptr) addText(",");
  Step rest = step;
  rest.cell = step.cell->next;
  rest.gap = Gap::kWrap;
  steps.add(rest);
}

void ValueWriter::performPairs(const Step& step) {
  if (step.pair == nullptr) return filler.add(")");
  filler.add("(", step.gap, step.level);
  add(step.pair->key, Gap::kOpening, step.level + kBracket);
  addText(",");
  add(step.pair->value, Gap::kWrap, step.level + kBracket);
  addText(step.pair->next != nullptr ? ")," : ")");
  Step rest = step;
  rest.pair = step.pair->next;
  rest.gap = Gap::kWrap;
  steps.add(rest);
}

void ValueWriter::addCall(std::string_view name, ExpressionAST* const* arguments, int count) {
  open(name);
  const int level = current.level + kBracket;
  for (int i = 0; i < count; ++i) {
    if (i > 0) addText(",");
    add(arguments[i], i > 0 ? Gap::kWrap : Gap::kOpening, level);
  }
  addText(")");
}

void ValueWriter::visit(NegatedExpressionAST& node) {
  const bool brackets = current.atLeast > Rank::kTerm;
  if (brackets) put("(");
  const int level = current.level + (brackets ? kBracket : 0);
  filler.add("-", brackets ? Gap::kOpening : current.gap, level);
  add(node.operand, Gap::kNone, level, Rank::kAtom);
  if (brackets) addText(")");
}

// A chain of operators in one go. A sum that stands left of a product needs brackets; they open
// before the whole chain and close behind their part of it.
void ValueWriter::visit(BinaryExpressionAST& top) {
  const std::vector<BinaryExpressionAST*> spine = leftSpine(top);
  Gap gap = current.gap;
  int level = current.level;
  const auto openBracket = [&] {
    filler.add("(", gap, level);
    gap = Gap::kOpening;
    level += kBracket;
  };
  const auto closesBehind = [&](size_t i) {
    return i > 0 ? !isSum(*spine[i - 1]) && isSum(*spine[i])
                 : (isSum(top) ? Rank::kSum : Rank::kProduct) < current.atLeast;
  };
  for (size_t i = 0; i < spine.size(); ++i) {
    if (spine[i]->operatorSpelling()[0] == '\0') fail("an operator is unknown");
    if (closesBehind(i)) openBracket();
  }
  add(spine.back()->left, gap, level, Rank::kTerm);
  for (size_t i = spine.size(); i-- > 0;) {
    const bool sum = isSum(*spine[i]);
    addText(spine[i]->operatorSpelling(), Gap::kWrap, level + (sum ? 1 : 2));
    add(spine[i]->right, Gap::kSpace, level, sum ? Rank::kProduct : Rank::kTerm);
    if (!closesBehind(i)) continue;
    addText(")");
    level -= kBracket;
  }
}

void ValueWriter::visit(BuiltinFunctionAST& node) {
  const BuiltinFunction* function = BuiltinFunctionAST::findFunction(node.funcID);
  if (function == nullptr) fail("a function is unknown");
  if (node.numArgs != function->numArgs) {
    fail(std::string("a call of ") + function->name + " has " + std::to_string(node.numArgs) +
         " arguments");
  }
  addCall(function->name, node.args, node.numArgs);
}

void ValueWriter::visit(ArrayExpressionAST& node) {
  auto* base = dynamic_cast<PropertyReferenceAST*>(node.base);
  if (base == nullptr) fail("something else than a property is indexed");
  if (node.indices.empty()) fail("a property is indexed by nothing");
  visit(*base);
  for (ExpressionAST* index : node.indices) {
    addText("[");
    add(index, Gap::kOpening, current.level + kBracket);
    addText("]");
  }
}

void ValueWriter::writePair(const CharString& objectName, std::string_view mark,
                            const CharString& name) {
  requireIdentifier(objectName, "the object in a reference");
  requireIdentifier(name, "the name behind the object in a reference");
  put(viewOf(objectName));
  filler.add(mark);
  filler.add(viewOf(name));
}

// ---- texts -------------------------------------------------------------------------------------

// Backslashes stand for themselves but before another one or a quote.
void ValueWriter::quote(std::string_view text, Gap gap, int level) {
  if (text.data() == nullptr) fail("a text is null");
  filler.add("\"", gap, level);
  size_t plainFrom = 0;
  for (size_t at = text.find_first_of(std::string_view("\"\\\0", 3)); at < text.size();
       at = text.find_first_of(std::string_view("\"\\\0", 3), at + 1)) {
    if (text[at] == '\0') fail("a text holds a NUL");
    const bool before = at > 0 && text[at - 1] == '\\';
    const char next = at + 1 < text.size() ? text[at + 1] : '"';
    if (text[at] == '\\' && !before && next != '\\' && next != '"') continue;
    filler.add(text.substr(plainFrom, at - plainFrom));
    filler.add("\\");
    plainFrom = at;
  }
  filler.add(text.substr(plainFrom));
  filler.add("\"");
}

void ValueWriter::fail(const std::string& what, const char* refusal) const {
  std::string message = std::string(refusal) + ": ";
  if (object != nullptr) {
    message += "object \"" + std::string(viewOf(object->type)) + ' ' +
               std::string(viewOf(object->name)) + "\", ";
  }
  if (property != nullptr) message += "property \"" + std::string(viewOf(property->name)) + "\", ";
  const CharString text((message + what).c_str());
  if (property == nullptr) throw NotWritableException(text);
  throw NotWritableException(text, property->file, property->line);
}

}  // namespace Kelp
