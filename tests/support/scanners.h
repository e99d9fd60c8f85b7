// Scanners driven by a test, for what no text can make the real one do.
#pragma once

#include <functional>
#include <string>
#include <utility>
#include <vector>

#include "kelp/parser/treeparser.h"

namespace KelpTest {

/// A token as a test writes it.
struct ListedToken {
  Kelp::TOKENTYPE type;
  std::string text;
  int overflowCount = 0;
  uint64_t overflow[3] = {0, 0, 0};
};

/// Hands out a list of tokens, then the end for ever.
class ListedScanner final : public Kelp::Scanner {
 public:
  ListedScanner(Kelp::SourcesReader* source, std::vector<ListedToken> tokens)
      : Scanner(source), list(std::move(tokens)) {}

  void scan(Kelp::Token& token) override { handOut(token, 's'); }
  void skipScan(Kelp::Token& token) override { handOut(token, 'k'); }

  std::string calls;  ///< one letter a call: s for scan, k for skipScan

 private:
  void handOut(Kelp::Token& token, char call);

  std::vector<ListedToken> list;
  size_t next = 0;
};

/// The real scanner with something done before every token; it may throw.
class WatchedScanner final : public Kelp::Scanner {
 public:
  explicit WatchedScanner(Kelp::SourcesReader* source) : Scanner(source) {}

  void scan(Kelp::Token& token) override {
    before(++tokens);
    Scanner::scan(token);
  }
  void skipScan(Kelp::Token& token) override {
    before(++tokens);
    Scanner::skipScan(token);
  }

  /// Called with the number of the token about to be read, from 1.
  std::function<void(int)> before = [](int) {};
  int tokens = 0;
};

/// The real scanner over a scene that ends behind a number of tokens.
class CutScanner final : public Kelp::Scanner {
 public:
  CutScanner(Kelp::SourcesReader* source, int tokens) : Scanner(source), left(tokens) {}

  void scan(Kelp::Token& token) override {
    if (left > 0) Scanner::scan(token);
    --left;
  }
  void skipScan(Kelp::Token& token) override {
    if (left > 0) Scanner::skipScan(token);
    --left;
  }

 private:
  int left;
};

}  // namespace KelpTest
