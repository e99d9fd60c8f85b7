// ErrorInfo: the record of a failed parse.
#pragma once

#include "kelp/utils/charstring.h"

namespace Kelp {

/// Text, line and file of the last failure. A successful parse does not clear it.
class ErrorInfo {
 public:
  void setErrorText(const CharString& errorText) { text = errorText; }
  void setErrorLine(int errorLine) { line = errorLine; }
  void setErrorFile(const CharString& errorFile) { file = errorFile; }

  const CharString& getErrorText() const { return text; }
  /// From 1, where the reader stood: one token behind the one that was not understood.
  int getErrorLine() const { return line; }
  const CharString& getErrorFile() const { return file; }

 private:
  CharString text;
  int line = 0;
  CharString file;
};

}  // namespace Kelp
