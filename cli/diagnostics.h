// Messages, on standard error unless it is said.
#pragma once

#include <functional>
#include <string>
#include <string_view>

#include "cli/exitcode.h"
#include "cli/options.h"
#include "kelp/scene.h"

namespace KelpCli {

/// The text with its control characters made harmless: names come from anywhere and must not steer
/// the terminal.
std::string withoutControls(std::string text);

/// Whether standard output, or standard error, was a terminal when this was first asked.
bool isTerminal(int descriptor);

/// Whether what goes to that descriptor is to be coloured: terminals are, unless NO_COLOR is set.
bool wantsColours(Colour colour, int descriptor);

/// Runs it; what it throws becomes a message and the exit code of trouble.
ExitCode reportingFailures(const std::function<ExitCode()>& act);

/// What a worker has caught of standard error.
void printError(const std::string& text);

/// "kelp: message" with the end of the line.
std::string complaint(std::string_view message);

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
