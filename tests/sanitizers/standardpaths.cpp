// The standard library's path operations that live in its shared object, which no checker of
// uninitialised memory has seen being compiled: what they write is declared written. Linked in with
// --wrap, so that calls of NAME come to __wrap_NAME here.
#include <sanitizer/msan_interface.h>

#include <filesystem>

using std::filesystem::path;

namespace {

path* written(path* result) {
  __msan_unpoison(result, sizeof *result);
  __msan_unpoison(result->native().c_str(), result->native().size() + 1);
  return result;
}

}  // namespace

// A result of class type is built where the hidden first argument says.
extern "C" {

#define KELP_PARENT_PATH(prefix) prefix##_ZNKSt10filesystem7__cxx114path11parent_pathEv
#define KELP_APPEND(prefix) prefix##_ZNSt10filesystem7__cxx114pathdVERKS1_
#define KELP_SPLIT(prefix) prefix##_ZNSt10filesystem7__cxx114path14_M_split_cmptsEv

path* KELP_PARENT_PATH(__real_)(path* result, const path* self);
path* KELP_APPEND(__real_)(path* self, const path* other);
void KELP_SPLIT(__real_)(path* self);

path* KELP_PARENT_PATH(__wrap_)(path* result, const path* self) {
  return written(KELP_PARENT_PATH(__real_)(result, self));
}

path* KELP_APPEND(__wrap_)(path* self, const path* other) {
  return written(KELP_APPEND(__real_)(self, other));
}

void KELP_SPLIT(__wrap_)(path* self) {
  KELP_SPLIT(__real_)(self);
  written(self);
}

}  // extern "C"
