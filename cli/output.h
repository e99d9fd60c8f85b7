// Output: where results are written, with every failure to write noticed.
#pragma once

#include <memory>
#include <ostream>
#include <streambuf>
#include <string>
#include <vector>

#include "cli/compression.h"
#include "kelp/writers/linefiller.h"

namespace KelpCli {

/// Something could not be written.
struct WriteFailure {
  std::string message;
};

/// Writes to a file descriptor, which stays open. Throws WriteFailure.
class DescriptorBuffer final : public std::streambuf {
 public:
  DescriptorBuffer(int fileDescriptor, std::string nameInMessages);

 protected:
  int_type overflow(int_type character) override;
  int sync() override;

 private:
  static constexpr size_t kBytes = 65536;

  int descriptor;
  std::string name;
  std::vector<char> bytes;
};

/// Where an output goes: a descriptor, and for a regular file the temporary file beside it that
/// takes its place in the end. A signal that ends the program removes that file first. One at a
/// time.
class Destination {
 public:
  /// An empty path or "-" means standard output. Throws WriteFailure.
  explicit Destination(const std::string& path);
  Destination(const Destination&) = delete;
  Destination& operator=(const Destination&) = delete;
  /// What was not completed leaves no trace.
  ~Destination();

  /// Throws WriteFailure.
  void complete();

  int descriptor() const { return number; }
  const std::string& name() const { return shownName; }

 private:
  void _openTemporary(unsigned mode);

  std::string shownName = "standard output";
  std::string target;     // the file to replace
  std::string temporary;  // empty when the output is written as it comes
  int number = 1;
};

/// Standard output, or a file that gets its contents at once or not at all, compressed if its name
/// ends in .gz or .zst.
class Output {
 public:
  /// An empty path or "-" means standard output. Throws WriteFailure.
  explicit Output(const std::string& path = "");

  /// Throws WriteFailure as soon as something cannot be written.
  std::ostream& stream() { return out; }

  /// Hands texts on to the stream; lives no longer than this.
  Kelp::TextSink textSink();

  /// Hands on what is still buffered. Throws WriteFailure.
  void flush() { out.flush(); }

  /// To be called in the end: completes the file. Throws WriteFailure.
  void finish();

 private:
  Destination destination;
  DescriptorBuffer buffer;
  std::unique_ptr<CompressingBuffer> compressor;  // null: the output is written as it is
  std::ostream out;
};

}  // namespace KelpCli
