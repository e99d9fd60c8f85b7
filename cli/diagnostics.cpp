#include "cli/diagnostics.h"

#include <fmt/format.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <string>

namespace KelpCli {

namespace {

constexpr const char* kRed = "\x1b[1;31m";
constexpr const char* kGreen = "\x1b[1;32m";
constexpr const char* kMagenta = "\x1b[1;35m";
constexpr const char* kPlain = "\x1b[0m";

// Names come from anywhere: they must not steer the terminal.
std::string withoutControls(std::string text) {
  for (char& c : text) {
    if (static_cast<unsigned char>(c) < 0x20 || c == 0x7F) c = '?';
  }
  return text;
}

// When even standard error cannot be written there is nobody left to tell.
void print(const std::string& text) { std::fwrite(text.data(), 1, text.size(), stderr); }

}  // namespace

bool wantsColours(Colour colour, int descriptor) {
  if (colour != Colour::kAuto) return colour == Colour::kAlways;
  const char* refused = std::getenv("NO_COLOR");
  return (refused == nullptr || *refused == '\0') && ::isatty(descriptor) != 0;
}

void complain(std::string_view message) {
  print(fmt::format("kelp: {}\n", withoutControls(std::string(message))));
}

void report(const Kelp::SceneError& error, Colour colour) {
  const bool coloured = wantsColours(colour, STDERR_FILENO);
  const char* red = coloured ? kRed : "";
  const char* green = coloured ? kGreen : "";
  const char* plain = coloured ? kPlain : "";
  const std::string suggestion = error.suggestion();
  const std::string hint =
      suggestion.empty() ? "" : fmt::format("; did you mean \"{}\"?", suggestion);
  std::string text = fmt::format("{}: {}error:{} {}{}\n", withoutControls(error.position()), red,
                                 plain, error.describe(), hint);
  const std::string excerpt = error.excerpt();
  if (!excerpt.empty()) {
    const std::string_view upToCaret(excerpt.data(), excerpt.size() - 1);
    text += fmt::format("{}{}^{}\n", upToCaret, green, plain);
  }
  for (const auto& [file, line] : error.includedFrom) {
    text += fmt::format("{}:{}: note: included from here\n", withoutControls(file), line);
  }
  print(text);
}

std::string warningLine(const std::string& place, const std::string& message, std::string_view code,
                        Colour colour) {
  const bool coloured = wantsColours(colour, STDOUT_FILENO);
  return fmt::format("{}: {}warning:{} {} [{}]\n", withoutControls(place), coloured ? kMagenta : "",
                     coloured ? kPlain : "", withoutControls(message), code);
}

ExitCode exitCodeOf(const Kelp::SceneError& error) {
  switch (error.kind) {
    case Kelp::SceneError::Kind::kNone:
      return kGood;
    case Kelp::SceneError::Kind::kInvalid:
      return kInvalid;
    case Kelp::SceneError::Kind::kUnreadable:
      break;
  }
  return kTrouble;
}

}  // namespace KelpCli
