#include "cli/progress.h"

#include <fmt/format.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <utility>

#include "cli/diagnostics.h"

namespace KelpCli {

namespace {

constexpr double kSecondsUntilShown = 0.5;
constexpr double kSecondsBetween = 0.1;

bool isForbidden = false;
bool isShown = false;

double now() {
  return std::chrono::duration<double>(std::chrono::steady_clock::now().time_since_epoch()).count();
}

// What went by before the first file counts, too: many small ones make a long run.
double startOfRun() {
  static const double kStart = now();
  return kStart;
}

std::string bytesText(double bytes) {
  constexpr const char* kUnits[] = {"B", "kB", "MB", "GB", "TB"};
  size_t unit = 0;
  for (; bytes >= 999.5 && unit + 1 < std::size(kUnits); ++unit) bytes /= 1000;
  return fmt::format("{:.3g} {}", bytes, kUnits[unit]);
}

}  // namespace

Progress::Progress(std::string nameOfTask, int64_t bytesInAll)
    : name(std::move(nameOfTask)), total(bytesInAll), start(now()), lastTold(startOfRun()) {}

bool Progress::isWanted() { return !isForbidden && isTerminal(STDERR_FILENO); }

void Progress::forbid() { isForbidden = true; }

void Progress::hide() {
  if (!isShown) return;
  std::fputs("\r\x1b[K", stderr);
  isShown = false;
}

void Progress::tell(int64_t bytes) {
  const double time = now();
  if (time - startOfRun() < kSecondsUntilShown || time - lastTold < kSecondsBetween) return;
  lastTold = time;
  const std::string line = '\r' + _line(bytes, time - start) + "\x1b[K";
  std::fwrite(line.data(), 1, line.size(), stderr);
  isShown = true;
}

std::string Progress::_line(int64_t bytes, double seconds) const {
  constexpr size_t kLongestName = 30;
  constexpr size_t kBar = 20;
  std::string shown =
      name.size() <= kLongestName ? name : "..." + name.substr(name.size() - kLongestName + 3);
  std::string line = withoutControls(std::move(shown));
  if (total > 0) {
    const double part = std::min(1.0, static_cast<double>(bytes) / static_cast<double>(total));
    const auto filled = static_cast<size_t>(part * kBar);
    line += fmt::format("  [{}{}] {:3.0f} %", std::string(filled, '#'),
                        std::string(kBar - filled, ' '), part * 100);
  }
  const auto done = static_cast<double>(bytes);
  return line +
         fmt::format("  {}  {}/s", bytesText(done), bytesText(done / std::max(seconds, 1e-3)));
}

}  // namespace KelpCli
