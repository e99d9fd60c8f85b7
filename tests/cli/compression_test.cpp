#include "cli/compression.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <random>
#include <sstream>

#include "kelp/utils/exceptions.h"
#include "tests/cli/program.h"

using KelpCli::Compression;
using KelpTest::Outcome;

namespace {

// Delivers a text in pieces of that many bytes.
Kelp::TextInput::Read pieces(std::string text, size_t bytes) {
  return [text = std::move(text), bytes, at = size_t{0}](char* buffer, size_t size) mutable {
    const size_t got = std::min({size, bytes, text.size() - at});
    std::memcpy(buffer, text.data() + at, got);
    at += got;
    return got;
  };
}

std::string compressed(Compression compression, const std::string& text) {
  std::stringbuf target;
  const auto buffer = KelpCli::compressing(compression, target);
  buffer->sputn(text.data(), static_cast<std::streamsize>(text.size()));
  buffer->finish();
  return target.str();
}

// All that comes out, asked for so many bytes at a time, or "error: WHY".
std::string contents(const std::string& bytes, size_t pieceBytes, size_t wanted) {
  try {
    const auto read = KelpCli::decompressed(pieces(bytes, pieceBytes), "a.scene");
    std::string text;
    std::string buffer(wanted, '\0');
    while (const size_t got = read(buffer.data(), wanted)) text.append(buffer, 0, got);
    return text;
  } catch (const Kelp::InvalidSourceFile& failure) {
    return std::string("error: ") + failure.message.chars();
  }
}

constexpr Compression kBoth[] = {Compression::kGzip, Compression::kZstd};
constexpr const char* kTooEarly =
    "error: Cannot read \"a.scene\": the compressed data ends too early";
constexpr const char* kDamaged = "error: Cannot read \"a.scene\": the compressed data is damaged";

// Texts that compress well, hardly, and over several blocks.
std::vector<std::string> texts() {
  std::mt19937 random(5);
  std::string noise(300000, '\0');
  for (char& c : noise) c = static_cast<char>(random());
  return {"", "A", "A a { }\n", std::string(1000000, 'a'), noise, noise + std::string(200000, 'b')};
}

}  // namespace

TEST(Compression, IsToldByFirstBytesAndByNames) {
  EXPECT_EQ(KelpCli::compressionOf(compressed(Compression::kGzip, "A")), Compression::kGzip);
  EXPECT_EQ(KelpCli::compressionOf(compressed(Compression::kZstd, "A")), Compression::kZstd);
  for (const char* plain : {"", "A", "\x1F", "\x28\xB5\x2F", "A a { }"}) {
    EXPECT_EQ(KelpCli::compressionOf(plain), Compression::kNone);
  }
  EXPECT_EQ(KelpCli::compressionFor("a.scene.gz"), Compression::kGzip);
  EXPECT_EQ(KelpCli::compressionFor("a.zst"), Compression::kZstd);
  for (const char* plain : {"", "-", "a.scene", "gz", "a.gz.scene", "a.GZ"}) {
    EXPECT_EQ(KelpCli::compressionFor(plain), Compression::kNone) << plain;
  }
}

TEST(Compression, EveryTextComesBack) {
  for (const std::string& text : texts()) {
    for (const size_t size : {size_t{100}, size_t{65536}, size_t{3000000}}) {
      EXPECT_TRUE(contents(text, 7000, size) == text);
      for (const Compression compression : kBoth) {
        const std::string bytes = compressed(compression, text);
        EXPECT_TRUE(contents(bytes, 1000, size) == text) << text.size();
        EXPECT_TRUE(contents(bytes, 1 << 20, size) == text) << text.size();
      }
    }
  }
}

TEST(Compression, FilesBehindEachOtherAreOne) {
  for (const Compression compression : kBoth) {
    const std::string both = compressed(compression, "one ") + compressed(compression, "two");
    for (const size_t bytes : {size_t{1}, size_t{2}, size_t{1000}})
      EXPECT_EQ(contents(both, bytes, 100), "one two");
  }
}

TEST(Compression, WhatEndsTooEarlyIsAnErrorWhereverItEnds) {
  const std::string text = "A a { x = 1; } B b { x = 2; y = 1.5; }";
  for (const Compression compression : kBoth) {
    const std::string bytes = compressed(compression, text);
    for (size_t length = 4; length < bytes.size(); ++length) {
      EXPECT_EQ(contents(bytes.substr(0, length), 5, 10), kTooEarly) << length;
    }
  }
}

