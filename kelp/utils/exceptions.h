// The library's exceptions: two families, unrelated to each other and to std::exception.
//
// ExceptionMsg reports exhausted resources and carries its text in itself, so that it needs no
// memory. Exception and its subclasses carry a shared CharString and cost nothing to copy.
#pragma once

#include "kelp/utils/charstring.h"

namespace Kelp {

/// A printf-formatted text in a fixed buffer; owns no heap memory.
class ExceptionMsg {
 public:
  /// Formats like printf. Texts of more than 1023 characters are cut.
  [[gnu::format(printf, 2, 3)]] explicit ExceptionMsg(const char* format, ...);
  ExceptionMsg(const ExceptionMsg&) = default;
  ExceptionMsg& operator=(const ExceptionMsg&) = default;
  virtual ~ExceptionMsg() = default;

  /// The text, never null; lives as long as the exception.
  virtual const char* what() const;

 private:
  char buffer[1024];
};

/// Lets a handler name the whole family below.
class Exception {};

/// The scene text breaks a rule of the language.
class InvalidSyntaxException : public Exception {
 public:
  explicit InvalidSyntaxException(const CharString& text) noexcept : message(text) {}
  CharString message;  ///< what was expected; may be null
};

/// A component was asked of a node that has none.
class NotIndexableException : public Exception {
 public:
  explicit NotIndexableException(const CharString& text) noexcept : message(text) {}
  CharString message;  ///< null when thrown by a node
};

/// A source cannot be used: unreadable, badly encoded, or with a string or comment that never ends.
class InvalidSourceFile : public Exception {
 public:
  explicit InvalidSourceFile(const CharString& text) noexcept : message(text) {}
  CharString message;  ///< what is wrong with the source; may be null
};

}  // namespace Kelp
