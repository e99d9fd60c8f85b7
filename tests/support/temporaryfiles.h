// A directory of files that lives as long as a test.
#pragma once

#include <filesystem>
#include <string>
#include <string_view>

namespace KelpTest {

/// Makes a directory of its own under the system's temporary one and removes it at the end.
class TemporaryFiles {
 public:
  TemporaryFiles();
  TemporaryFiles(const TemporaryFiles&) = delete;
  TemporaryFiles& operator=(const TemporaryFiles&) = delete;
  ~TemporaryFiles();

  /// Writes a file, with the directories it needs, and gives its path.
  std::string write(const std::string& name, std::string_view contents) const;

  /// The path of a file of that name, which need not exist.
  std::string path(const std::string& name) const { return (directory / name).string(); }

  const std::filesystem::path directory;
};

}  // namespace KelpTest
