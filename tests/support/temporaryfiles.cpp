#include "tests/support/temporaryfiles.h"

#include <stdlib.h>

#include <fstream>
#include <stdexcept>

namespace KelpTest {

namespace {

std::filesystem::path makeDirectory() {
  std::string name = (std::filesystem::temp_directory_path() / "kelp-test-XXXXXX").string();
  if (::mkdtemp(name.data()) == nullptr) throw std::runtime_error("cannot make " + name);
  return name;
}

}  // namespace

TemporaryFiles::TemporaryFiles() : directory(makeDirectory()) {}

TemporaryFiles::~TemporaryFiles() {
  std::error_code ignored;
  std::filesystem::remove_all(directory, ignored);
}

std::string TemporaryFiles::write(const std::string& name, std::string_view contents) const {
  const std::filesystem::path file = directory / name;
  std::filesystem::create_directories(file.parent_path());
  std::ofstream out(file, std::ios::binary);
  out.write(contents.data(), static_cast<std::streamsize>(contents.size()));
  if (!out.flush()) throw std::runtime_error("cannot write " + file.string());
  return file.string();
}

}  // namespace KelpTest
