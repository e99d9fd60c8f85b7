// Messages, on standard error unless it is said.
#pragma once

#include <string>
#include <string_view>

#include "cli/exitcode.h"
#include "cli/options.h"
#include "kelp/scene.h"

namespace KelpCli {

/// Whether what goes to that descriptor is to be coloured: terminals are, unless NO_COLOR is set.
bool wantsColours(Colour colour, int descriptor);

/// "kelp: message" on a line of its own.
void complain(std::string_view message);

/// The message of a scene that could not be read, with the source line and a caret if there is one.
void report(const Kelp::SceneError& error, Colour colour);

/// "place: warning: message [code]" as a line for standard output, coloured where that is wished.
std::string warningLine(const std::string& place, const std::string& message, std::string_view code,
                        Colour colour);

/// The exit code that a scene with this error stands for.
ExitCode exitCodeOf(const Kelp::SceneError& error);

}  // namespace KelpCli
