// SceneTextWriter: a tree as scene text that reads back to an equal tree.
#pragma once

#include <cstdint>
#include <memory>

#include "kelp/program/programast.h"
#include "kelp/utils/exceptions.h"
#include "kelp/writers/linefiller.h"

namespace Kelp {

class ValueWriter;

/// The tree holds what no scene text can say. What was written until then is of no use.
class NotWritableException : public Exception {
 public:
  explicit NotWritableException(const CharString& text, const CharString& propertyFile = {},
                                int propertyLine = 0) noexcept
      : message(text), file(propertyFile), line(propertyLine) {}
  CharString message;  ///< the object, the property, and what is wrong; never null
  CharString file;     ///< that the property was read from; null when it was not read
  int line;            ///< of the property; 0 when it is about none
};

/// Which of their two forms constants are written in: numbers, or hexadecimal text.
enum class ConstantForm {
  kAsItIs,
  kNumbers,      ///< hexadecimal forms are decoded
  kHexadecimal,  ///< lists of numbers are encoded, and transforms that decoding brings back
};

/// Writes scene text: one property a line, lists filled into lines, operators with the fewest
/// brackets that keep their grouping, numbers with digits that read back to the same bits. It is
/// laid out as formatText lays it out.
///
/// What a text does not hold is not written: comments, the files and lines that properties came
/// from and the folders of their strings, frames, the seeds of random calls, what a filter marked,
/// and whether a member was written as .x or as [0].
///
/// What a text cannot say is refused with NotWritableException: a null child or text; a NUL within
/// a text; types, names and references that are no identifiers (nan is none); a negative number
/// where the tree has no negation over it; unknown functions, operators and numbers of arguments;
/// an interpolation of nothing; indices without a property reference below them, or none at all; a
/// hexadecimal form without a text that was not read so; two objects of one type and name, which
/// would become one. No such tree comes from a parser without a name affix. Where hexadecimal forms
/// are decoded, those are refused too that cannot be (HexError says why).
///
/// Neither depth nor length of a tree costs stack, and the text is handed on in pieces. The nodes'
/// borrowed texts must be alive. Throws besides what the sink throws and std::bad_alloc.
class SceneTextWriter {
 public:
  explicit SceneTextWriter(TextSink sink);
  SceneTextWriter(const SceneTextWriter&) = delete;
  SceneTextWriter& operator=(const SceneTextWriter&) = delete;
  ~SceneTextWriter();

  /// Objects that the last filter rejected are written like the others, if this is not set.
  bool leaveOutFiltered = false;

  /// All assignments of a property are written, if this is not set; else, in each object, only the
  /// last one of every name.
  bool leaveOutOverridden = false;

  /// Lists and transforms that are constant read back to the same bits in either form, but for the
  /// not-a-numbers that no literal reaches. A Transform becomes a TransformHex only when all it
  /// holds are numbers that come back the same, to the last bit of a double, when that is decoded.
  ConstantForm constants = ConstantForm::kAsItIs;

  /// All objects, in the order of the text.
  void write(const ProgramAST& program);

  /// One object, behind an empty line when something stands before it.
  void write(const ObjectAST& object);

  /// `name = value;` on a line of its own.
  void write(const PropertyAST& property);

  /// A value on a line of its own.
  void write(ExpressionAST& value);

  /// To be called in the end: hands on what is still held back.
  void finish();

  /// Numbers that could only be written as another one, see NumberLiteral.
  int64_t approximatedNumbers() const;

 private:
  std::unique_ptr<ValueWriter> values;
};

}  // namespace Kelp
