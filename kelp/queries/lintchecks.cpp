// The rules of lint: a class each, and a row in the table at the end.
#include <algorithm>
#include <cmath>
#include <unordered_map>
#include <unordered_set>
#include <vector>

#include "kelp/ast/treetext.h"
#include "kelp/ast/treewalk.h"
#include "kelp/queries/lint.h"
#include "kelp/queries/lintcheck.h"
#include "kelp/queries/references.h"

namespace Kelp {

namespace {

std::string quoted(const CharString& name) { return '"' + std::string(viewOf(name)) + '"'; }

std::string placeOf(const PropertyAST& property) {
  return std::string(viewOf(property.file)) + ':' + std::to_string(property.line);
}

// Not clear(): that takes time for the room of the largest contents there were.
template <class Container>
void forget(Container& container) {
  Container().swap(container);
}

// ---- names -------------------------------------------------------------------------------------

class DanglingReference final : public LintCheck {
 public:
  void begin(const ProgramAST& checked) override { program = &checked; }

  void checkProperty(const PropertyAST& property, const Report& report) override {
    findReferences(property, references);
    forget(names);
    for (const Reference& reference : references) {
      if (reference.resolved(*program) != nullptr) continue;
      if (!names.insert(viewOf(*reference.target)).second) continue;
      report("refers to " + quoted(*reference.target) + ", but no object has that name");
    }
  }

 private:
  const ProgramAST* program = nullptr;
  std::vector<Reference> references;
  std::unordered_set<std::string_view> names;  // that were reported of the property
};

// A program that draws what its settings name knows what is used; a library of materials is there
// to be included. Only who wrote the scene knows which of them it is, so this is not the default.
class UnusedObject final : public LintCheck {
 public:
  void begin(const ProgramAST& program) override {
    std::vector<Reference> references;
    for (const ObjectAST* each = program.firstObject; each != nullptr; each = each->next) {
      findReferences(*each, references);
      for (const Reference& reference : references) {
        const ObjectAST* target = reference.resolved(program);
        if (target != each) used.insert(target);
      }
    }
  }

  void checkObject(const ObjectAST& object, const Report& report) override {
    const bool canBeUsed = !object.name.isEmpty();
    if (canBeUsed && !used.contains(&object)) report("is referred to by no other object");
  }

 private:
  std::unordered_set<const ObjectAST*> used;
};

class RepeatedProperty final : public LintCheck {
 public:
  void checkObject(const ObjectAST&, const Report&) override { forget(latest); }

  void checkProperty(const PropertyAST& property, const Report& report) override {
    const PropertyAST*& before = latest[viewOf(property.name)];
    if (before != nullptr) {
      report("was assigned before, at " + placeOf(*before) + "; the last assignment counts");
    }
    before = &property;
  }

 private:
  std::unordered_map<std::string_view, const PropertyAST*> latest;  // of the object, by name
};

// Only the letters of ASCII have another case here: names are bytes to the language.
class SimilarName final : public LintCheck {
 public:
  void checkObject(const ObjectAST& object, const Report& report) override {
    std::string folded(viewOf(object.name));
    for (char& c : folded) {
      if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
    }
    const ObjectAST* first = firstOnes.emplace(std::move(folded), &object).first->second;
    if (viewOf(first->name) == viewOf(object.name)) return;
    const PropertyAST* place = first->firstProperty;
    report("differs from " + quoted(first->name) +
           (place != nullptr ? " at " + placeOf(*place) : "") + " in the case of letters only");
  }

 private:
  std::unordered_map<std::string, const ObjectAST*> firstOnes;
};

// ---- numbers -----------------------------------------------------------------------------------

// Literals alone become such numbers, and only those that are too large: there is no spelling for
// infinity and not-a-number themselves.
class NotFiniteNumbers final : public TreeWalk {
 public:
  int64_t count = 0;

  using TreeWalk::visit;
  void visit(NumberExpressionAST& node) override { see(node.value); }
  void visit(ListTypeExpressionAST<float>& node) override {
    for (int i = 0; i < node.elements.count; ++i) see(node.elements[i]);
  }
  void visit(ListTypeExpressionAST<Vector>& node) override {
    for (int i = 0; i < node.elements.count; ++i) {
      const Vector& vector = node.elements[i];
      see(vector.x), see(vector.y), see(vector.z);
    }
  }
  void visit(ListTypeExpressionAST<Color>& node) override {
    for (int i = 0; i < node.elements.count; ++i) {
      const Color& color = node.elements[i];
      see(color.r), see(color.g), see(color.b);
    }
  }