TEST(Compression, DamageIsAnErrorWhereverItIs) {
  const std::string text = "A a { x = 1; } B b { x = 2; y = 1.5; }";
  for (const Compression compression : kBoth) {
    std::string bytes = compressed(compression, text);
    bytes.back() = static_cast<char>(bytes.back() ^ 1);
    EXPECT_EQ(contents(bytes, 100, 100), kDamaged);
    EXPECT_EQ(contents(compressed(compression, text) + "junk", 100, 100), kDamaged);
    for (size_t at = 4; at < bytes.size(); ++at) {
      std::string damaged = compressed(compression, text);
      damaged[at] = static_cast<char>(damaged[at] ^ 0x55);
      const std::string result = contents(damaged, 100, 100);
      // A header may say more than a reader needs.
      EXPECT_TRUE(result == text || result.starts_with("error: ")) << at << ": " << result;
    }
  }
}

namespace {

class CompressedFiles : public KelpTest::ProgramTest {
 protected:
  CompressedFiles() {
    write("a.scene", "A a { x = 1; }\n#include \"b.inc\"\n");
    write("b.inc", "B b { }\n");
  }
};

}  // namespace

TEST_F(CompressedFiles, AreReadByContentAndWrittenByName) {
  for (const std::string ending : {"gz", "zst"}) {
    EXPECT_EQ(kelp("merge -o out." + ending + " a.scene").exitCode, 0);
    EXPECT_NE(KelpCli::compressionOf(contents("out." + ending)), Compression::kNone);
    EXPECT_EQ(shell("mv out." + ending + " out; \"$KELP\" diff a.scene out"), (Outcome{0, "", ""}));
    EXPECT_EQ(shell("\"$KELP\" diff a.scene - <out"), (Outcome{0, "", ""}));
    EXPECT_EQ(shell("cat out | \"$KELP\" list --stream - | wc -l").out, "3\n");
    EXPECT_EQ(kelp("list --stream out"), kelp("list --no-stream out"));
  }
}

TEST_F(CompressedFiles, IncludeFilesBesideThem) {
  EXPECT_EQ(shell("gzip a.scene; \"$KELP\" check --json a.scene.gz | grep -c '\"objects\":2'").out,
            "1\n");
}

TEST_F(CompressedFiles, AreRewrittenCompressed) {
  write("c.scene", "A   a{x=1;}");
  EXPECT_EQ(shell("gzip c.scene; \"$KELP\" format -w c.scene.gz; gzip -dc c.scene.gz"),
            (Outcome{0, "A a {\n  x = 1;\n}\n", ""}));
}

TEST_F(CompressedFiles, ThatAreDamagedAreUnreadable) {
  EXPECT_EQ(
      shell("gzip b.inc; head -c 20 b.inc.gz >cut; \"$KELP\" check cut"),
      (Outcome{2, "", "cut: error: Cannot read \"cut\": the compressed data ends too early\n"}));
  EXPECT_EQ(
      kelp("check --stream cut"),
      (Outcome{2, "", "cut: error: Cannot read \"cut\": the compressed data ends too early\n"}));
}

TEST_F(CompressedFiles, CountAsWhatComesOut) {
  write("zeros", std::string(1000000, ' '));
  EXPECT_EQ(shell("gzip zeros; \"$KELP\" check --max-bytes 5000 zeros.gz"),
            (Outcome{2, "", "zeros.gz: error: The scene has more than 5000 bytes\n"}));
}

TEST_F(CompressedFiles, MayComeThroughAPipeWithAName) {
  for (const char* writer : {"cat a.scene", "gzip -c a.scene"}) {
    for (const char* way : {"", "--stream "}) {
      const std::string command = "mkfifo pipe; (" + std::string(writer) +
                                  " >pipe; echo wrote $? >done) & sleep 0.2; \"$KELP\" list " +
                                  way + "pipe | wc -l; wait; cat done; rm pipe done";
      EXPECT_EQ(shell(command), (Outcome{0, "3\nwrote 0\n", ""})) << command;
    }
  }
}
