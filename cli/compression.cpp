#include "cli/compression.h"

#include <zlib.h>
#include <zstd.h>

#include <algorithm>
#include <cstring>
#include <new>
#include <utility>
#include <vector>

#include "kelp/utils/exceptions.h"

namespace KelpCli {

namespace {

constexpr size_t kBlock = 1 << 16;
constexpr int kGzipFormat = 15 + 16;  // the largest window; with header and checksum of gzip

[[noreturn]] void throwDamaged(const std::string& name, const char* why) {
  const std::string message = "Cannot read \"" + name + "\": " + why;
  throw Kelp::InvalidSourceFile(message.c_str());
}

Bytef* bytesOf(const char* text) { return reinterpret_cast<Bytef*>(const_cast<char*>(text)); }

// ---- reading -----------------------------------------------------------------------------------

// The compressed bytes, a block at a time.
class CompressedInput {
 public:
  CompressedInput(Kelp::TextInput::Read source, std::string nameInMessages)
      : name(std::move(nameInMessages)), read(std::move(source)), block(kBlock) {}

  // Reads until there are so many bytes, or no more.
  void fill(size_t bytes) {
    while (end - at < bytes && !hasEnded) {
      if (at > 0) std::memmove(block.data(), block.data() + at, end - at);
      end -= at;
      at = 0;
      const size_t got = read(block.data() + end, block.size() - end);
      end += got;
      hasEnded = got == 0;
    }
  }

  std::string_view rest() const { return {block.data() + at, end - at}; }
  void skip(size_t bytes) { at += bytes; }

  const std::string name;

 private:
  Kelp::TextInput::Read read;
  std::vector<char> block;
  size_t at = 0;
  size_t end = 0;
  bool hasEnded = false;
};

// Gives bytes as they are.
class PlainReader {
 public:
  explicit PlainReader(CompressedInput& source) : input(source) {}

  size_t read(char* buffer, size_t size) {
    input.fill(1);
    const size_t bytes = std::min(size, input.rest().size());
    std::memcpy(buffer, input.rest().data(), bytes);
    input.skip(bytes);
    return bytes;
  }

 private:
  CompressedInput& input;
};

// A file of gzip may be several, one behind the other.
class GzipReader {
 public:
  explicit GzipReader(CompressedInput& source) : input(source) {
    if (::inflateInit2(&stream, kGzipFormat) != Z_OK) throw std::bad_alloc();
  }
  GzipReader(const GzipReader&) = delete;
  GzipReader& operator=(const GzipReader&) = delete;
  ~GzipReader() { ::inflateEnd(&stream); }

  size_t read(char* buffer, size_t size) {
    const size_t wanted = std::min<size_t>(size, 1U << 30);
    stream.next_out = bytesOf(buffer);
    stream.avail_out = static_cast<uInt>(wanted);
    while (stream.avail_out == wanted) {
      input.fill(1);
      if (isBetweenMembers && input.rest().empty()) return 0;
      if (isBetweenMembers) ::inflateReset(&stream);
      inflate();
    }
    return wanted - stream.avail_out;
  }

 private:
  void inflate() {
    stream.next_in = bytesOf(input.rest().data());
    stream.avail_in = static_cast<uInt>(input.rest().size());
    const bool isEmpty = input.rest().empty();
    // What it holds back comes even when there is no more to put in.
    const int result = ::inflate(&stream, Z_NO_FLUSH);
    input.skip(input.rest().size() - stream.avail_in);
    if (result == Z_BUF_ERROR && isEmpty) {
      throwDamaged(input.name, "the compressed data ends too early");
    }
    if (result == Z_MEM_ERROR) throw std::bad_alloc();
    if (result != Z_OK && result != Z_STREAM_END) {
      throwDamaged(input.name, "the compressed data is damaged");
    }
    isBetweenMembers = result == Z_STREAM_END;
  }

  CompressedInput& input;
  z_stream stream{};
  bool isBetweenMembers = false;
};

class ZstdReader {
 public:
  explicit ZstdReader(CompressedInput& source) : input(source), stream(::ZSTD_createDStream()) {
    if (stream == nullptr) throw std::bad_alloc();
  }

  size_t read(char* buffer, size_t size) {
    ZSTD_outBuffer out{buffer, size, 0};
    while (out.pos == 0) {
      input.fill(1);
      ZSTD_inBuffer in{input.rest().data(), input.rest().size(), 0};
      const size_t wanted = ::ZSTD_decompressStream(stream.get(), &out, &in);
      input.skip(in.pos);
      if (::ZSTD_isError(wanted) != 0) throwDamaged(input.name, "the compressed data is damaged");
      const bool isStuck = in.size == 0 && out.pos == 0;
      if (isStuck && !isBetweenFrames) {
        throwDamaged(input.name, "the compressed data ends too early");
      }
      if (isStuck) return 0;
      isBetweenFrames = wanted == 0;
    }
    return out.pos;
  }

 private:
  struct Free {
    void operator()(ZSTD_DStream* freed) const { ::ZSTD_freeDStream(freed); }
  };