 private:
  void see(double value) {
    if (!std::isfinite(value)) ++count;
  }
};

class NumberOverflow final : public LintCheck {
 public:
  void checkProperty(const PropertyAST& property, const Report& report) override {
    NotFiniteNumbers numbers;
    numbers.walk(property.value);
    if (numbers.count == 1) report("has a number that is infinite or not-a-number");
    if (numbers.count > 1) {
      report("has " + std::to_string(numbers.count) + " numbers that are infinite or not-a-number");
    }
  }
};

// ---- hexadecimal forms -------------------------------------------------------------------------

struct HexForm {
  std::string_view text;  // data() is null when none stood there
  size_t elementDigits;
  bool isList;  // of any number of elements
};

// The forms of a value, in the order of the text.
class HexForms final : public TreeWalk {
 public:
  explicit HexForms(ExpressionAST* value) {
    walk(value);
    std::reverse(forms.begin(), forms.end());  // the walk takes the last child first
  }

  std::vector<HexForm> forms;

  using TreeWalk::visit;
  void visit(TransformHexExpressionAST& node) override {
    constexpr size_t kNumbers = 12;  // nine of the matrix, three of the offset
    forms.push_back({recordedText(node.textRef), kNumbers * kDigits, false});
  }
  void visit(ListTypeExpressionAST<int>& node) override { add(node, kDigits); }
  void visit(ListTypeExpressionAST<float>& node) override { add(node, kDigits); }
  void visit(ListTypeExpressionAST<Vector>& node) override { add(node, 3 * kDigits); }
  void visit(ListTypeExpressionAST<Color>& node) override { add(node, 3 * kDigits); }

 private:
  static constexpr size_t kDigits = 8;  // of a number of 32 bits

  template <class T>
  void add(const ListTypeExpressionAST<T>& node, size_t elementDigits) {
    if (node.parsedForm == 0) forms.push_back({recordedText(node.textRef), elementDigits, true});
  }
};

class HexDigit final : public LintCheck {
 public:
  void checkProperty(const PropertyAST& property, const Report& report) override {
    for (const HexForm& form : HexForms(property.value).forms) {
      const auto bad = std::find_if_not(form.text.begin(), form.text.end(), isHexDigit);
      if (bad == form.text.end()) continue;
      report("has hexadecimal text whose character " + std::to_string(bad - form.text.begin() + 1) +
             " is no hexadecimal digit");
    }
  }

 private:
  static bool isHexDigit(char c) {
    return (c >= '0' && c <= '9') || (c >= 'a' && c <= 'f') || (c >= 'A' && c <= 'F');
  }
};

class HexLength final : public LintCheck {
 public:
  void checkProperty(const PropertyAST& property, const Report& report) override {
    for (const HexForm& form : HexForms(property.value).forms) {
      if (const std::string wrong = whatIsWrong(form); !wrong.empty()) report(wrong);
    }
  }

 private:
  static std::string whatIsWrong(const HexForm& form) {
    if (form.text.data() == nullptr) return "has a hexadecimal form without a text";
    const size_t length = form.text.size();
    const bool fits = form.isList ? length % form.elementDigits == 0 : length == form.elementDigits;
    if (fits) return {};
    const std::string message = "has hexadecimal text of " + std::to_string(length) + " characters";
    if (length % 2 != 0) return message + ", an odd number";
    const std::string needed = std::to_string(form.elementDigits);
    return message + (form.isList ? " where a multiple of " + needed + " is needed"
                                  : " where " + needed + " are needed");
  }
};

// ---- the table ---------------------------------------------------------------------------------

template <class Check>
std::unique_ptr<LintCheck> make() {
  return std::make_unique<Check>();
}

constexpr LintRule kRules[] = {
    {"dangling-reference", "a reference to a name that no object has", true,
     make<DanglingReference>},
    {"unused-object", "an object with a name that no other object refers to", false,
     make<UnusedObject>},
    {"repeated-property", "a property that is assigned again in the same object", true,
     make<RepeatedProperty>},
    {"similar-name", "an object whose name differs from another's in the case of letters only",
     true, make<SimilarName>},
    {"number-overflow", "a number literal so large that it became infinite or not-a-number", true,
     make<NumberOverflow>},
    {"hex-digit", "hexadecimal text with a character that is no hexadecimal digit", true,
     make<HexDigit>},
    {"hex-length", "hexadecimal text of a length that makes no whole number of elements", true,
     make<HexLength>},
};

}  // namespace

std::span<const LintRule> lintRules() { return kRules; }

}  // namespace Kelp
