#include "kelp/utils/exceptions.h"

#include <cstdarg>
#include <cstdio>

namespace Kelp {

ExceptionMsg::ExceptionMsg(const char* format, ...) {
  // vsnprintf can give up half-way on a bad conversion, so the text is terminated at both ends.
  buffer[0] = '\0';
  va_list arguments;
  va_start(arguments, format);
  std::vsnprintf(buffer, sizeof buffer, format, arguments);
  va_end(arguments);
  buffer[sizeof buffer - 1] = '\0';
}

const char* ExceptionMsg::what() const { return buffer; }

}  // namespace Kelp