  CompressedInput& input;
  std::unique_ptr<ZSTD_DStream, Free> stream;
  bool isBetweenFrames = false;
};

template <class Reader>
Kelp::TextInput::Read readingBy(std::shared_ptr<CompressedInput> input) {
  auto reader = std::make_shared<Reader>(*input);
  return [input = std::move(input), reader = std::move(reader)](char* buffer, size_t size) {
    return reader->read(buffer, size);
  };
}

// ---- writing -----------------------------------------------------------------------------------

// Collects a block, and has it compressed by `consume`.
class BlockBuffer : public CompressingBuffer {
 public:
  explicit BlockBuffer(std::streambuf& destination)
      : target(destination), block(kBlock), compressed(kBlock) {
    setp(block.data(), block.data() + block.size());
  }

  void finish() override {
    consume({pbase(), static_cast<size_t>(pptr() - pbase())}, true);
    setp(block.data(), block.data() + block.size());
  }

 protected:
  virtual void consume(std::string_view text, bool isLast) = 0;

  int_type overflow(int_type character) override {
    const std::string_view text(pbase(), static_cast<size_t>(pptr() - pbase()));
    setp(block.data(), block.data() + block.size());
    consume(text, false);
    if (traits_type::eq_int_type(character, traits_type::eof())) return traits_type::not_eof(0);
    return sputc(traits_type::to_char_type(character));
  }

  void write(size_t bytes) { target.sputn(compressed.data(), static_cast<std::streamsize>(bytes)); }

  std::streambuf& target;
  std::vector<char> block;
  std::vector<char> compressed;
};

class GzipBuffer final : public BlockBuffer {
 public:
  explicit GzipBuffer(std::streambuf& destination) : BlockBuffer(destination) {
    constexpr int kUsualMemory = 8;
    if (::deflateInit2(&stream, Z_DEFAULT_COMPRESSION, Z_DEFLATED, kGzipFormat, kUsualMemory,
                       Z_DEFAULT_STRATEGY) != Z_OK) {
      throw std::bad_alloc();
    }
  }
  GzipBuffer(const GzipBuffer&) = delete;
  GzipBuffer& operator=(const GzipBuffer&) = delete;
  ~GzipBuffer() override { ::deflateEnd(&stream); }

 private:
  void consume(std::string_view text, bool isLast) override {
    stream.next_in = bytesOf(text.data());
    stream.avail_in = static_cast<uInt>(text.size());
    do {
      stream.next_out = bytesOf(compressed.data());
      stream.avail_out = static_cast<uInt>(compressed.size());
      ::deflate(&stream, isLast ? Z_FINISH : Z_NO_FLUSH);
      write(compressed.size() - stream.avail_out);
    } while (stream.avail_out == 0);
  }

  z_stream stream{};
};

class ZstdBuffer final : public BlockBuffer {
 public:
  explicit ZstdBuffer(std::streambuf& destination)
      : BlockBuffer(destination), stream(::ZSTD_createCStream()) {
    if (stream == nullptr) throw std::bad_alloc();
    ::ZSTD_CCtx_setParameter(stream.get(), ZSTD_c_checksumFlag, 1);
  }

 private:
  struct Free {
    void operator()(ZSTD_CStream* freed) const { ::ZSTD_freeCStream(freed); }
  };

  void consume(std::string_view text, bool isLast) override {
    ZSTD_inBuffer in{text.data(), text.size(), 0};
    size_t left = 0;
    do {
      ZSTD_outBuffer out{compressed.data(), compressed.size(), 0};
      left = ::ZSTD_compressStream2(stream.get(), &out, &in, isLast ? ZSTD_e_end : ZSTD_e_continue);
      if (::ZSTD_isError(left) != 0) throw std::bad_alloc();  // nothing else can fail here
      write(out.pos);
    } while (isLast ? left > 0 : in.pos < in.size);
  }

  std::unique_ptr<ZSTD_CStream, Free> stream;
};

}  // namespace

Compression compressionOf(std::string_view firstBytes) {
  if (firstBytes.starts_with("\x1F\x8B")) return Compression::kGzip;
  if (firstBytes.starts_with("\x28\xB5\x2F\xFD")) return Compression::kZstd;
  return Compression::kNone;
}

Compression compressionFor(const std::string& fileName) {
  if (fileName.ends_with(".gz")) return Compression::kGzip;
  if (fileName.ends_with(".zst")) return Compression::kZstd;
  return Compression::kNone;
}

Kelp::TextInput::Read decompressed(Kelp::TextInput::Read read, const std::string& name) {
  auto input = std::make_shared<CompressedInput>(std::move(read), name);
  constexpr size_t kMagicBytes = 4;
  input->fill(kMagicBytes);
  switch (compressionOf(input->rest())) {
    case Compression::kGzip:
      return readingBy<GzipReader>(std::move(input));
    case Compression::kZstd:
      return readingBy<ZstdReader>(std::move(input));
    case Compression::kNone:
      break;
  }
  return readingBy<PlainReader>(std::move(input));
}

std::unique_ptr<CompressingBuffer> compressing(Compression compression, std::streambuf& target) {
  if (compression == Compression::kGzip) return std::make_unique<GzipBuffer>(target);
  return std::make_unique<ZstdBuffer>(target);
}

}  // namespace KelpCli
