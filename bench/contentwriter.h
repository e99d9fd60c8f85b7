// ContentWriter: one content, written as scene text, JSON or XML.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace KelpBench {

enum class Syntax { kScene, kJson, kXml };

/// What a content consists of. Between begin() and end() of one of these lie its parts, with next()
/// between any two of them.
enum class Part {
  kProgram,        ///< of objects
  kObject,         ///< its type and its name; next() is called once, behind the last kProperty
  kProperty,       ///< a short one, its value a number, kText, kName, kVector or kColor
  kLongProperty,   ///< any other, behind the short ones
  kText,           ///< characters, within a short property
  kName,           ///< of an object or of a property of one, within a short property
  kVector,         ///< of three numbers, within a short property or a list of vectors
  kColor,          ///< likewise, within a short property
  kVectorList,     ///< of vectors
  kIntList,        ///< of numbers
  kHexVectorList,  ///< of hexadecimal digits
  kHexIntList,     ///< likewise
  // Expressions, within long properties.
  kNumber,
  kString,
  kReference,
  kMember,  ///< its name; of one expression
  kIndex,   ///< of an expression and a number
  kNegation,
  kGroup,  ///< brackets that only the scene text needs
  kAddition,
  kSubtraction,
  kMultiplication,
  kDivision,
  kCall,           ///< the name of the function; of its arguments
  kList,           ///< of expressions
  kInterpolation,  ///< of kPair
  kPair,           ///< of two expressions
  kVectorValue,    ///< of three expressions
};

/// A number as its digits: [-]whole[.decimals], with as many decimals as `places` says.
struct Decimal {
  uint32_t whole = 0;
  int places = 0;
  uint32_t decimals = 0;
  bool negative = false;
};

class ContentWriter {
 public:
  explicit ContentWriter(Syntax contentSyntax) : syntax(contentSyntax) {}

  void begin(Part part, std::string_view name = {}, std::string_view secondName = {});
  void next();
  void end();

  void number(const Decimal& decimal);
  /// Plain characters, within kText, kName, kString, kReference or a hexadecimal list.
  void characters(std::string_view plain) { text += plain; }
  /// A part that holds nothing but characters.
  void leaf(Part part, std::string_view plain);
  /// A number that is an expression.
  void numberValue(const Decimal& decimal);

  std::string text;
  /// Numbers, texts, names, vectors, lists, operators, calls and objects so far.
  int64_t values = 0;
  /// What the numbers in lists of vectors and numbers take as float and int.
  int64_t listBytes = 0;

 private:
  struct Open {
    Part part;
    std::string name;
    std::string secondName;
  };

  void _add(const char* piece, const Open& open);

  Syntax syntax;
  int openLists = 0;
  std::vector<Open> stack;
};

}  // namespace KelpBench
