#include "kelp/source/textinput.h"

#include <sys/stat.h>

#include <memory>

#include "kelp/source/descriptor.h"

namespace Kelp {

TextInput TextInput::fromFile(const std::string& path) {
  const auto file = std::make_shared<const Descriptor>(path, 0);
  struct stat status;
  uninterrupted(path, [&] { return ::fstat(file->number, &status); });
  if (S_ISDIR(status.st_mode)) throwUnreadable(path, EISDIR);
  TextInput input;
  if (S_ISREG(status.st_mode)) {
    input.size = status.st_size;
    input.device = status.st_dev;
    input.inode = status.st_ino;
  }
  input.read = [file, read = fromDescriptor(file->number, path).read](char* buffer, size_t most) {
    return read(buffer, most);
  };
  return input;
}

TextInput TextInput::fromText(std::string_view text) {
  TextInput input;
  input.size = static_cast<int64_t>(text.size());
  input.read = [text](char* buffer, size_t most) mutable {
    const size_t number = text.copy(buffer, most);
    text.remove_prefix(number);
    return number;
  };
  return input;
}

TextInput TextInput::fromDescriptor(int descriptor, const std::string& name) {
  TextInput input;
  input.read = [descriptor, name](char* buffer, size_t most) {
    return static_cast<size_t>(
        uninterrupted(name, [&] { return ::read(descriptor, buffer, most); }));
  };
  return input;
}

}  // namespace Kelp
