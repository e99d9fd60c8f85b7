// How far a long run has come.
#pragma once

#include <cstdint>
#include <string>

namespace KelpCli {

/// A line on standard error with a bar, bytes and rate, if that is a terminal and the run takes
/// longer than half a second. One at a time; it vanishes before anything else is printed.
class Progress {
 public:
  /// Of something with that name and that many bytes; 0: nobody knows how many.
  Progress(std::string nameOfTask, int64_t bytesInAll);
  Progress(const Progress&) = delete;
  Progress& operator=(const Progress&) = delete;
  ~Progress() { hide(); }

  /// Whether there is anybody to see it.
  static bool isWanted();
  /// From now on there is not.
  static void forbid();
  /// Removes the line until there is something new to tell.
  static void hide();

  void tell(int64_t bytes);

 private:
  std::string _line(int64_t bytes, double seconds) const;

  std::string name;
  int64_t total;
  double start;
  double lastTold;
};

}  // namespace KelpCli
