#include "cli/import/assimp.h"

#include <assimp/postprocess.h>
#include <dlfcn.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <new>
#include <string_view>

namespace KelpCli {

namespace {

template <class Function>
void find(void* library, const char* name, Function*& function) {
  function = reinterpret_cast<Function*>(::dlsym(library, name));
  if (function == nullptr) throw ModelFailure{std::string("Assimp has no function ") + name};
}

Assimp load() {
  void* library = ::dlopen(KELP_ASSIMP, RTLD_NOW | RTLD_LOCAL);
  if (library == nullptr) throw ModelFailure{std::string("Assimp is missing: ") + ::dlerror()};
  Assimp loaded;
  find(library, "aiImportFile", loaded.importFile);
  find(library, "aiReleaseImport", loaded.releaseImport);
  find(library, "aiGetErrorString", loaded.errorString);
  find(library, "aiGetMaterialString", loaded.materialString);
  find(library, "aiGetMaterialColor", loaded.materialColor);
  find(library, "aiGetMaterialFloatArray", loaded.materialFloats);
  find(library, "aiGetMaterialIntegerArray", loaded.materialIntegers);
  find(library, "aiGetMaterialTextureCount", loaded.materialTextureCount);
  find(library, "aiGetMaterialTexture", loaded.materialTexture);
  return loaded;
}

// Assimp says only that it could not open the file, and waits for ever at a pipe.
void requireRegularFile(const std::string& file) {
  const int descriptor = ::open(file.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK);
  if (descriptor < 0) throw ModelFailure{std::strerror(errno)};
  struct stat status {};
  const bool isKnown = ::fstat(descriptor, &status) == 0;
  ::close(descriptor);
  if (isKnown && S_ISDIR(status.st_mode)) throw ModelFailure{std::strerror(EISDIR)};
  if (!isKnown || !S_ISREG(status.st_mode)) throw ModelFailure{"not a regular file"};
}

// The reason in one line. Throws std::bad_alloc where it is that.
std::string lastError(const Assimp& assimp) {
  std::string_view reason = assimp.errorString();
  if (reason == std::bad_alloc().what()) throw std::bad_alloc();
  reason = reason.substr(0, reason.find('\n'));
  return reason.empty() ? "Assimp gives no reason" : std::string(reason);
}

}  // namespace

const Assimp& Assimp::library() {
  static const Assimp loaded = load();
  return loaded;
}

Model::Model(const std::string& file) {
  requireRegularFile(file);
  const Assimp& assimp = Assimp::library();
  read = assimp.importFile(file.c_str(), aiProcess_Triangulate | aiProcess_JoinIdenticalVertices |
                                             aiProcess_ValidateDataStructure);
  if (read == nullptr) throw ModelFailure{lastError(assimp)};
}

Model::~Model() { Assimp::library().releaseImport(read); }

}  // namespace KelpCli
