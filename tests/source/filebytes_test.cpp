#include "kelp/source/filebytes.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <pthread.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <csignal>
#include <new>
#include <string>
#include <string_view>
#include <thread>
#include <utility>

#include "kelp/utils/exceptions.h"
#include "tests/support/allocations.h"
#include "tests/support/temporaryfiles.h"

using namespace Kelp;

namespace {

std::string readError(const std::string& path, bool map) {
  try {
    FileBytes::read(path, {.map = map});
  } catch (const InvalidSourceFile& failure) {
    return failure.message.chars();
  }
  return "";
}

// A file of more bytes than there are addresses, none of them written.
class EndlessFile {
 public:
  EndlessFile() : number(::memfd_create("endless", MFD_CLOEXEC)) {
    if (::ftruncate(number, off_t{1} << 62U) != 0) throw std::bad_alloc();
  }
  EndlessFile(const EndlessFile&) = delete;
  EndlessFile& operator=(const EndlessFile&) = delete;
  ~EndlessFile() { ::close(number); }

  std::string path() const { return "/proc/self/fd/" + std::to_string(number); }

 private:
  const int number;
};

// While one lives, SIGUSR1 is handled and interrupts the calls that wait.
class InterruptingSignal {
 public:
  InterruptingSignal() {
    struct sigaction action {};
    action.sa_handler = [](int) {};
    sigaction(SIGUSR1, &action, &before);
  }
  InterruptingSignal(const InterruptingSignal&) = delete;
  InterruptingSignal& operator=(const InterruptingSignal&) = delete;
  ~InterruptingSignal() { sigaction(SIGUSR1, &before, nullptr); }

  static void pester(pthread_t thread) {
    for (int i = 0; i < 20; ++i) {
      pthread_kill(thread, SIGUSR1);
      std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
  }

 private:
  struct sigaction before {};
};

void writeAll(int file, std::string_view text) {
  EXPECT_EQ(::write(file, text.data(), text.size()), static_cast<ssize_t>(text.size()));
}

}  // namespace

TEST(FileBytes, SignalsDoNotDisturbTheReadingOfAPipe) {
  const KelpTest::TemporaryFiles files;
  const std::string path = files.path("pipe");
  ASSERT_EQ(::mkfifo(path.c_str(), 0600), 0);
  const InterruptingSignal signal;
  std::thread writer([&path, reader = pthread_self()] {
    InterruptingSignal::pester(reader);  // it waits for the pipe's other end
    const int pipe = ::open(path.c_str(), O_WRONLY | O_CLOEXEC);
    writeAll(pipe, "first ");
    InterruptingSignal::pester(reader);  // it waits for more text
    writeAll(pipe, "second");
    ::close(pipe);
  });
  const FileBytes bytes = FileBytes::read(path, {.map = false});
  writer.join();
  EXPECT_EQ(std::string_view(bytes.data, bytes.size), "first second");
}

TEST(FileBytes, FailureInTheMiddleOfReadingIsReported) {
  // Nothing is mapped at the first address of a process.
  EXPECT_EQ(readError("/proc/self/mem", false),
            "Cannot read \"/proc/self/mem\": Input/output error");
}

TEST(FileBytes, FileThatCannotBeMappedIsReported) {
  const std::string path = "/sys/devices/system/cpu/online";
  EXPECT_EQ(readError(path, false), "");
  EXPECT_EQ(readError(path, true), "Cannot read \"" + path + "\": No such device");
}

TEST(FileBytes, FileOfMoreBytesThanThereIsMemoryRunsOutOfIt) {
  const EndlessFile file;
  EXPECT_THROW(FileBytes::read(file.path(), {.map = false}), std::bad_alloc);
  EXPECT_THROW(FileBytes::read(file.path(), {.map = true}), std::bad_alloc);
}

TEST(FileBytes, KnowsWhichFileItIsAlsoWhenMoved) {
  const KelpTest::TemporaryFiles files;
  const std::string path = files.write("a", "abc");
  struct stat status {};
  ASSERT_EQ(::stat(path.c_str(), &status), 0);
  for (const bool map : {false, true}) {
    FileBytes first = FileBytes::read(path, {.map = map});
    FileBytes second = FileBytes::copy("", 0);
    EXPECT_EQ(second.device, 0U);
    EXPECT_EQ(second.inode, 0U);
    second = std::move(first);
    EXPECT_EQ(second.device, status.st_dev);
    EXPECT_EQ(second.inode, status.st_ino);
  }
}

TEST(FileBytes, FileIsReadIntoOneBlock) {
  const KelpTest::TemporaryFiles files;
  for (const size_t size : {size_t{0}, size_t{1}, size_t{100000}}) {
    const std::string path = files.write("a", std::string(size, 'a'));
    const int64_t before = KelpTest::allocationCount();
    const FileBytes bytes = FileBytes::read(path, {.map = false});
    EXPECT_EQ(KelpTest::allocationCount() - before, 1) << size;
    EXPECT_EQ(bytes.size, size);
  }
}

TEST(FileBytes, MappingEndsWithItsOwner) {
  const KelpTest::TemporaryFiles files;
  const std::string path = files.write("a", std::string(10000, 'a'));
  char* pages = nullptr;
  unsigned char resident = 0;
  {
    const FileBytes bytes = FileBytes::read(path, {.map = true});
    pages = bytes.data;
    EXPECT_EQ(::mincore(pages, 1, &resident), 0);
  }
  EXPECT_EQ(::mincore(pages, 1, &resident), -1);
  EXPECT_EQ(errno, ENOMEM);
}

TEST(FileBytes, MadeFromAnotherTakesItsBytes) {
  FileBytes first = FileBytes::copy("abc", 3);
  const char* data = first.data;
  const FileBytes second(std::move(first));
  EXPECT_EQ(second.data, data);
  EXPECT_EQ(std::string_view(second.data, second.size), "abc");
}

TEST(FileBytes, WhatIsMappedWhereAMappingFailedStaysMapped) {
  // The first exception of a thread takes memory for itself, which must not go with the bytes.
  const KelpTest::TemporaryFiles files;
  for (int i = 0; i < 100; ++i) {
    std::thread([] { EXPECT_NE(readError("/sys/devices/system/cpu/online", true), ""); }).join();
  }
}

TEST(FileBytes, CopyOfMoreBytesThanThereAreAddressesIsRefused) {
  // Nor may the padding carry the sum over to a small one.
  for (const size_t size : {SIZE_MAX, SIZE_MAX - 10, SIZE_MAX / 2}) {
    EXPECT_THROW(FileBytes::copy("", size), std::bad_alloc);
  }
}
