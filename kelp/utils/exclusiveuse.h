// ExclusiveUse: notices two threads at work in the library at once.
#pragma once

#include <atomic>
#include <cassert>

namespace Kelp {

#ifdef NDEBUG

struct ExclusiveUse {
  ExclusiveUse() {}
  ~ExclusiveUse() {}
};

#else

/// Held while a thread parses or filters. The pools are shared by all parsers of a process and take
/// no lock; in builds with assertions a second thread is stopped here, before it damages them. A
/// thread that is called back may start anew.
class ExclusiveUse {
 public:
  ExclusiveUse() {
    const char* self = &mark;
    if (user.load() != self) {
      const char* nobody = nullptr;
      const bool alone = user.compare_exchange_strong(nobody, self);
      assert(alone && "two threads parse or filter at once");
      (void)alone;
    }
    ++depth;
  }
  ExclusiveUse(const ExclusiveUse&) = delete;
  ExclusiveUse& operator=(const ExclusiveUse&) = delete;
  ~ExclusiveUse() {
    if (--depth == 0) user.store(nullptr);
  }

 private:
  static inline thread_local char mark = 0;  // its address stands for the thread
  static inline std::atomic<const char*> user = nullptr;
  static inline int depth = 0;  // of the user
};

#endif

}  // namespace Kelp
