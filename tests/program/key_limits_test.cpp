// Keys longer than an int can count.
#include <gtest/gtest.h>
#include <sys/mman.h>
#include <unistd.h>

#include <climits>
#include <cstring>
#include <new>

#include "kelp/ast/auto_ast.h"
#include "tests/support/nodes.h"
#include "tests/support/programs.h"

using namespace Kelp;

namespace {

// A text of 2^30 characters that takes the memory of a few: the same pages again and again.
class GiantText final : public CharStringBuf {
 public:
  GiantText() {
    void* area = ::mmap(nullptr, kLength + kPiece, PROT_READ | PROT_WRITE,
                        MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE, -1, 0);
    if (area == MAP_FAILED) throw std::bad_alloc();
    data = static_cast<char*>(area);
    const int pages = ::memfd_create("giant", MFD_CLOEXEC);
    if (::ftruncate(pages, kPiece) != 0) throw std::bad_alloc();
    for (size_t at = 0; at < kLength; at += kPiece) {
      ::mmap(data + at, kPiece, PROT_READ | PROT_WRITE, MAP_SHARED | MAP_FIXED, pages, 0);
    }
    ::close(pages);
    std::memset(data, 'a', kPiece);
  }
  GiantText(const GiantText&) = delete;
  GiantText& operator=(const GiantText&) = delete;
  ~GiantText() override {
    ::munmap(data, kLength + kPiece);
    data = nullptr;
  }

 private:
  static constexpr size_t kPiece = size_t{1} << 20U;
  static constexpr size_t kLength = size_t{1} << 30U;
};

}  // namespace

TEST(KeyLimits, KeyBuffersOfMoreThanAnIntAreRefused) {
  HashMap<int, 0> map;
  map._reserveKeyBuffers(2000);
  EXPECT_THROW(map._reserveKeyBuffers(size_t{INT_MAX} + 1), std::bad_alloc);
  EXPECT_EQ(map.keyBufferSize, 2000);
}

TEST(KeyLimits, ObjectWhoseTypeAndNameTogetherAreTooLongIsRefused) {
  CharString giant;
  giant.buffer = new GiantText;
  ObjectAST* refused = KelpTest::object("", "");
  refused->type = giant;
  refused->name = giant;
  auto_ast<ProgramAST> program(new ProgramAST);
  EXPECT_THROW(program->addObject(refused, 0, 0, nullptr), std::bad_alloc);
  EXPECT_EQ(program->firstObject, nullptr);
  EXPECT_EQ(program->numObjects, 0);
  refused->type.freeMem();
  refused->name.freeMem();
  refused->deleteThis();
}
